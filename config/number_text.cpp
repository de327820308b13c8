#include "config/number_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace text {

std::string PlainNumber(double value) {
  std::array<char, 1100> digits;  // the smallest double has 1,074 decimal places
  char* const begin = digits.data();
  char* const end = begin + digits.size();
  const bool whole = std::trunc(value) == value;
  const auto result = whole ? std::to_chars(begin, end, value, std::chars_format::fixed, 0)
                            : std::to_chars(begin, end, value, std::chars_format::fixed);
  if (std::string_view(begin, static_cast<std::size_t>(result.ptr - begin)) == "-0") return "0";
  return std::string(begin, result.ptr);
}

std::string TwoDigits(int number) {
  const std::string digits = std::to_string(number);
  return digits.size() < 2 ? "0" + digits : digits;
}

}  // namespace text
