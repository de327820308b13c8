#include "config/text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

TEST(LetterCase, TouchesAToZOnly) {
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    const bool upper = c >= 'A' && c <= 'Z';
    const bool lower = c >= 'a' && c <= 'z';
    EXPECT_EQ(text::ToLower(c), upper ? static_cast<char>(c + ('a' - 'A')) : c) << code;
    EXPECT_EQ(text::ToUpper(c), lower ? static_cast<char>(c - ('a' - 'A')) : c) << code;
    EXPECT_EQ(text::IsDigit(c), c >= '0' && c <= '9') << code;
  }
}

TEST(EqualsIgnoringCase, WholeTexts) {
  EXPECT_TRUE(text::EqualsIgnoringCase("/Robots.TXT", "/robots.txt"));
  EXPECT_TRUE(text::EqualsIgnoringCase("", ""));
  EXPECT_FALSE(text::EqualsIgnoringCase("abc", "ab"));
  EXPECT_FALSE(text::EqualsIgnoringCase("ab", "abc"));
  EXPECT_FALSE(text::EqualsIgnoringCase("abc", "abd"));
}

TEST(EqualsIgnoringCase, NeighboursOfTheLettersDiffer) {
  EXPECT_FALSE(text::EqualsIgnoringCase("[", "{"));
  EXPECT_FALSE(text::EqualsIgnoringCase("@", "`"));
  EXPECT_FALSE(text::EqualsIgnoringCase("\xc9", "\xe9"));
}

TEST(FindIgnoringCase, FirstPlaceAtOrAfterTheStart) {
  EXPECT_EQ(text::FindIgnoringCase("xBOTbot", "bot"), 1U);
  EXPECT_EQ(text::FindIgnoringCase("xBOTbot", "bOt", 1), 1U);
  EXPECT_EQ(text::FindIgnoringCase("xBOTbot", "bot", 2), 4U);
  EXPECT_EQ(text::FindIgnoringCase("xBOTbot", "bot", 5), text::kNone);
  EXPECT_EQ(text::FindIgnoringCase("bo", "bot"), text::kNone);
  EXPECT_EQ(text::FindIgnoringCase("", "b"), text::kNone);
  EXPECT_EQ(text::FindIgnoringCase("abc", "c", 99), text::kNone);
}

TEST(FindIgnoringCase, OverlappingBeginnings) {
  EXPECT_EQ(text::FindIgnoringCase("AAAB", "aab"), 1U);
  EXPECT_EQ(text::FindIgnoringCase("mSmsMSIE", "MSIE"), 4U);
}

TEST(FindIgnoringCase, BytesBeyondAscii) {
  EXPECT_EQ(text::FindIgnoringCase("x\xe9y", "\xe9Y"), 1U);
  EXPECT_EQ(text::FindIgnoringCase("x\xe9y", "\xc9"), text::kNone);
  EXPECT_TRUE(text::ContainsIgnoringCase(std::string_view("a\0Bc", 4), "bC"));
}

TEST(TrimBlanks, SpacesAtBothEndsOnly) {
  EXPECT_EQ(text::TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(text::TrimBlanks("\ta\n"), "\ta\n");
  EXPECT_EQ(text::TrimBlanks("   "), "");
  EXPECT_EQ(text::TrimBlanks(""), "");
}

TEST(NumericValue, LeadingDigitsWithAFraction) {
  EXPECT_EQ(text::NumericValue("42"), 42.0);
  EXPECT_EQ(text::NumericValue("007"), 7.0);
  EXPECT_EQ(text::NumericValue("2.5"), 2.5);
  EXPECT_EQ(text::NumericValue("2.5.5"), 2.5);
  EXPECT_EQ(text::NumericValue("12 rows"), 12.0);
  EXPECT_EQ(text::NumericValue("3."), 3.0);
  EXPECT_EQ(text::NumericValue("3.x"), 3.0);
  EXPECT_EQ(text::NumericValue("1e3"), 1.0);
  EXPECT_EQ(text::NumericValue("0x1F"), 0.0);
  EXPECT_EQ(text::NumericValue("00." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(text::ToInt32(std::string(400, '9')), std::nullopt);
}

TEST(NumericValue, NoLeadingDigitIsZero) {
  for (const char* text : {"", "-", "abc", ".5", " 5", "\t5", "inf", "nan"}) {
    EXPECT_EQ(text::NumericValue(text), 0.0) << text;
    EXPECT_EQ(text::NumericValue(text, true), 0.0) << text;
  }
}

TEST(NumericValue, SignsOnlyWhereAskedFor) {
  EXPECT_EQ(text::NumericValue("-5"), 0.0);
  EXPECT_EQ(text::NumericValue("+5"), 0.0);
  EXPECT_EQ(text::NumericValue("-5", true), -5.0);
  EXPECT_EQ(text::NumericValue("+5.25", true), 5.25);
  EXPECT_EQ(text::NumericValue("--5", true), 0.0);
  EXPECT_EQ(text::NumericValue("- 5", true), 0.0);
}

TEST(ToInt32, RoundsHalfToEven) {
  EXPECT_EQ(text::ToInt32("0.5"), 0);
  EXPECT_EQ(text::ToInt32("1.5"), 2);
  EXPECT_EQ(text::ToInt32("2.5"), 2);
  EXPECT_EQ(text::ToInt32("2.500001"), 3);
  EXPECT_EQ(text::ToInt32("-2.5", true), -2);
  EXPECT_EQ(text::ToInt32("-3.5", true), -4);
}

TEST(ToInt32, NothingBeyondTheLimits) {
  EXPECT_EQ(text::ToInt32("2147483647"), 2147483647);
  EXPECT_EQ(text::ToInt32("2147483647.4"), 2147483647);
  EXPECT_EQ(text::ToInt32("2147483647.5"), std::nullopt);
  EXPECT_EQ(text::ToInt32("2147483648"), std::nullopt);
  EXPECT_EQ(text::ToInt32("-2147483648", true), std::int32_t{-2147483647} - 1);
  EXPECT_EQ(text::ToInt32("-2147483648.5", true), std::int32_t{-2147483647} - 1);
  EXPECT_EQ(text::ToInt32("-2147483649", true), std::nullopt);
  EXPECT_EQ(text::ToInt32(std::string(1000, '9')), std::nullopt);
}

TEST(ToInt32, LeadingZerosDoNotCount) {
  EXPECT_EQ(text::ToInt32(std::string(1000, '0') + "12"), 12);
}

TEST(ToInt16, NumbersAreRoundedHalfToEvenLikewise) {
  EXPECT_EQ(text::ToInt16(2.5), std::int16_t{2});
  EXPECT_EQ(text::ToInt16(-32768.5), std::int16_t{-32768});
  EXPECT_EQ(text::ToInt16(32767.5), std::nullopt);
  EXPECT_EQ(text::ToInt16(1e300), std::nullopt);
}

TEST(ToInt16, NothingBeyondTheLimits) {
  EXPECT_EQ(text::ToInt16("32767"), std::int16_t{32767});
  EXPECT_EQ(text::ToInt16("32767.4"), std::int16_t{32767});
  EXPECT_EQ(text::ToInt16("32767.5"), std::nullopt);
  EXPECT_EQ(text::ToInt16("32768"), std::nullopt);
  EXPECT_EQ(text::ToInt16("-32768", true), std::int16_t{-32768});
  EXPECT_EQ(text::ToInt16("-32769", true), std::nullopt);
  EXPECT_EQ(text::ToInt16("-", true), std::int16_t{0});
}

TEST(HtmlEscape, FourCharactersBecomeReferences) {
  EXPECT_EQ(text::HtmlEscape("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c'");
  EXPECT_EQ(text::HtmlEscape("&amp;"), "&amp;amp;");
  EXPECT_EQ(text::HtmlEscape("plain \xc3\xa9"), "plain \xc3\xa9");
  EXPECT_EQ(text::HtmlEscape(""), "");
}

}  // namespace
