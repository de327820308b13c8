#include "stats/visit_slots.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace stats {
namespace {

constexpr std::int32_t kNotOpen = std::numeric_limits<std::int32_t>::max();

std::uint64_t VisitorHash(const HashedKey& clientIp, const HashedKey& userAgent) {
  return clientIp.hash + 0x9E3779B97F4A7C15u * userAgent.hash;
}

}  // namespace

VisitSlots::VisitSlots()
    : visits_(kFirstCapacity),
      hashes_(kFirstCapacity),
      index_(kIndexSize, 0),
      last_times_(2 * kLeaves, kNotOpen) {}

std::int32_t VisitSlots::Find(const HashedKey& clientIp, const HashedKey& userAgent) const {
  const std::uint64_t hash = VisitorHash(clientIp, userAgent);
  for (std::size_t i = (hash >> 32) % kIndexSize; index_[i] != 0; i = (i + 1) % kIndexSize) {
    const std::size_t slot = index_[i] - std::size_t{1};
    const Visit& visit = visits_[slot];
    if (hashes_[slot] == hash && visit.ClientIp == clientIp.text &&
        visit.UserAgent == userAgent.text) {
      return static_cast<std::int32_t>(slot);
    }
  }
  return kNoSlot;
}

std::int32_t VisitSlots::FirstIdleSince(std::int32_t time) const {
  std::size_t node = 1;
  if (last_times_[node] >= time) return kNoSlot;
  while (node < kLeaves) {
    node *= 2;
    if (last_times_[node] >= time) ++node;
  }
  return static_cast<std::int32_t>(node - kLeaves);
}

std::int32_t VisitSlots::Open(const HashedKey& clientIp, const HashedKey& userAgent) {
  const std::int32_t slot = TakeLowestFree();
  if (slot == kNoSlot) return kNoSlot;
  Visit& visit = visits_[static_cast<std::size_t>(slot)];
  visit.InUse = true;
  visit.Fetches = 0;
  visit.Bytes = 0;
  visit.ClientIp = clientIp.text;
  visit.UserAgent = userAgent.text;
  hashes_[static_cast<std::size_t>(slot)] = VisitorHash(clientIp, userAgent);
  EnterInIndex(slot);
  return slot;
}

std::int32_t VisitSlots::TakeLowestFree() {
  if (!free_.empty()) {
    std::pop_heap(free_.begin(), free_.end(), std::greater<>());
    const std::int32_t slot = free_.back();
    free_.pop_back();
    return slot;
  }
  if (count_ == kMostSlots) return kNoSlot;
  const std::int32_t slot = count_++;
  if (count_ == capacity_ && capacity_ < kMostSlots) {
    capacity_ = std::min(2 * capacity_, kMostSlots);
    visits_.resize(static_cast<std::size_t>(capacity_));
    hashes_.resize(static_cast<std::size_t>(capacity_));
  }
  return slot;
}

void VisitSlots::Touch(std::int32_t slot, std::int32_t time) {
  visits_[static_cast<std::size_t>(slot)].LastTime = time;
  SetLeaf(slot, time);
}

void VisitSlots::Free(std::int32_t slot) {
  visits_[static_cast<std::size_t>(slot)].InUse = false;
  SetLeaf(slot, kNotOpen);
  RemoveFromIndex(slot);
  free_.push_back(slot);
  std::push_heap(free_.begin(), free_.end(), std::greater<>());
}

void VisitSlots::Clear() {
  for (std::int32_t slot = 0; slot < count_; ++slot) (*this)[slot].InUse = false;
  count_ = 0;
  free_.clear();
  std::fill(index_.begin(), index_.end(), std::uint16_t{0});
  std::fill(last_times_.begin(), last_times_.end(), kNotOpen);
}

// The climb ends where a node's minimum does not change: for most hits at once.
void VisitSlots::SetLeaf(std::int32_t slot, std::int32_t value) {
  std::size_t node = kLeaves + static_cast<std::size_t>(slot);
  last_times_[node] = value;
  for (node /= 2; node >= 1; node /= 2) {
    const std::int32_t least = std::min(last_times_[2 * node], last_times_[2 * node + 1]);
    if (last_times_[node] == least) break;
    last_times_[node] = least;
  }
}

void VisitSlots::EnterInIndex(std::int32_t slot) {
  std::size_t i = IndexStart(slot);
  while (index_[i] != 0) i = (i + 1) % kIndexSize;
  index_[i] = static_cast<std::uint16_t>(slot + 1);
}

// Later entries of the run move up into the gap unless they start after it, so that every search
// still finds its entry before an empty place.
void VisitSlots::RemoveFromIndex(std::int32_t slot) {
  std::size_t gap = IndexStart(slot);
  while (index_[gap] != slot + 1) gap = (gap + 1) % kIndexSize;
  for (std::size_t i = (gap + 1) % kIndexSize; index_[i] != 0; i = (i + 1) % kIndexSize) {
    const std::size_t start = IndexStart(index_[i] - 1);
    if ((i - start) % kIndexSize >= (i - gap) % kIndexSize) {
      index_[gap] = index_[i];
      gap = i;
    }
  }
  index_[gap] = 0;
}

}  // namespace stats
