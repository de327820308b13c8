// The days that a month page reports.
#ifndef HITWICK_REPORT_PERIOD_H_
#define HITWICK_REPORT_PERIOD_H_

#include <cstdint>

namespace report {

struct Period {
  std::int16_t firstDay = 1;
  std::int16_t lastDay = 31;
  std::int16_t month = 1;  // 1..12
  std::int16_t year = 0;   // four digits
};

}  // namespace report

#endif  // HITWICK_REPORT_PERIOD_H_
