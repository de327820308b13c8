// The keys of one or several tallies: every different text once, in a row that holds a cell for
// each tally and some numbers that the owner keeps with the key.
//
// Tables that a hit adds to with the same key share a store, one column each, so that the key is
// looked for once and its cells lie side by side: adding hits is mostly waiting for memory. Rows
// are packed in large chunks, in order of entry, and never move.
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
  static constexpr Ref kNone = 0;

  // What one tally knows of a key. Twelve bytes: a row of four cells and three notes is as long as
  // a cache line.
  struct Cell {
    std::uint32_t last_add = 0;  // number of the latest addition
    std::int32_t count = 0;      // 0: the key is not in this tally
    float metric = 0;
  };

  explicit KeyStore(std::size_t columns = 1, std::size_t notes = 0);
  KeyStore(const KeyStore&) = delete;
  KeyStore& operator=(const KeyStore&) = delete;

  // The place of exactly that key, or kNone.
  Ref Find(const HashedKey& key) const {
    const std::uint32_t tag = TagOf(key);
    for (std::size_t i = tag & mask_;; i = (i + 1) & mask_) {
      const Bucket bucket = buckets_[i];
      if (bucket.row == kNone) return kNone;
      if (bucket.tag == tag && Key(bucket.row) == key.text) return bucket.row;
    }
  }
  // The same; a new key is entered, its cells and notes at 0. Throws std::bad_alloc.
  Ref FindOrEnter(const HashedKey& key) {
    const Ref row = Find(key);
    return row != kNone ? row : Enter(key);
  }
  // The same for stores whose keys mostly repeat: the key given last is found without hashing.
  Ref FindOrEnterAgain(std::string_view text) {
    if (latest_ != kNone && Key(latest_) == text) return latest_;
    return latest_ = FindOrEnter(text);
  }

  // Asks the processor to fetch what `Find` will read of the index / of the row.
  void PrefetchBucket(const HashedKey& key) const {
    __builtin_prefetch(&buckets_[TagOf(key) & mask_]);
  }
  void PrefetchRow(const HashedKey& key) const {
    const std::uint32_t tag = TagOf(key);
    std::size_t i = tag & mask_;
    while (buckets_[i].row != kNone && buckets_[i].tag != tag) i = (i + 1) & mask_;
    if (buckets_[i].row == kNone) return;
    const char* const row = reinterpret_cast<const char*>(WordsOf(buckets_[i].row));
    __builtin_prefetch(row);
    __builtin_prefetch(row + 64);
  }

  std::string_view Key(Ref row) const {
    const std::uint32_t* const words = WordsOf(row);
    return {reinterpret_cast<const char*>(words + text_offset_), words[0]};
  }
  // The cell of a column (0-based).
  Cell& At(Ref row, std::size_t column) {
    return reinterpret_cast<Cell*>(WordsOf(row) + cell_offset_)[column];
  }
  const Cell& At(Ref row, std::size_t column) const {
    return const_cast<KeyStore&>(*this).At(row, column);
  }
  // A number of the owner's (0-based), 0 at first.
  std::uint32_t& Note(Ref row, std::size_t note) { return WordsOf(row)[1 + note]; }

  // Calls `visit(row)` for every key in order of entry.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (std::size_t chunk = 0; chunk < chunks_.size(); ++chunk) {
      for (std::size_t word = chunk == 0 ? 1 : 0; word < chunks_[chunk].used;) {
        const Ref row = static_cast<Ref>((chunk << kWordBits) + word);
        visit(row);
        word += RowWords(Key(row).size());
      }
    }
  }

  // Forgets all keys.
  void Clear();

 private:
  // A row is a number of words: the key's length, the notes, the cells, and the key's bytes.
  struct Chunk {
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;  // in words
    std::size_t used = 0;
  };
  struct Bucket {
    std::uint32_t tag = 0;  // half of the hash: the start in the index, and a quick check
    Ref row = kNone;
  };
  static constexpr std::size_t kCellWords = sizeof(Cell) / sizeof(std::uint32_t);
  // A ref is the number of the chunk and the word in it. The first word of all stays unused, so
  // that no row has the number 0.
  static constexpr unsigned kWordBits = 16;
  static constexpr std::size_t kChunkWords = std::size_t{1} << kWordBits;

  static std::uint32_t TagOf(const HashedKey& key) {
    return static_cast<std::uint32_t>(key.hash >> 32);
  }
  std::uint32_t* WordsOf(Ref row) const {
    std::byte* const bytes = chunks_[row >> kWordBits].bytes.get();
    return reinterpret_cast<std::uint32_t*>(bytes) + row % kChunkWords;
  }
  std::size_t RowWords(std::size_t text_size) const {
    return text_offset_ + (text_size + sizeof(std::uint32_t) - 1) / sizeof(std::uint32_t);
  }
  Ref Enter(const HashedKey& key);
  Ref Allocate(std::size_t words);
  void GrowIndex();
  void PutInIndex(const Bucket& entry);

  const std::size_t cell_offset_;  // in words of a row
  const std::size_t text_offset_;
  std::vector<Bucket> buckets_;  // open addressing, a power of two in size
  std::size_t mask_;             // its size less 1
  std::size_t count_ = 0;        // keys
  std::vector<Chunk> chunks_;
  Ref latest_ = kNone;  // of `FindOrEnterAgain`
};

}  // namespace stats

#endif  // HITWICK_STATS_KEY_STORE_H_
