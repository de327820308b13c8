// The table of open visits: numbered slots, the lowest free one used first.
//
// An index by visitor finds a visitor's slot, a tree of last times finds the first slot that has
// been idle too long, and a heap of free numbers finds the lowest free slot, so that a hit costs
// the same however many visits are open.
#ifndef HITWICK_STATS_VISIT_SLOTS_H_
#define HITWICK_STATS_VISIT_SLOTS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "stats/hashed_key.h"

namespace stats {

// One visitor's visit. Times in seconds within the period.
struct Visit {
  bool InUse = false;
  std::int32_t Fetches = 0;
  float Bytes = 0;
  std::int32_t StartTime = 0;
  std::int32_t LastTime = 0;
  std::string ClientIp;
  std::string UserAgent;
  std::string EntryUri;
  std::string ExitUri;
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
  Visit& operator[](std::int32_t slot) { return visits_[static_cast<std::size_t>(slot)]; }

  // The slot of the open visit of exactly this visitor, or kNoSlot.
  std::int32_t Find(const HashedKey& clientIp, const HashedKey& userAgent) const;
  // The lowest slot in use whose last time is below `time`, or kNoSlot.
  std::int32_t FirstIdleSince(std::int32_t time) const;
  // Opens the lowest free slot for a visitor, its sums at zero; kNoSlot when all 32,767 are in
  // use. The caller sets the last time with `Touch`.
  std::int32_t Open(const HashedKey& clientIp, const HashedKey& userAgent);
  // Sets the last time of a slot in use.
  void Touch(std::int32_t slot, std::int32_t time);
  // Frees a slot in use; its data stay readable until it is opened again.
  void Free(std::int32_t slot);
  // Frees all slots and starts counting anew; the capacity stays.
  void Clear();

 private:
  static constexpr std::size_t kLeaves = 32768;
  static constexpr std::size_t kIndexSize = 65536;

  std::size_t IndexStart(std::int32_t slot) const {
    return (hashes_[static_cast<std::size_t>(slot)] >> 32) % kIndexSize;
  }
  void EnterInIndex(std::int32_t slot);
  void RemoveFromIndex(std::int32_t slot);
  void SetLeaf(std::int32_t slot, std::int32_t value);
  std::int32_t TakeLowestFree();

  std::vector<Visit> visits_;
  std::vector<std::uint64_t> hashes_;  // of the visitor, by slot; apart to be read without a miss
  std::int32_t count_ = 0;
  std::int32_t capacity_ = kFirstCapacity;
  std::vector<std::int32_t> free_;        // min-heap of free slots below count_
  std::vector<std::uint16_t> index_;      // slot + 1 by visitor, open addressing; 0 is empty
  std::vector<std::int32_t> last_times_;  // tree of minima: node i over nodes 2i and 2i + 1
};

}  // namespace stats

#endif  // HITWICK_STATS_VISIT_SLOTS_H_
