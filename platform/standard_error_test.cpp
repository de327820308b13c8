#include "platform/standard_error.h"

#include <gtest/gtest.h>

#include <string>

namespace platform {
namespace {

// What a test wrote, and the terminal left without a status line.
std::string Written() {
  ClearStatusLine();
  std::string written = testing::internal::GetCapturedStderr();
  std::erase(written, '\r');  // a console's line ends, too
  return written;
}

std::string Blanks(std::size_t count) { return std::string(count, ' '); }

TEST(StandardError, MessageTakesThePlaceOfTheStatusLine) {
  testing::internal::CaptureStderr();
  ShowStatusLine("half done");
  WriteStandardError("a message");
  WriteStandardError("another");
  EXPECT_EQ(Written(), "half done" + Blanks(9) + "a message\nanother\n");
}

TEST(StandardError, StatusLineCoversTheOneBefore) {
  testing::internal::CaptureStderr();
  ShowStatusLine("a long one");
  ShowStatusLine("short");
  EXPECT_EQ(Written(),
            "a long one"
            "short" +
                Blanks(5) + Blanks(5));
}

TEST(StandardError, LongStatusLineIsCut) {
  testing::internal::CaptureStderr();
  ShowStatusLine(std::string(500, 'x'));
  EXPECT_EQ(Written(), std::string(79, 'x') + Blanks(79));
}

TEST(StandardError, NothingIsWrittenWhereNoStatusLineStands) {
  testing::internal::CaptureStderr();
  ClearStatusLine();
  WriteStandardError("x");
  EXPECT_EQ(Written(), "x\n");
}

}  // namespace
}  // namespace platform
