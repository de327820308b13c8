// Numbers as decimal text, the same on every platform and in every locale. Other helpers for text
// are in text.h.
#ifndef HITWICK_CONFIG_NUMBER_TEXT_H_
#define HITWICK_CONFIG_NUMBER_TEXT_H_

#include <string>

namespace text {

// A number in plain decimal: no exponent, no thousands separators, "." as the decimal point. A
// number without a fraction with all its integer digits, any other in the shortest form that reads
// back as the same double.
std::string PlainNumber(double value);

// A number of 0 or more with at least two digits, zero-padded.
std::string TwoDigits(int number);

}  // namespace text

#endif  // HITWICK_CONFIG_NUMBER_TEXT_H_
