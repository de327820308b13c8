// Search words of a referrer's query against the state machine, character by character.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "stats/mdlWebPage.h"
#include "tests/fuzz/expect.h"

namespace {

constexpr std::string_view kNames =
    " q qry query search ask Term Topic pt wf prev back str Keywords qkw p searchfor aqa userQuery "
    "keywords wfq MT qs as_epq as_oq oq w Words q_phrase what k ";

bool IsSearchName(const std::string& name) {
  return !name.empty() && name.find(' ') == std::string::npos &&
         kNames.find(" " + name + " ") != std::string_view::npos;
}

int HexValue(char c) {
  if (c >= '1' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

std::string Reference(int value) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "&#%03d;", value);
  return text.data();
}

std::string Literally(std::string_view text) {
  enum { kBefore, kName, kOther, kWanted, kDone } state = kBefore;
  std::string words;
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (state == kBefore) {
      if (c == '?') state = kName;
    } else if (state == kName) {
      if (c == '=') {
        state = IsSearchName(name) ? kWanted : kOther;
      } else {
        name += c;
      }
    } else if (state == kOther) {
      if (c == '&') {
        state = kName;
        name.clear();
      }
    } else if (state == kWanted) {
      if (c == '&') {
        state = kDone;
      } else if (c == '+') {
        words += ' ';
      } else if (c != '%') {
        words += c;
      } else if (text.size() - i > 2) {
        words += Reference(16 * HexValue(text[i + 1]) + HexValue(text[i + 2]));
        i += 2;
      }
    }
  }
  return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string words = mdlWebPage::ExtractSearchWords(text);
  fuzz::Expect(words == Literally(text), "search words", words);
  fuzz::Expect(words.size() <= 3 * text.size(), "size of the search words", words);
  return 0;
}
