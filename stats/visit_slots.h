// The table of open visits: numbered slots, the lowest free one used first.
//
// A visitor is an address and an agent, each by its row. An index finds a visitor's slot, a bitmap
// the lowest free slot, and lower bounds of the last times, one for each block of slots, the visits
// that have been idle too long: a hit costs the same however many visits are open.
#ifndef HITWICK_STATS_VISIT_SLOTS_H_
#define HITWICK_STATS_VISIT_SLOTS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "stats/hashed_key.h"
#include "stats/key_store.h"

namespace stats {

// Who visits: rows of the month's addresses and agents.
struct Visitor {
  KeyStore::Ref address;
  KeyStore::Ref agent;
};

// One visitor's visit. Times in seconds within the period; the last one is kept apart. Pages are
// rows of the month's URLs.
struct Visit {
  std::int32_t Fetches = 0;
  float Bytes = 0;
  std::int32_t StartTime = 0;
  KeyStore::Ref EntryUri = KeyStore::kNone;
  KeyStore::Ref ExitUri = KeyStore::kNone;
};

class VisitSlots {
 public:
  // Slot numbers are 16-bit.
  static constexpr std::int32_t kMostSlots = 32767;
  static constexpr std::int32_t kFirstCapacity = 100;
  static constexpr std::int32_t kNoSlot = -1;

  VisitSlots();

  std::int16_t Count() const { return static_cast<std::int16_t>(count_); }
  std::int16_t Capacity() const { return static_cast<std::int16_t>(capacity_); }
  Visit& operator[](std::int32_t slot) { return visits_[Place(slot)]; }
  Visitor VisitorOf(std::int32_t slot) const { return visitors_[Place(slot)]; }
  bool InUse(std::int32_t slot) const { return last_times_[Place(slot)] != kNotOpen; }
  // The last time of a slot in use.
  std::int32_t LastTime(std::int32_t slot) const { return last_times_[Place(slot)]; }

  // The slot of the open visit of this visitor, or kNoSlot.
  std::int32_t Find(Visitor visitor) const;
  // Asks the processor to fetch what `Find` will read first.
  void Prefetch(Visitor visitor) const { __builtin_prefetch(&index_[IndexStart(visitor)]); }
  // Calls `close(slot)`, which has to free the slot, for the slots in use below `limit` whose last
  // time is below `time`, in order.
  template <class Close>
  void CloseIdle(std::int32_t limit, std::int32_t time, Close close) {
    if (least_ < time) CloseIdleBlocks(limit, time, close);
  }
  // Opens the lowest free slot for a visitor, its sums at zero; kNoSlot when all 32,767 are in
  // use. The caller sets the last time with `Touch`.
  std::int32_t Open(Visitor visitor);
  // Sets the last time of a slot; a time of 2^31 - 1 is not possible.
  void Touch(std::int32_t slot, std::int32_t time) {
    last_times_[Place(slot)] = time;
    std::int32_t& block_least = block_least_[Place(slot) / kBlockSlots];
    block_least = std::min(block_least, time);
    least_ = std::min(least_, time);
  }
  // Frees a slot in use; its data stay readable until it is opened again.
  void Free(std::int32_t slot);
  // Frees all slots and starts counting anew; the capacity stays.
  void Clear();

 private:
  static constexpr std::int32_t kNotOpen = 0x7FFFFFFF;
  static constexpr std::size_t kBlockSlots = 64;

  static std::size_t Place(std::int32_t slot) { return static_cast<std::size_t>(slot); }
  std::size_t IndexStart(Visitor visitor) const {
    return HashNumber(std::uint64_t{visitor.address} << 32 | visitor.agent) & index_mask_;
  }
  template <class Close>
  void CloseIdleBlocks(std::int32_t limit, std::int32_t time, Close close);
  std::int32_t LeastOfBlock(std::size_t block) const;
  void Resize();
  void EnterInIndex(std::int32_t slot);
  void RemoveFromIndex(std::int32_t slot);
  std::int32_t TakeLowestFree();

  std::int32_t count_ = 0;
  std::int32_t capacity_ = kFirstCapacity;
  std::vector<Visit> visits_;
  std::vector<Visitor> visitors_;
  std::vector<std::uint16_t> index_;  // slot + 1 by visitor, open addressing; 0 is empty
  std::size_t index_mask_ = 0;
  std::vector<std::uint64_t> free_;  // a bit for each slot below count_ that is free
  std::size_t first_free_word_ = 0;  // no bit is set before it

  // A last time that moves on leaves the bounds as they are, so most hits write one number; where
  // a bound falls behind the limit, the block is looked through and the bound is true again. Time
  // that runs backwards lowers the bounds at once.
  std::vector<std::int32_t> last_times_;   // kNotOpen in free slots
  std::vector<std::int32_t> block_least_;  // at most the least last time of the block
  std::int32_t least_ = kNotOpen;          // at most the least of all
};

template <class Close>
void VisitSlots::CloseIdleBlocks(std::int32_t limit, std::int32_t time, Close close) {
  bool changed = false;
  for (std::size_t block = 0; block * kBlockSlots < Place(limit); ++block) {
    if (block_least_[block] >= time) continue;
    const std::int32_t first = static_cast<std::int32_t>(block * kBlockSlots);
    const std::int32_t end = std::min(limit, first + static_cast<std::int32_t>(kBlockSlots));
    block_least_[block] = LeastOfBlock(block);
    changed = true;
    if (block_least_[block] >= time) continue;
    for (std::int32_t slot = first; slot < end; ++slot) {
      if (LastTime(slot) < time) close(static_cast<std::int16_t>(slot));
    }
    block_least_[block] = LeastOfBlock(block);
  }
  if (changed) least_ = *std::min_element(block_least_.begin(), block_least_.end());
}

}  // namespace stats

#endif  // HITWICK_STATS_VISIT_SLOTS_H_
