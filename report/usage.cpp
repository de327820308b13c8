#include "report/usage.h"

#include <algorithm>

#include "stats/mdlMonth.h"

namespace usage {

std::vector<Slot> Days() {
  const mdlMonth::MonthStats& month = mdlMonth::Month();
  std::vector<Slot> slots;
  for (int day = 1; day <= 31; ++day) {
    slots.push_back({day, month.DayHits[day], month.DayBytes[day], month.DayFiles[day],
                     month.DayPages[day], month.DayTimeTaken[day], month.DayFailures[day]});
  }
  return slots;
}

std::vector<Slot> Hours() {
  const mdlMonth::MonthStats& month = mdlMonth::Month();
  std::vector<Slot> slots;
  for (int hour = 0; hour < 24; ++hour) {
    slots.push_back({hour, month.HourHits[hour], month.HourBytes[hour], month.HourFiles[hour],
                     month.HourPages[hour], month.HourTimeTaken[hour], 0});
  }
  return slots;
}

const Slot& Busiest(const std::vector<Slot>& slots, Measure measure) {
  return *std::max_element(slots.begin(), slots.end(), [measure](const Slot& a, const Slot& b) {
    return measure(a) < measure(b);
  });
}

}  // namespace usage
