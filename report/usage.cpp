#include "report/usage.h"

#include <algorithm>

#include "stats/mdlMonth.h"

namespace usage {

std::vector<Slot> Days() {
  const mdlMonth::MonthStats& month = mdlMonth::Month();
  std::vector<Slot> slots;
  for (int day = 1; day <= 31; ++day) {
    slots.push_back({.number = day,
                     .hits = month.DayHits[day],
                     .bytes = month.DayBytes[day],
                     .files = month.DayFiles[day],
                     .pages = month.DayPages[day],
                     .time_taken = month.DayTimeTaken[day],
                     .failures = month.DayFailures[day]});
  }
  return slots;
}

std::vector<Slot> Hours() {
  const mdlMonth::MonthStats& month = mdlMonth::Month();
  std::vector<Slot> slots;
  for (int hour = 0; hour < 24; ++hour) {
    slots.push_back({.number = hour,
                     .hits = month.HourHits[hour],
                     .bytes = month.HourBytes[hour],
                     .files = month.HourFiles[hour],
                     .pages = month.HourPages[hour],
                     .time_taken = month.HourTimeTaken[hour]});
  }
  return slots;
}

const Slot& Busiest(const std::vector<Slot>& slots, Measure measure) {
  return *std::max_element(slots.begin(), slots.end(), [measure](const Slot& a, const Slot& b) {
    return measure(a) < measure(b);
  });
}

}  // namespace usage
