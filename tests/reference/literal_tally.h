// A tally table kept in the plainest way: one array that is searched from the front, with adjacent
// swaps and a bubble sort. Slow, and obviously right; the real table has to agree with it, state
// for state. Test code only.
#ifndef HITWICK_TESTS_REFERENCE_LITERAL_TALLY_H_
#define HITWICK_TESTS_REFERENCE_LITERAL_TALLY_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reference {

struct TallyEntry {
  std::string Key;
  std::int32_t Count = 0;
  float Metric = 0;
};

// Entry 0 is the header, its count the number of entries in use; entries 1..N follow in the
// table's order, the rest is spare.
struct TallyTable {
  std::vector<TallyEntry> entries = std::vector<TallyEntry>(2);

  std::int32_t UpperIndex() const { return static_cast<std::int32_t>(entries.size()) - 1; }
  std::int32_t Count() const { return entries[0].Count; }
  void Clear() { entries[0].Count = 0; }
};

inline void MoveTowardsFront(TallyTable& table, std::size_t index) {
  std::vector<TallyEntry>& entries = table.entries;
  std::size_t j = index;
  while (j >= 2 && entries[j - 1].Count < entries[j].Count) {
    std::swap(entries[j - 1], entries[j]);
    --j;
  }
}

// One more addition of entry `index`. A metric that overflows ends the addition: the count stays
// increased, the entry where it was.
inline void CountAgain(TallyTable& table, std::size_t index, float value, bool averaging) {
  TallyEntry& entry = table.entries[index];
  entry.Count += 1;
  if (averaging) {
    const double c = entry.Count;
    entry.Metric = static_cast<float>(
        ((c - 1) * static_cast<double>(entry.Metric) + static_cast<double>(value)) / c);
  } else {
    const float sum = entry.Metric + value;
    if (!std::isfinite(sum)) return;
    entry.Metric = sum;
  }
  MoveTowardsFront(table, index);
}

inline void TallyAdd(std::string_view key, TallyTable& table, float value, bool averaging) {
  const auto n = static_cast<std::size_t>(table.Count());
  if (table.UpperIndex() >= 1) {
    for (std::size_t i = 1; i <= n; ++i) {
      if (table.entries[i].Key == key) {
        CountAgain(table, i, value, averaging);
        return;
      }
    }
  }
  if (n + 1 >= table.entries.size()) table.entries.resize(2 * (n + 1) + 1);
  table.entries[n + 1] = {std::string(key), 1, value};
  table.entries[0].Count = static_cast<std::int32_t>(n + 1);
}

inline void SortTallyByMetric(TallyTable& table) {
  const auto n = static_cast<std::size_t>(table.Count());
  bool swapped = true;
  while (swapped) {
    swapped = false;
    for (std::size_t i = 2; i <= n; ++i) {
      if (table.entries[i - 1].Metric < table.entries[i].Metric) {
        std::swap(table.entries[i - 1], table.entries[i]);
        swapped = true;
      }
    }
  }
}

}  // namespace reference

#endif  // HITWICK_TESTS_REFERENCE_LITERAL_TALLY_H_
