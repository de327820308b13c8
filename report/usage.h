// The month's sums per day and per hour of the day, side by side, with the figures worked out from
// them.
//
// No state. Called by the summary table and by the daily and hourly charts and tables.
#ifndef HITWICK_REPORT_USAGE_H_
#define HITWICK_REPORT_USAGE_H_

#include <vector>

#include "report/numbers.h"

namespace usage {

// One day (1..31) or one hour (0..23). Times in milliseconds.
struct Slot {
  int number = 0;
  double hits = 0;
  double bytes = 0;
  double files = 0;
  double pages = 0;
  double time_taken = 0;
  double failures = 0;  // days only
};

// All 31 days, whatever the month's length / all 24 hours, slot 24 of the damaged times left out.
std::vector<Slot> Days();
std::vector<Slot> Hours();

using Measure = double (*)(const Slot&);

inline double Hits(const Slot& slot) { return slot.hits; }
inline double KBytes(const Slot& slot) { return numbers::KBytes(slot.bytes); }
inline double Files(const Slot& slot) { return slot.files; }
inline double Pages(const Slot& slot) { return slot.pages; }
inline double AverageTime(const Slot& slot) { return numbers::Per(slot.time_taken, slot.hits); }
inline double FailurePercentage(const Slot& slot) {
  return numbers::Per(slot.failures * 100, slot.hits);
}

// The first slot with the largest value; the first slot of all when every value is 0.
const Slot& Busiest(const std::vector<Slot>& slots, Measure measure);
inline double Largest(const std::vector<Slot>& slots, Measure measure) {
  return measure(Busiest(slots, measure));
}

}  // namespace usage

#endif  // HITWICK_REPORT_USAGE_H_
