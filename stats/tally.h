// `TallyTable`: how often each text occurred, with a quantity per text, ranked by count.
//
// The order is: count, highest first; among equal counts the key that reached that count first.
// It comes from a hash index and the sequence number of each key's last addition, and the ranked
// order is worked out only when it is read, and only as far as it is read.
#ifndef HITWICK_STATS_TALLY_H_
#define HITWICK_STATS_TALLY_H_

#include <cstddef>
#include <cstdint>
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
  // A table with keys of its own.
  TallyTable() : own_keys_(std::make_unique<KeyStore>()), keys_(own_keys_.get()) {}
  // A table that shares its keys: `column` (0-based) of `keys`, which must outlive it.
  TallyTable(KeyStore& keys, std::size_t column) : keys_(&keys), column_(column) {}
  TallyTable(const TallyTable&) = delete;
  TallyTable& operator=(const TallyTable&) = delete;

  // The number of entries, N.
  std::int32_t Count() const { return static_cast<std::int32_t>(rows_.size()); }
  // Row `rank` (1..N) of the table's present order.
  TallyEntry At(std::int32_t rank);
  // The entry of exactly that key (letter case counts); false when there is none.
  bool Find(const HashedKey& key, TallyEntry* entry) const;
  bool Contains(const HashedKey& key) const { return Lookup(key) != KeyStore::kNone; }

  // One occurrence of `key`. Throws `Fault` on overflow of the count or the metric, and
  // std::bad_alloc when the table cannot grow; the entry may then have been counted already.
  void Add(const HashedKey& key, float value, bool averaging);
  // Ranks by metric, highest first, ties in their previous order. The order stays until `Clear`.
  void SortByMetric();
  // Forgets all entries, back to the order by count.
  void Clear();

 private:
  using Ref = KeyStore::Ref;
  using Cell = KeyStore::Cell;

  enum class Order {
    kByCount,   // count, then last_add; the first ranked_ rows of rank_ are in their places
    kByMetric,  // metric, then as kByCount; likewise
    kExplicit   // all of rank_: entries were added after SortByMetric
  };

  Cell& CellAt(Ref row) { return keys_->At(row, column_); }
  const Cell& CellAt(Ref row) const { return keys_->At(row, column_); }
  TallyEntry EntryAt(Ref row) const {
    const Cell& cell = CellAt(row);
    return {keys_->Key(row), cell.count, cell.metric};
  }
  Ref Lookup(const HashedKey& key) const;
  void Enter(Ref row, float value);
  void CountAgain(Cell& cell, float value, bool averaging);
  bool Precedes(const Cell& a, const Cell& b) const;
  void EnsureRanked(std::size_t count);
  void MakeOrderExplicit();
  void MoveForward(Ref row);

  std::unique_ptr<KeyStore> own_keys_;
  KeyStore* const keys_;
  const std::size_t column_ = 0;
  std::vector<Ref> rows_;  // in order of first addition
  std::uint64_t additions_ = 0;
  Order order_ = Order::kByCount;
  std::vector<Ref> rank_;
  std::size_t ranked_ = 0;
};

}  // namespace stats

namespace mdlMonth {

using stats::TallyEntry;
using stats::TallyTable;

// The number of entries of a table.
std::int32_t TallyCount(const TallyTable& table);

// Adds one occurrence of `key` with `value` to its metric: summed, or with `averaging` the
// running mean (computed in double, stored as single; the first value as it is). An error ends
// the call and is reported as a warning in the event log.
void TallyAdd(const stats::HashedKey& key, TallyTable& table, float value, bool averaging);
inline void TallyAdd(const stats::HashedKey& key, TallyTable& table, float value) {
  TallyAdd(key, table, value, false);
}

// Reorders a table by metric, highest first; equal metrics keep their order. The table stays so
// until it is filled again.
void SortTallyByMetric(TallyTable& table);

}  // namespace mdlMonth

#endif  // HITWICK_STATS_TALLY_H_
