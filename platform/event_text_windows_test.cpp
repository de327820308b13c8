#include "platform/event_text_windows.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

#include "platform/utf16_windows.h"

namespace {

using platform::EventText;
using platform::kLongestEventText;

TEST(EventText, PlainTextStaysAsItIs) {
  EXPECT_EQ(EventText("Hitwick: operating on site 'web1'"), L"Hitwick: operating on site 'web1'");
  EXPECT_EQ(EventText(""), L"");
  EXPECT_EQ(EventText("gr\xC3\xBC\xC3\x9F"), L"gr\u00FC\u00DF");
}

TEST(EventText, InsertionCodesAreBroken) {
  EXPECT_EQ(EventText("/a%20b"), L"/a% 20b");
  EXPECT_EQ(EventText("%%5"), L"%% 5");
  EXPECT_EQ(EventText("%{S-1-5}"), L"% {S-1-5}");
}

TEST(EventText, OtherPercentSignsStay) { EXPECT_EQ(EventText("100% of %d, %"), L"100% of %d, %"); }

TEST(EventText, ZerosBecomeBlanks) { EXPECT_EQ(EventText(std::string_view("a\0b", 3)), L"a b"); }

TEST(EventText, IsCutToTheLongestSize) {
  EXPECT_EQ(EventText(std::string(kLongestEventText, 'x')).size(), kLongestEventText);
  EXPECT_EQ(EventText(std::string(kLongestEventText + 1, 'x')).size(), kLongestEventText);
}

TEST(EventText, CutNeverLeavesHalfACharacter) {
  // The last unit that fits would be the first half of U+1F600.
  const std::string text = std::string(kLongestEventText - 1, 'x') + "\xF0\x9F\x98\x80";
  EXPECT_EQ(EventText(text).size(), kLongestEventText - 1);
}

// The program's own resource has to know both messages, or Event Viewer shows no text.
class EventMessages : public ::testing::TestWithParam<unsigned long> {};

TEST_P(EventMessages, ShowTheEntrysText) {
  std::wstring text = L"Hitwick: an entry";
  std::array<DWORD_PTR, 1> insertions = {reinterpret_cast<DWORD_PTR>(text.data())};
  std::array<wchar_t, 100> shown = {};
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY,
                                      GetModuleHandleW(nullptr), GetParam(), 0, shown.data(),
                                      static_cast<DWORD>(shown.size()),
                                      reinterpret_cast<va_list*>(insertions.data()));
  EXPECT_EQ(std::wstring(shown.data(), length).substr(0, text.size()), text);
}

INSTANTIATE_TEST_SUITE_P(Both, EventMessages,
                         ::testing::Values(platform::kInformationMessage,
                                           platform::kWarningMessage));

TEST(Utf16, RoundTripKeepsValidText) {
  const std::string text = "\xE6\x97\xA5 \xF0\x9F\x98\x80 a";
  EXPECT_EQ(platform::ToUtf8(platform::ToUtf16(text)), text);
}

TEST(Utf16, BytesThatAreNoUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(platform::ToUtf16("a\xFF"
                              "b"),
            L"a\uFFFDb");
}

}  // namespace
