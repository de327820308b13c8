// Byte-wise text helpers that every folder above shares. Letter case means A to Z only, whatever
// the locale: log text is bytes and is never decoded. Numbers as text are in number_text.h.
#ifndef HITWICK_CONFIG_TEXT_H_
#define HITWICK_CONFIG_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/names.h"

namespace text {

inline constexpr std::size_t kNone = std::string_view::npos;

constexpr char ToLower(char c) { return platform::LowerCase(c); }
constexpr char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Equality without regard to letter case.
inline bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return platform::SameName(a, b);
}
// The position of `needle` in `text` at or after `from`, without regard to letter case; kNone when
// it does not occur. `needle` is not empty.
std::size_t FindIgnoringCase(std::string_view text, std::string_view needle, std::size_t from = 0);
inline bool ContainsIgnoringCase(std::string_view text, std::string_view needle) {
  return FindIgnoringCase(text, needle) != kNone;
}

using platform::Trimmed;
// The text without leading and trailing blanks (the space character only).
inline std::string_view TrimBlanks(std::string_view text) { return Trimmed(text, " "); }

// The numeric value of a text: its leading decimal digits, with a fraction when "." and digits
// follow; 0 without a leading digit. With `signs` a leading "+" or "-" is understood as well.
double NumericValue(std::string_view text, bool signs = false);

// The numeric value rounded half to even; nothing when it does not fit the integer type.
std::optional<std::int16_t> ToInt16(std::string_view text, bool signs = false);
std::optional<std::int32_t> ToInt32(std::string_view text, bool signs = false);
// A finite number likewise.
std::optional<std::int16_t> ToInt16(double value);

// `text` with `&`, `<`, `>` and `"` as character references, for what a user typed or a name
// server sent. Log text is not passed through this: the tokeniser has made it harmless.
std::string HtmlEscape(std::string_view text);

}  // namespace text

#endif  // HITWICK_CONFIG_TEXT_H_
