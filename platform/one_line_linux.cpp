#include "platform/one_line_linux.h"

#include <algorithm>
#include <cstddef>

namespace platform {
namespace {

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

bool IsContinuation(char c) { return (Byte(c) & 0xC0) == 0x80; }

// The length of the character of two bytes or more that `text` begins with, U+00A0 or above; 0 when
// it begins with something else, a longer spelling of a lower character included.
std::size_t UpperCharacterLength(std::string_view text) {
  const unsigned char first = Byte(text.front());
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  const std::string_view rest = text.substr(1, length - 1);
  if (rest.size() + 1 < length || !std::all_of(rest.begin(), rest.end(), IsContinuation)) return 0;
  const int lowest = first == 0xC2 || first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  return Byte(rest.front()) < lowest ? 0 : length;
}

// A byte of its own, or the first of a control character's two.
bool IsControl(char c) {
  return Byte(c) < 0x20 || (Byte(c) >= 0x7F && Byte(c) < 0xA0) || Byte(c) == 0xC2;
}

std::string Escaped(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return {'\\', 'x', kDigits[Byte(c) >> 4], kDigits[Byte(c) & 0xF]};
}

}  // namespace

std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = UpperCharacterLength(text);
    if (plain > 0) {
      line += text.substr(0, plain);
    } else if (text.front() == '\n') {
      line += "\\n";
    } else if (!text.starts_with("\r\n")) {
      line += IsControl(text.front()) ? Escaped(text.front()) : std::string(1, text.front());
    }
    text.remove_prefix(std::max<std::size_t>(plain, 1));
  }
  return line;
}

}  // namespace platform
