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

namespace stats {

// One row, as read from a table. `Key` stays valid until the table is cleared.
struct TallyEntry {
  std::string_view Key;
  std::int32_t Count = 0;  // additions of the key, 1 or more
  float Metric = 0;        // sum (or, in averaging mode, running mean) of the values added
};

class TallyTable {
 public:
  TallyTable() = default;
  TallyTable(const TallyTable&) = delete;
  TallyTable& operator=(const TallyTable&) = delete;

  // The number of entries, N.
  std::int32_t Count() const { return static_cast<std::int32_t>(rows_.size()); }
  // The capacity in entries: 1 when fresh, then 4, 10, 22, 46, ...; kept by `Clear`.
  std::int32_t UpperIndex() const { return upper_index_; }
  // Row `rank` (1..N) of the table's present order.
  TallyEntry At(std::int32_t rank);
  // The entry of exactly that key (letter case counts); false when there is none.
  bool Find(const HashedKey& key, TallyEntry* entry) const;
  bool Contains(const HashedKey& key) const { return Lookup(key) != nullptr; }

  // Asks the processor to fetch where a search for `key` will begin. A hit adds to several tables;
  // asking for all of them first lets their cache misses overlap.
  void Prefetch(const HashedKey& key) const {
    if (!buckets_.empty()) __builtin_prefetch(&buckets_[Start(key)]);
  }

  // One occurrence of `key`. Throws `Fault` on overflow of the count or the metric, and
  // std::bad_alloc when the table cannot grow; the entry may then have been counted already.
  void Add(const HashedKey& key, float value, bool averaging);
  // Ranks by metric, highest first, ties in their previous order. The order stays until `Clear`.
  void SortByMetric();
  // Forgets all entries, back to the order by count.
  void Clear();

 private:
  // An entry, followed in memory by the bytes of its key, so that a search that has found its
  // bucket touches one place more.
  struct Row {
    std::uint64_t last_add;  // sequence number of the latest addition
    std::uint32_t tag;       // upper half of the hash: the start in the index, and a quick check
    std::uint32_t length;    // of the key
    std::int32_t count;
    float metric;

    std::string_view key() const { return {reinterpret_cast<const char*>(this + 1), length}; }
    bool Is(std::uint32_t key_tag, std::string_view text) const {
      return tag == key_tag && key() == text;
    }
  };
  struct Bucket {
    Row* row = nullptr;
    std::uint32_t tag = 0;
  };
  enum class Order {
    kByCount,   // count, then last_add; the first ranked_ rows of rank_ are in their places
    kByMetric,  // metric, then as kByCount; likewise
    kExplicit   // all of rank_: entries were added after SortByMetric
  };

  static std::uint32_t TagOf(const HashedKey& key) {
    return static_cast<std::uint32_t>(key.hash >> 32);
  }
  std::size_t Start(const HashedKey& key) const { return TagOf(key) & (buckets_.size() - 1); }
  Row* Lookup(const HashedKey& key) const;
  Row* Append(const HashedKey& key, float value);
  void* Allocate(std::size_t size);
  void GrowIndex();
  void EnterInIndex(Row* row);
  void CountAgain(Row& row, float value, bool averaging);
  bool Precedes(const Row& a, const Row& b) const;
  void EnsureRanked(std::size_t count);
  void MakeOrderExplicit();
  void MoveForward(const Row* row);

  struct Block {
    std::unique_ptr<std::uint64_t[]> words;
    std::size_t size = 0;  // in words
  };

  std::vector<Row*> rows_;       // in order of first addition
  std::vector<Bucket> buckets_;  // open addressing, a power of two in size
  std::vector<Block> blocks_;    // where the rows lie
  std::size_t block_ = 0;        // the block being filled
  std::size_t block_used_ = 0;   // in words
  std::uint64_t additions_ = 0;
  std::int32_t upper_index_ = 1;
  Row* last_row_ = nullptr;  // the row of the previous addition: log lines repeat themselves
  Order order_ = Order::kByCount;
  std::vector<Row*> rank_;
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
