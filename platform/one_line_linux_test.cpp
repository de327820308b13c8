#include "platform/one_line_linux.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(OneLineTest, LineBreaksAreTwoCharacters) {
  EXPECT_EQ(OnOneLine("a\nb\r\nc\r\n"), "a\\nb\\nc\\n");
}

TEST(OneLineTest, OtherControlCharactersAreEscaped) {
  EXPECT_EQ(OnOneLine("\x1b[31m\tred\x7f"), "\\x1b[31m\\x09red\\x7f");
  EXPECT_EQ(OnOneLine(std::string_view("a\0b\rc", 5)), "a\\x00b\\x0dc");
}

TEST(OneLineTest, ControlCharactersOfTheUpperRangeAreEscaped) {
  EXPECT_EQ(OnOneLine("\xC2\x9B"
                      "31m"),
            "\\xc2\\x9b31m")
      << "as UTF-8";
  EXPECT_EQ(OnOneLine("\x9B"
                      "31m \x80 \x9F"),
            "\\x9b31m \\x80 \\x9f");
  EXPECT_EQ(OnOneLine("\xE0\x82\x9B \xF0\x80\x82\x9B"), "\xE0\\x82\\x9b \xF0\\x80\\x82\\x9b");
}

TEST(OneLineTest, EverythingElseStands) {
  const std::string text =
      "plain \\n \xC3\xA4 \xC4\x9B \xE2\x82\xAC \xE6\x97\xA5 \xF0\x9F\x98\x80 \xC2\xA0 \xE4\xFF";
  EXPECT_EQ(OnOneLine(text), text);
  EXPECT_EQ(OnOneLine(""), "");
}

TEST(OneLineTest, ACharacterCutShortIsNotTakenForOne) {
  EXPECT_EQ(OnOneLine("\xE2\x82"), "\xE2\\x82");
  EXPECT_EQ(OnOneLine("\xE2\x82\nx"), "\xE2\\x82\\nx");
  EXPECT_EQ(OnOneLine("\xC4"), "\xC4");
}

}  // namespace
}  // namespace platform
