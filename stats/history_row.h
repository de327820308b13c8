// The totals of one month, as the yearly history keeps them.
#ifndef HITWICK_STATS_HISTORY_ROW_H_
#define HITWICK_STATS_HISTORY_ROW_H_

#include <cstdint>

namespace stats {

// In the order of the fields of "History.txt".
struct HistoryRow {
  std::int16_t mon = 0;  // 1..12
  std::int16_t yr = 0;   // four digits; 0 marks an empty slot
  double bytes = 0;
  double hits = 0;
  double pages = 0;
  double upages = 0;        // distinct pages
  double responseTime = 0;  // summed over all hits, milliseconds
  double visitors = 0;      // distinct client addresses
  double visits = 0;
  double files = 0;
};

}  // namespace stats

#endif  // HITWICK_STATS_HISTORY_ROW_H_
