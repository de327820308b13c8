// The keys of one or several tallies: every different text once, with a cell for each tally.
//
// Tables that a hit adds to with the same key share a store, one column each, so that the key is
// looked for once and its cells lie side by side: adding hits is mostly waiting for memory.
#ifndef HITWICK_STATS_KEY_STORE_H_
#define HITWICK_STATS_KEY_STORE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "stats/hashed_key.h"

namespace stats {

class KeyStore {
 public:
  // The place of a key and its cells; stays valid until the store is emptied.
  using Ref = std::uint32_t;
  static constexpr Ref kNone = 0xFFFFFFFF;

  // What one tally knows of a key.
  struct Cell {
    std::uint64_t last_add = 0;  // sequence number of the latest addition
    std::int32_t count = 0;      // 0: the key is not in this tally
    float metric = 0;
  };

  explicit KeyStore(std::size_t columns = 1) : columns_(columns) {}
  KeyStore(const KeyStore&) = delete;
  KeyStore& operator=(const KeyStore&) = delete;

  // The place of exactly that key, or kNone. The key found last is found again at once.
  Ref Find(const HashedKey& key) const;
  // Enters a key that is not in the store, its cells at 0. Throws std::bad_alloc.
  Ref Append(const HashedKey& key);

  std::string_view Key(Ref ref) const {
    const Row& row = RowAt(ref);
    return {reinterpret_cast<const char*>(CellsOf(row) + columns_), row.length};
  }
  // The cell of a column (0-based).
  Cell& At(Ref ref, std::size_t column) { return CellsOf(RowAt(ref))[column]; }
  const Cell& At(Ref ref, std::size_t column) const { return CellsOf(RowAt(ref))[column]; }

  // Cells with a count are counted as they come into use and as a tally gives its own up; when
  // none is left the store forgets its keys, keeping the memory.
  void AddUse() { ++uses_; }
  void DropUses(std::size_t count);

 private:
  // A row is this, the cells, and the bytes of the key.
  struct Row {
    std::uint32_t tag;     // upper half of the hash: the start in the index, and a quick check
    std::uint32_t length;  // of the key
  };
  struct Bucket {
    std::uint32_t tag = 0;
    Ref row = kNone;
  };
  struct Block {
    std::unique_ptr<std::uint64_t[]> words;
    std::size_t size = 0;  // in words
  };
  // Rows start at words of a block; a ref is the number of the block and the word in it.
  static constexpr unsigned kWordBits = 17;
  static constexpr std::size_t kBlockWords = std::size_t{1} << kWordBits;

  static std::uint32_t TagOf(const HashedKey& key) {
    return static_cast<std::uint32_t>(key.hash >> 32);
  }
  Row& RowAt(Ref ref) const {
    return *reinterpret_cast<Row*>(blocks_[ref >> kWordBits].words.get() + ref % kBlockWords);
  }
  static Cell* CellsOf(Row& row) { return reinterpret_cast<Cell*>(&row + 1); }
  static const Cell* CellsOf(const Row& row) { return reinterpret_cast<const Cell*>(&row + 1); }
  bool Holds(Ref ref, const HashedKey& key) const {
    return RowAt(ref).tag == TagOf(key) && Key(ref) == key.text;
  }
  Ref Allocate(std::size_t bytes);
  void EnterInIndex(Ref ref);
  void GrowIndex();
  void Clear();

  const std::size_t columns_;
  std::vector<Bucket> buckets_;  // open addressing, a power of two in size
  std::vector<Block> blocks_;
  std::vector<Ref> rows_;
  std::size_t block_ = 0;       // the block being filled
  std::size_t block_used_ = 0;  // in words
  std::size_t uses_ = 0;
  mutable Ref last_ = kNone;  // the key found or entered last
};

}  // namespace stats

#endif  // HITWICK_STATS_KEY_STORE_H_
