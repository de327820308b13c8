// `TallyTable`: how often each text occurred, with a quantity per text, ranked by count.
//
// The order is: count, highest first; among equal counts the key that reached that count first.
// It comes from a hash index and the sequence number of each key's last addition, and the ranked
// order is worked out only when it is read, and only as far as it is read.
#ifndef HITWICK_STATS_TALLY_H_
#define HITWICK_STATS_TALLY_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "stats/hashed_key.h"
#include "stats/key_store.h"

namespace stats {

// One row, as read from a table. `Key` stays valid until the table is cleared.
struct TallyEntry {
  std::string_view Key;
  std::int32_t Count = 0;  // additions of the key, 1 or more
  float Metric = 0;        // sum (or, in averaging mode, running mean) of the values added
};

class TallyTable {
 public:
  using Row = KeyStore::Ref;

  // Additions are numbered up to here, then anew in the order that they have.
  static constexpr std::uint32_t kLastNumber = std::numeric_limits<std::uint32_t>::max();

  // A table with keys of its own.
  explicit TallyTable(std::uint32_t last_number = kLastNumber)
      : own_keys_(std::make_unique<KeyStore>()),
        keys_(own_keys_.get()),
        last_number_(last_number) {}
  // A table that shares its keys: `column` (0-based) of `keys`, which must outlive it.
  TallyTable(KeyStore& keys, std::size_t column) : keys_(&keys), column_(column) {}
  TallyTable(const TallyTable&) = delete;
  TallyTable& operator=(const TallyTable&) = delete;

  // The number of entries, N.
  std::int32_t Count() const { return count_; }
  // Row `rank` (1..N) of the table's present order.
  TallyEntry At(std::int32_t rank);
  // The entry of exactly that key (letter case counts); false when there is none.
  bool Find(const HashedKey& key, TallyEntry* entry) const;
  bool Contains(const HashedKey& key) const { return Lookup(key) != KeyStore::kNone; }

  // Where the keys are; rows of this store are what `AddAt` takes.
  KeyStore& Keys() { return *keys_; }
  // One occurrence of the key in that row with `value`, which is summed. False on overflow of the
  // count or the metric; the entry may then have been counted already.
  bool AddAt(Row row, float value) { return AddWith<Sum>(row, value); }
  // The same with the metric a running mean (computed in double, stored as single).
  bool AddToMeanAt(Row row, float value) { return AddWith<RunningMean>(row, value); }

  // Ranks by metric, highest first, ties in their previous order. The order stays until `Clear`.
  void SortByMetric();
  // Forgets all entries, back to the order by count.
  void Clear();

 private:
  using Cell = KeyStore::Cell;

  enum class Order {
    kByCount,   // count, then last_add; the first ranked_ rows of rank_ are in their places
    kByMetric,  // metric, then as kByCount; likewise
    kExplicit   // all of rank_: entries were added after SortByMetric
  };

  static float Sum(const Cell& cell, float value) { return cell.metric + value; }
  // The mean of `count` values whose mean is `metric`, and one more.
  static float RunningMean(const Cell& cell, float value) {
    const double count = cell.count;
    return static_cast<float>(
        (count * static_cast<double>(cell.metric) + static_cast<double>(value)) / (count + 1));
  }

  // A hit makes some ten of these additions; what is rare is kept out of line.
  template <float (*kCombine)(const Cell&, float)>
  bool AddWith(Row row, float value) {
    Cell& cell = CellAt(row);
    if (settled_ || additions_ == last_number_) Unsettle();
    if (cell.count == 0) {
      Enter(row, cell, value);
      return true;
    }
    const float metric = kCombine(cell, value);
    if (!std::isfinite(metric) || cell.count == kMostCounted) return Overflow(cell);
    cell.metric = metric;
    cell.count += 1;
    cell.last_add = ++additions_;
    if (order_ == Order::kExplicit) MoveForward(row);
    return true;
  }

  static constexpr std::int32_t kMostCounted = std::numeric_limits<std::int32_t>::max();

  Cell& CellAt(Row row) { return keys_->At(row, column_); }
  const Cell& CellAt(Row row) const { return keys_->At(row, column_); }
  TallyEntry EntryAt(Row row) const {
    const Cell& cell = CellAt(row);
    return {keys_->Key(row), cell.count, cell.metric};
  }
  Row Lookup(const HashedKey& key) const;
  void Enter(Row row, Cell& cell, float value);
  bool Overflow(Cell& cell);
  void Unsettle();
  void NumberAnew();
  std::vector<Row> Rows() const;
  bool Precedes(const Cell& a, const Cell& b) const;
  void EnsureRanked(std::size_t count);
  void MakeOrderExplicit();
  void MoveForward(Row row);

  std::unique_ptr<KeyStore> own_keys_;
  KeyStore* const keys_;
  const std::size_t column_ = 0;
  const std::uint32_t last_number_ = kLastNumber;
  std::int32_t count_ = 0;
  std::uint32_t additions_ = 0;  // numbers given so far
  bool settled_ = false;         // the order has been looked at since the last addition
  Order order_ = Order::kByCount;
  std::vector<Row> rank_;
  std::size_t ranked_ = 0;
};

}  // namespace stats

namespace mdlMonth {

using stats::TallyEntry;
using stats::TallyTable;

// The number of entries of a table.
std::int32_t TallyCount(const TallyTable& table);

// Adds one occurrence of `key` with `value` to its metric: summed, or with `averaging` the
// running mean (the first value as it is). An error ends the call and is reported as a warning in
// the event log.
void TallyAdd(const stats::HashedKey& key, TallyTable& table, float value, bool averaging = false);

// The same for a key whose row is known, summed.
inline void TallyAddAt(TallyTable::Row row, TallyTable& table, float value);
// The warnings of additions that failed: a count or metric that overflows, a key for which there
// is no memory.
void LogTallyOverflow(std::string_view key, float value);
void LogTallyNotExtended(std::string_view key, float value, const TallyTable& table);

inline void TallyAddAt(TallyTable::Row row, TallyTable& table, float value) {
  if (!table.AddAt(row, value)) LogTallyOverflow(table.Keys().Key(row), value);
}

// Reorders a table by metric, highest first; equal metrics keep their order. The table stays so
// until it is filled again.
void SortTallyByMetric(TallyTable& table);

}  // namespace mdlMonth

#endif  // HITWICK_STATS_TALLY_H_
