#include <gtest/gtest.h>

#include "platform/message_box.h"

namespace platform {
namespace {

TEST(LinuxMessageBoxTest, AMessageGoesToStandardErrorAsALine) {
  testing::internal::CaptureStderr();
  TheMessageBoxes().Show("The only log file format supported is W3C");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "The only log file format supported is W3C\n");
}

TEST(LinuxMessageBoxTest, AQuestionIsAnsweredWithNo) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(TheMessageBoxes().AskYesNo("Confirm", "Are you sure?"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Are you sure?\n");
}

}  // namespace
}  // namespace platform
