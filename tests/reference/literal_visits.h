// Visits kept in the plainest way: one array of slots that every hit scans from the first to the
// last. Slow, and obviously right; the real visits have to agree with it, state for state. Test
// code only.
#ifndef HITWICK_TESTS_REFERENCE_LITERAL_VISITS_H_
#define HITWICK_TESTS_REFERENCE_LITERAL_VISITS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/reference/literal_tally.h"

namespace reference {

struct Visit {
  bool InUse = false;
  std::int32_t Fetches = 0;
  float Bytes = 0;
  std::string EntryUri;
  std::string ExitUri;
  std::int32_t StartTime = 0;
  std::int32_t LastTime = 0;
  std::string ClientIp;
  std::string UserAgent;
};

struct LengthBucket {
  std::int32_t UpperBound = 0;
  std::string_view Label;
  std::int32_t Visits = 0;
  std::int32_t Seconds = 0;
  float SecondsSquares = 0;
  std::int32_t Fetches = 0;
  float FetchesSquares = 0;
};

using Breakdown = std::array<LengthBucket, 7>;

class LiteralVisits {
 public:
  // `capacity`: the slots allocated so far in this process.
  LiteralVisits(std::function<bool(const std::string&)> is_robot, int capacity)
      : is_robot_(std::move(is_robot)),
        slots_(static_cast<std::size_t>(capacity) + 1),
        slot_capacity_(capacity) {}

  void InitVisits() {
    for (int i = 0; i < slot_count_; ++i) Slot(i).InUse = false;
    slot_count_ = 0;
    InitBreakdown(all_lengths_);
    InitBreakdown(non_robot_lengths_);
  }

  void TrackVisit(const std::string& ip, const std::string& agent, std::int32_t time,
                  const std::string& uri, std::int32_t bytes) {
    int first_free = slot_count_;
    int slot = Scan(ip, agent, time, first_free);
    if (slot < 0) {
      slot = first_free;
      if (!Open(slot, ip, agent, time, uri)) return;
    }
    Visit& visit = Slot(slot);
    visit.Fetches += 1;
    visit.Bytes += static_cast<float>(bytes);
    visit.ExitUri = uri;
    visit.LastTime = time;
  }

  void CloseAllVisits() {
    for (int i = 0; i < slot_count_; ++i) {
      if (Slot(i).InUse) CloseVisit(i);
    }
  }

  int slot_count() const { return slot_count_; }
  int slot_capacity() const { return slot_capacity_; }
  const Breakdown& all_lengths() const { return all_lengths_; }
  const Breakdown& non_robot_lengths() const { return non_robot_lengths_; }

  TallyTable all_entry, all_exit, non_robot_entry, non_robot_exit;

 private:
  static constexpr std::int32_t kTimeout = 1210;
  static constexpr std::int32_t kMonth = 2678400;
  static constexpr int kMaxSlots = 32767;

  Visit& Slot(int i) { return slots_[static_cast<std::size_t>(i)]; }

  static void InitBreakdown(Breakdown& breakdown) {
    breakdown = {{{0, "Total"},
                  {3, "very short <3 Secs"},
                  {60, "short <1 Min"},
                  {600, "< 10 Minutes"},
                  {3600, "< 1 Hour"},
                  {28800, "< 8 Hours"},
                  {2764800, "Continuous"}}};
  }

  // The slot of the visitor's open visit, or -1. Visits passed on the way that have been idle too
  // long are closed, and `first_free` becomes the lowest free slot passed.
  int Scan(const std::string& ip, const std::string& agent, std::int32_t time, int& first_free) {
    for (int i = 0; i < slot_count_; ++i) {
      Visit& visit = Slot(i);
      if (visit.InUse && visit.ClientIp == ip && visit.UserAgent == agent) return i;
      if (visit.LastTime < time - kTimeout && visit.InUse) {
        CloseVisit(i);
        if (i < first_free) first_free = i;
      }
      if (!visit.InUse && i < first_free) first_free = i;
    }
    return -1;
  }

  bool Open(int slot, const std::string& ip, const std::string& agent, std::int32_t time,
            const std::string& uri) {
    if (slot == slot_count_) {
      if (slot_count_ == kMaxSlots) return false;
      ++slot_count_;
      if (slot_count_ >= slot_capacity_) Grow();
    }
    Visit& visit = Slot(slot);
    visit.InUse = true;
    visit.Fetches = 0;
    visit.Bytes = 0;
    visit.EntryUri = uri;
    visit.StartTime = time;
    visit.ClientIp = ip;
    visit.UserAgent = agent;
    return true;
  }

  void Grow() {
    slot_capacity_ = slot_capacity_ * 2 > kMaxSlots ? kMaxSlots : slot_capacity_ * 2;
    slots_.resize(static_cast<std::size_t>(slot_capacity_) + 1);
  }

  void CloseVisit(int slot) {
    Visit& visit = Slot(slot);
    visit.InUse = false;
    std::int32_t duration = visit.LastTime - visit.StartTime;
    if (duration < 0) duration += kMonth;
    const bool robot = is_robot_(visit.UserAgent);
    Account(0, robot, visit.Fetches, duration);
    for (std::size_t row = 1; row <= 6; ++row) {
      if (duration < all_lengths_[row].UpperBound) {
        Account(row, robot, visit.Fetches, duration);
        break;
      }
    }
    TallyAdd(visit.EntryUri, all_entry, 1, false);
    TallyAdd(visit.ExitUri, all_exit, 1, false);
    if (robot) return;
    TallyAdd(visit.EntryUri, non_robot_entry, 1, false);
    TallyAdd(visit.ExitUri, non_robot_exit, 1, false);
  }

  void Account(std::size_t row, bool robot, std::int32_t fetches, std::int32_t seconds) {
    AddToBreakdown(all_lengths_[row], fetches, seconds);
    if (!robot) AddToBreakdown(non_robot_lengths_[row], fetches, seconds);
  }

  // False, with `sum` unchanged, when the result does not fit 32 bits.
  static bool AddInteger(std::int32_t& sum, std::int32_t value) {
    const std::int64_t result = std::int64_t{sum} + value;
    if (result > std::numeric_limits<std::int32_t>::max()) return false;
    sum = static_cast<std::int32_t>(result);
    return true;
  }

  static float Square(std::int32_t value) {
    const auto single = static_cast<float>(value);
    return single * single;
  }

  // An overflow ends the call; what was added before it stays.
  static void AddToBreakdown(LengthBucket& bucket, std::int32_t fetches, std::int32_t seconds) {
    if (!AddInteger(bucket.Visits, 1)) return;
    if (!AddInteger(bucket.Fetches, fetches)) return;
    bucket.FetchesSquares += Square(fetches);
    if (!AddInteger(bucket.Seconds, seconds)) return;
    bucket.SecondsSquares += Square(seconds);
  }

  std::function<bool(const std::string&)> is_robot_;
  std::vector<Visit> slots_;
  int slot_count_ = 0;
  int slot_capacity_;
  Breakdown all_lengths_;
  Breakdown non_robot_lengths_;
};

}  // namespace reference

#endif  // HITWICK_TESTS_REFERENCE_LITERAL_VISITS_H_
