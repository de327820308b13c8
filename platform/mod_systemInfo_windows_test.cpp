#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mod_systemInfo.h"
#include "platform/service.h"
#include "tests/fakes/recording_message_boxes.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// No part of the system has messages for codes that a program may define itself (bit 29), so the
// look-up fails with "message not found" (317, hexadecimal 13D).
constexpr std::int32_t kUnknownCode = 0x20001234;

TEST(ErrorTextOfUnknownCode, NamesTheReasonAndShowsIt) {
  fakes::RecordingMessageBoxes boxes;
  platform::Replacement<platform::MessageBoxes> use_boxes(boxes);
  mod_systemInfo::AllowBoxes(true);
  EXPECT_EQ(mod_systemInfo::GetErrorText(kUnknownCode),
            "An internal system error occurred with the\r\nFormatMessage API function: 317. No "
            "futher information\r\nis available.");
  mod_systemInfo::AllowBoxes(false);
  EXPECT_THAT(boxes.shown, ElementsAre("An error occurred with the FormatMessage API function "
                                       "call.\r\nError: 317 Hex(13D)."));
}

TEST(ErrorTextOfUnknownCode, ShowsNothingInBatchMode) {
  fakes::RecordingMessageBoxes boxes;
  platform::Replacement<platform::MessageBoxes> use_boxes(boxes);
  EXPECT_THAT(mod_systemInfo::GetErrorText(kUnknownCode), ::testing::HasSubstr(": 317."));
  EXPECT_THAT(boxes.shown, IsEmpty());
}

}  // namespace
