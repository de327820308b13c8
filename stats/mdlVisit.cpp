#include "stats/mdlVisit.h"

#include <string>

#include "config/mdlConfigs.h"
#include "stats/fault.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"
#include "stats/visit_slots.h"

namespace mdlVisit {
namespace {

using stats::AddTo;
using stats::VisitSlots;

constexpr std::int32_t kTimeoutSeconds = 1210;
constexpr std::int32_t kSecondsOf31Days = 2678400;

struct BandRow {
  std::string_view label;
  std::int32_t upper_bound;  // seconds
};

constexpr BandRow kBands[] = {
    {"Total", 0},       {"very short <3 Secs", 3}, {"short <1 Min", 60},    {"< 10 Minutes", 600},
    {"< 1 Hour", 3600}, {"< 8 Hours", 28800},      {"Continuous", 2764800},  // 32 days
};
static_assert(std::size(kBands) == kBreakdownRows);

struct VisitState {
  VisitSlots slots;
  Breakdown all;
  Breakdown non_robot;
  bool tracking_error_reported = false;  // one warning a month
};
VisitState state;

void ResetBreakdown(Breakdown& breakdown) {
  breakdown.fill(LengthBucket());
  for (std::size_t row = 0; row < kBreakdownRows; ++row) {
    breakdown[row].Label = kBands[row].label;
    breakdown[row].UpperBound = kBands[row].upper_bound;
  }
}

// The row of a visit's length; 0 (none of its own) for 32 days or more.
int BandOf(std::int32_t seconds) {
  for (int row = 1; row < kBreakdownRows; ++row) {
    if (seconds < kBands[row].upper_bound) return row;
  }
  return 0;
}

void AddToBothBreakdowns(int row, const stats::Visit& visit, std::int32_t seconds, bool robot) {
  AddToBreakdown(state.all, row, visit.Fetches, seconds);
  if (!robot) AddToBreakdown(state.non_robot, row, visit.Fetches, seconds);
}

// Closes the visits below slot `limit` whose last hit lies more than the timeout before `time`.
// The visitor's own visit is never timed out here, nor any in a higher slot.
void CloseIdleVisits(std::int32_t limit, std::int32_t time) {
  for (;;) {
    const std::int32_t slot = state.slots.FirstIdleSince(time - kTimeoutSeconds);
    if (slot == VisitSlots::kNoSlot || slot >= limit) return;
    CloseVisit(static_cast<std::int16_t>(slot));
  }
}

std::int32_t OpenVisit(const stats::HashedKey& clientIp, const stats::HashedKey& userAgent,
                       std::int32_t time, std::string_view uri) {
  const std::int32_t slot = state.slots.Open(clientIp, userAgent);
  if (slot == VisitSlots::kNoSlot) stats::ThrowOverflow();
  stats::Visit& visit = state.slots[slot];
  visit.EntryUri = uri;
  visit.StartTime = time;
  return slot;
}

void AddToVisit(std::int32_t slot, std::int32_t time, std::string_view uri, std::int32_t bytes) {
  stats::Visit& visit = state.slots[slot];
  AddTo(visit.Fetches, 1);
  AddTo(visit.Bytes, static_cast<float>(bytes));
  visit.ExitUri = uri;
  state.slots.Touch(slot, time);
}

}  // namespace

Breakdown& AllVisitLengths() { return state.all; }
Breakdown& NonRobotVisitLengths() { return state.non_robot; }
std::int16_t SlotCount() { return state.slots.Count(); }
std::int16_t SlotCapacity() { return state.slots.Capacity(); }

void InitVisits() {
  state.slots.Clear();
  ResetBreakdown(state.all);
  ResetBreakdown(state.non_robot);
  state.tracking_error_reported = false;
}

void TrackVisit(const stats::HashedKey& clientIp, const stats::HashedKey& userAgent,
                std::int32_t time, std::string_view uri, std::int32_t bytes) {
  try {
    std::int32_t slot = state.slots.Find(clientIp, userAgent);
    CloseIdleVisits(slot == VisitSlots::kNoSlot ? VisitSlots::kMostSlots : slot, time);
    if (slot == VisitSlots::kNoSlot) slot = OpenVisit(clientIp, userAgent, time, uri);
    AddToVisit(slot, time, uri, bytes);
  } catch (const stats::Fault& fault) {
    if (state.tracking_error_reported) return;
    state.tracking_error_reported = true;
    mdlConfigs::LogWarning("Error tracking visit : " + fault.description());
  }
}

void CloseVisit(std::int16_t slot) {
  const stats::Visit& visit = state.slots[slot];
  state.slots.Free(slot);
  std::int32_t seconds = visit.LastTime - visit.StartTime;
  if (seconds < 0) seconds += kSecondsOf31Days;
  const bool robot = mdlWebPage::IsRobot(visit.UserAgent);
  AddToBothBreakdowns(0, visit, seconds, robot);
  if (const int band = BandOf(seconds); band != 0) AddToBothBreakdowns(band, visit, seconds, robot);
  mdlMonth::VisitTables& tables = mdlMonth::Month().Visits;
  const stats::HashedKey entry(visit.EntryUri);
  const stats::HashedKey exit(visit.ExitUri);
  mdlMonth::TallyAdd(entry, tables.AllEntry, 1);
  mdlMonth::TallyAdd(exit, tables.AllExit, 1);
  if (robot) return;
  mdlMonth::TallyAdd(entry, tables.NonRobotEntry, 1);
  mdlMonth::TallyAdd(exit, tables.NonRobotExit, 1);
}

void CloseAllVisits() {
  for (std::int16_t slot = 0; slot < state.slots.Count(); ++slot) {
    if (state.slots[slot].InUse) CloseVisit(slot);
  }
}

void AddToBreakdown(Breakdown& breakdown, int row, std::int32_t fetches, std::int32_t seconds) {
  LengthBucket& bucket = breakdown[static_cast<std::size_t>(row)];
  try {
    const float fetches_single = static_cast<float>(fetches);
    const float seconds_single = static_cast<float>(seconds);
    AddTo(bucket.Visits, 1);
    AddTo(bucket.Fetches, fetches);
    AddTo(bucket.FetchesSquares, fetches_single * fetches_single);
    AddTo(bucket.Seconds, seconds);
    AddTo(bucket.SecondsSquares, seconds_single * seconds_single);
  } catch (const stats::Fault& fault) {
    if (bucket.ErrorReported) return;
    bucket.ErrorReported = true;
    mdlConfigs::LogWarning("Error adding visit to '" + std::string(bucket.Label) +
                           "' : " + fault.description());
  }
}

}  // namespace mdlVisit
