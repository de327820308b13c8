#include "stats/key_store.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace stats {
namespace {

constexpr std::size_t kFirstIndexSize = 16;

}  // namespace

KeyStore::KeyStore(std::size_t columns, std::size_t notes)
    : cell_offset_(1 + notes), text_offset_(cell_offset_ + columns * kCellWords) {
  Clear();
}

KeyStore::Ref KeyStore::Enter(const HashedKey& key) {
  if (4 * (count_ + 1) > 3 * buckets_.size()) GrowIndex();
  const Ref row = Allocate(RowWords(key.text.size()));
  std::uint32_t* const words = WordsOf(row);
  words[0] = static_cast<std::uint32_t>(key.text.size());
  std::memset(words + 1, 0, (text_offset_ - 1) * sizeof *words);
  if (!key.text.empty()) std::memcpy(words + text_offset_, key.text.data(), key.text.size());
  PutInIndex({TagOf(key), row});
  ++count_;
  return row;
}

// Chunks are filled one after the other. A row larger than a chunk gets one of its own, in which
// only the first words have numbers.
KeyStore::Ref KeyStore::Allocate(std::size_t words) {
  if (chunks_.empty() || chunks_.back().size - chunks_.back().used < words) {
    if (chunks_.size() >> (32 - kWordBits) != 0) throw std::bad_alloc();
    const std::size_t first = chunks_.empty() ? 1 : 0;
    const std::size_t size = std::max(kChunkWords, first + words);
    chunks_.push_back(
        {std::make_unique_for_overwrite<std::byte[]>(size * sizeof(std::uint32_t)), size, first});
  }
  Chunk& chunk = chunks_.back();
  const Ref row = static_cast<Ref>(((chunks_.size() - 1) << kWordBits) + chunk.used);
  chunk.used += words;
  return row;
}

void KeyStore::GrowIndex() {
  std::vector<Bucket> old(2 * buckets_.size());
  old.swap(buckets_);
  mask_ = buckets_.size() - 1;
  for (const Bucket& entry : old) {
    if (entry.row != kNone) PutInIndex(entry);
  }
}

void KeyStore::PutInIndex(const Bucket& entry) {
  std::size_t i = entry.tag & mask_;
  while (buckets_[i].row != kNone) i = (i + 1) & mask_;
  buckets_[i] = entry;
}

void KeyStore::Clear() {
  buckets_.assign(kFirstIndexSize, Bucket());
  mask_ = kFirstIndexSize - 1;
  count_ = 0;
  chunks_.clear();
  latest_ = kNone;
}

}  // namespace stats
