#include "config/text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace text {
namespace {

// The end of the run of digits that begins at `from`.
std::size_t SkipDigits(std::string_view text, std::size_t from) {
  while (from < text.size() && IsDigit(text[from])) ++from;
  return from;
}

template <class Integer>
std::optional<Integer> ToInteger(double value) {
  const double rounded = std::nearbyint(value);
  if (rounded < std::numeric_limits<Integer>::min() ||
      rounded > std::numeric_limits<Integer>::max()) {
    return std::nullopt;
  }
  return static_cast<Integer>(rounded);
}

template <class Integer>
std::optional<Integer> ToInteger(std::string_view text, bool signs) {
  // Numbers of a log are short runs of digits: no fraction, no sign, nothing to round.
  if (!text.empty() && text.size() <= 9 && SkipDigits(text, 0) == text.size()) {
    std::int32_t value = 0;
    for (const char c : text) value = value * 10 + (c - '0');
    if (value > std::numeric_limits<Integer>::max()) return std::nullopt;
    return static_cast<Integer>(value);
  }
  return ToInteger<Integer>(NumericValue(text, signs));
}

}  // namespace

std::size_t FindIgnoringCase(std::string_view text, std::string_view needle, std::size_t from) {
  const char first = ToLower(needle.front());
  for (std::size_t i = from; i + needle.size() <= text.size(); ++i) {
    if (ToLower(text[i]) == first && EqualsIgnoringCase(text.substr(i, needle.size()), needle)) {
      return i;
    }
  }
  return kNone;
}

double NumericValue(std::string_view text, bool signs) {
  const bool negative = signs && !text.empty() && text.front() == '-';
  if (signs && !text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  std::size_t end = SkipDigits(text, 0);
  if (end == 0) return 0;
  if (end + 1 < text.size() && text[end] == '.' && IsDigit(text[end + 1])) {
    end = SkipDigits(text, end + 1);
  }
  double value = 0;
  const auto [stop, failure] =
      std::from_chars(text.data(), text.data() + end, value, std::chars_format::fixed);
  // Too large for a double, or, with nothing but zeros before the ".", too small for one.
  if (failure != std::errc()) {
    const bool large = text.find_first_not_of('0') < text.find('.');
    value = large ? std::numeric_limits<double>::infinity() : 0;
  }
  return negative ? -value : value;
}

std::optional<std::int16_t> ToInt16(std::string_view text, bool signs) {
  return ToInteger<std::int16_t>(text, signs);
}

std::optional<std::int16_t> ToInt16(double value) { return ToInteger<std::int16_t>(value); }

std::optional<std::int32_t> ToInt32(std::string_view text, bool signs) {
  return ToInteger<std::int32_t>(text, signs);
}

std::string HtmlEscape(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace text
