#include "stats/key_store.h"

#include <algorithm>
#include <new>

namespace stats {
namespace {

constexpr std::size_t kFirstIndexSize = 16;

}  // namespace

KeyStore::Ref KeyStore::Find(const HashedKey& key) const {
  if (last_ != kNone && Holds(last_, key)) return last_;
  if (buckets_.empty()) return kNone;
  const std::size_t mask = buckets_.size() - 1;
  const std::uint32_t tag = TagOf(key);
  for (std::size_t i = tag & mask;; i = (i + 1) & mask) {
    const Bucket& bucket = buckets_[i];
    if (bucket.row == kNone) return kNone;
    if (bucket.tag == tag && Key(bucket.row) == key.text) return last_ = bucket.row;
  }
}

KeyStore::Ref KeyStore::Append(const HashedKey& key) {
  if (2 * (rows_.size() + 1) > buckets_.size()) GrowIndex();
  const Ref ref = Allocate(sizeof(Row) + columns_ * sizeof(Cell) + key.text.size());
  rows_.push_back(ref);
  Row* const row = new (&RowAt(ref)) Row{TagOf(key), static_cast<std::uint32_t>(key.text.size())};
  Cell* const cells = CellsOf(*row);
  std::uninitialized_fill_n(cells, columns_, Cell());
  std::copy(key.text.begin(), key.text.end(), reinterpret_cast<char*>(cells + columns_));
  EnterInIndex(ref);
  return last_ = ref;
}

// Blocks are filled one after the other and kept when the store is emptied. A row larger than a
// block gets one of its own.
KeyStore::Ref KeyStore::Allocate(std::size_t bytes) {
  const std::size_t words = (bytes + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
  while (block_ < blocks_.size() && blocks_[block_].size - block_used_ < words) {
    ++block_;
    block_used_ = 0;
  }
  if (block_ == blocks_.size()) {
    if (block_ >> (32 - kWordBits) != 0) throw std::bad_alloc();
    const std::size_t size = std::max(kBlockWords, words);
    blocks_.push_back({std::make_unique_for_overwrite<std::uint64_t[]>(size), size});
  }
  const Ref ref = static_cast<Ref>((block_ << kWordBits) + block_used_);
  block_used_ += words;
  // What lies beyond the first words of a larger block has no number.
  if (block_used_ >= kBlockWords) block_used_ = blocks_[block_].size;
  return ref;
}

void KeyStore::GrowIndex() {
  buckets_ = std::vector<Bucket>(std::max(kFirstIndexSize, 2 * buckets_.size()));
  for (const Ref ref : rows_) EnterInIndex(ref);
}

void KeyStore::EnterInIndex(Ref ref) {
  const std::uint32_t tag = RowAt(ref).tag;
  const std::size_t mask = buckets_.size() - 1;
  std::size_t i = tag & mask;
  while (buckets_[i].row != kNone) i = (i + 1) & mask;
  buckets_[i] = {tag, ref};
}

void KeyStore::DropUses(std::size_t count) {
  uses_ -= count;
  if (uses_ == 0) Clear();
}

void KeyStore::Clear() {
  std::fill(buckets_.begin(), buckets_.end(), Bucket());
  rows_.clear();
  block_ = 0;
  block_used_ = 0;
  last_ = kNone;
}

}  // namespace stats
