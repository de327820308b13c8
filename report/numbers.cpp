#include "report/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "config/number_text.h"

namespace numbers {
namespace {

// Adds one to the last digit of a decimal number, carrying through the point as far as needed.
void CountUp(std::string& digits) {
  for (std::size_t i = digits.size(); i-- > 0;) {
    if (digits[i] == '.') continue;
    if (digits[i] != '9') {
      ++digits[i];
      return;
    }
    digits[i] = '0';
  }
  digits.insert(digits.begin(), '1');
}

}  // namespace

double Round(double value) { return std::nearbyint(value) + 0.0; }

std::string Plain(double value) { return text::PlainNumber(value); }

std::string Rounded(double value) { return Plain(Round(value)); }

std::string Tenths(double value) {
  std::string digits = Plain(std::abs(value));
  const std::size_t point = digits.find('.');
  if (point == std::string::npos) {
    digits += ".0";
  } else if (digits.size() > point + 2) {
    const bool up = digits[point + 2] >= '5';
    digits.resize(point + 2);
    if (up) CountUp(digits);
  }
  return value < 0 && digits != "0.0" ? "-" + digits : digits;
}

double Per(double value, double count) { return value / std::max(1.0, count); }

std::string Share(double value, double total) { return Rounded(Per(value * 100, total)); }

double FullScale(double largest) {
  const double floored = std::max(1.0, largest);
  const int exponent = static_cast<int>(Round(std::log10(floored) + 0.5));
  double decade = 1;
  for (int i = 1; i < exponent; ++i) decade *= 10;
  if (exponent == 0) return 1;
  // 3 * decade is three tenths of the full power, without the error of multiplying by 0.3.
  return 3 * decade > floored ? 3 * decade : 10 * decade;
}

std::string BarHeight(double value, double full_scale) {
  return Rounded(Per(value * 300, full_scale));
}

double Mean(double sum, double count) { return count > 0 ? sum / count : 0; }

double Deviation(double sum, double squares, double count) {
  const double mean = Mean(sum, count);
  return std::sqrt(std::max(0.0, Mean(squares, count) - mean * mean));
}

}  // namespace numbers
