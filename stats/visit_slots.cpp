#include "stats/visit_slots.h"

#include <bit>

namespace stats {

VisitSlots::VisitSlots() { Resize(); }

std::int32_t VisitSlots::Find(Visitor visitor) const {
  for (std::size_t i = IndexStart(visitor); index_[i] != 0; i = (i + 1) & index_mask_) {
    const std::int32_t slot = index_[i] - 1;
    const Visitor& found = visitors_[Place(slot)];
    if (found.address == visitor.address && found.agent == visitor.agent) return slot;
  }
  return kNoSlot;
}

std::int32_t VisitSlots::LeastOfBlock(std::size_t block) const {
  const auto first = last_times_.begin() + static_cast<std::ptrdiff_t>(block * kBlockSlots);
  std::int32_t least = kNotOpen;
  for (std::size_t i = 0; i < kBlockSlots; ++i) least = std::min(least, first[i]);
  return least;
}

std::int32_t VisitSlots::Open(Visitor visitor) {
  const std::int32_t slot = TakeLowestFree();
  if (slot == kNoSlot) return kNoSlot;
  visits_[Place(slot)] = Visit();
  visitors_[Place(slot)] = visitor;
  EnterInIndex(slot);
  return slot;
}

std::int32_t VisitSlots::TakeLowestFree() {
  for (; first_free_word_ < free_.size(); ++first_free_word_) {
    std::uint64_t& word = free_[first_free_word_];
    if (word == 0) continue;
    const int bit = std::countr_zero(word);
    word &= word - 1;
    return static_cast<std::int32_t>(first_free_word_ * 64) + bit;
  }
  if (count_ == kMostSlots) return kNoSlot;
  const std::int32_t slot = count_++;
  if (count_ == capacity_ && capacity_ < kMostSlots) {
    capacity_ = std::min(2 * capacity_, kMostSlots);
    Resize();
  }
  return slot;
}

// Gives every array the size of the capacity, and the index room for twice as many.
void VisitSlots::Resize() {
  const std::size_t blocks = Place(capacity_) / kBlockSlots + 1;
  visits_.resize(Place(capacity_));
  visitors_.resize(Place(capacity_));
  free_.resize(blocks, 0);
  last_times_.resize(blocks * kBlockSlots, kNotOpen);
  block_least_.resize(blocks, kNotOpen);
  index_.assign(std::bit_ceil(2 * Place(capacity_)), 0);
  index_mask_ = index_.size() - 1;
  for (std::int32_t slot = 0; slot < count_; ++slot) {
    if (InUse(slot)) EnterInIndex(slot);
  }
}

void VisitSlots::Free(std::int32_t slot) {
  RemoveFromIndex(slot);
  last_times_[Place(slot)] = kNotOpen;
  free_[Place(slot) / 64] |= std::uint64_t{1} << Place(slot) % 64;
  first_free_word_ = std::min(first_free_word_, Place(slot) / 64);
}

void VisitSlots::Clear() {
  count_ = 0;
  least_ = kNotOpen;
  first_free_word_ = 0;
  std::fill(index_.begin(), index_.end(), std::uint16_t{0});
  std::fill(free_.begin(), free_.end(), 0);
  std::fill(last_times_.begin(), last_times_.end(), kNotOpen);
  std::fill(block_least_.begin(), block_least_.end(), kNotOpen);
}

void VisitSlots::EnterInIndex(std::int32_t slot) {
  std::size_t i = IndexStart(visitors_[Place(slot)]);
  while (index_[i] != 0) i = (i + 1) & index_mask_;
  index_[i] = static_cast<std::uint16_t>(slot + 1);
}

// Later entries of the run move up into the gap unless they start after it, so that every search
// still finds its entry before an empty place.
void VisitSlots::RemoveFromIndex(std::int32_t slot) {
  std::size_t gap = IndexStart(visitors_[Place(slot)]);
  while (index_[gap] != slot + 1) gap = (gap + 1) & index_mask_;
  for (std::size_t i = (gap + 1) & index_mask_; index_[i] != 0; i = (i + 1) & index_mask_) {
    const std::size_t start = IndexStart(visitors_[static_cast<std::size_t>(index_[i]) - 1]);
    if (((i - start) & index_mask_) >= ((i - gap) & index_mask_)) {
      index_[gap] = index_[i];
      gap = i;
    }
  }
  index_[gap] = 0;
}

}  // namespace stats
