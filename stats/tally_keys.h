// The keys of a tally in the table's order, for tests to compare. Test code only.
#ifndef HITWICK_STATS_TALLY_KEYS_H_
#define HITWICK_STATS_TALLY_KEYS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "stats/tally.h"

namespace stats {

inline std::vector<std::string> Keys(TallyTable& table) {
  std::vector<std::string> keys;
  for (std::int32_t rank = 1; rank <= table.Count(); ++rank) keys.emplace_back(table.At(rank).Key);
  return keys;
}

}  // namespace stats

#endif  // HITWICK_STATS_TALLY_KEYS_H_
