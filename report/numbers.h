// The reports' arithmetic: rounding, the two ways to write a number, shares and bar scales.
//
// No state. Called by every table and chart; all figures are doubles, whatever they were added in.
#ifndef HITWICK_REPORT_NUMBERS_H_
#define HITWICK_REPORT_NUMBERS_H_

#include <string>

namespace numbers {

// The nearest integer, a half going to the even one. Never a negative zero.
double Round(double value);

// `value` in plain decimal / rounded to an integer / with exactly one decimal. The one decimal
// rounds half away from zero, judged on the digits that the value is written with (0.25 is 0.3).
std::string Plain(double value);
std::string Rounded(double value);
std::string Tenths(double value);

// What reports call a KByte is 1000 bytes.
inline double KBytes(double bytes) { return bytes / 1000; }
// Divides by 1 where a quiet month has nothing to divide by.
double Per(double value, double count);
// The percentage of `value` in `total`, rounded to an integer.
std::string Share(double value, double total);

// The value at the top of a chart whose largest value is `largest`: 1, 3, 10, 30, 100, ...
double FullScale(double largest);
// The height of a bar, 300 at full scale.
std::string BarHeight(double value, double full_scale);

// The mean, and the standard deviation from it, of `count` values with the given sum and sum of
// squares; 0 without values.
double Mean(double sum, double count);
double Deviation(double sum, double squares, double count);

}  // namespace numbers

#endif  // HITWICK_REPORT_NUMBERS_H_
