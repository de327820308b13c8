#include "stats/mdlVisit.h"

#include <new>
#include <string>
#include <vector>

#include "config/mdlConfigs.h"
#include "stats/fault.h"
#include "stats/lost_counts.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"
#include "stats/visit_slots.h"

namespace mdlVisit {
namespace {

using mdlMonth::TallyTable;
using stats::AddTo;
using stats::KeyStore;
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

// What is still to be added of a visit that was closed. Whether it was a robot's was found out
// then.
struct ClosedVisit {
  KeyStore::Ref entry_uri;
  KeyStore::Ref exit_uri;
  bool robot;
};

struct VisitState {
  VisitSlots slots;
  Breakdown all;
  Breakdown non_robot;
  std::vector<ClosedVisit> closed;
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

// `mdlWebPage::IsRobot` of an agent's row. Whether a robot's word occurs in it never changes; that
// it has not fetched /robots.txt holds as long as no further agent has.
bool IsRobot(KeyStore::Ref agent) {
  mdlMonth::MonthStats& month = mdlMonth::Month();
  const std::string_view text = month.AgentKeys.Key(agent);
  std::uint32_t& word = month.AgentKeys.Note(agent, mdlMonth::kRobotWordNote);
  if (word == 0) word = mdlWebPage::HasRobotWord(text) ? 2 : 1;
  if (word == 2) return true;
  std::uint32_t& looked_at = month.AgentKeys.Note(agent, mdlMonth::kNoRobotsTxtNote);
  const auto fetchers = static_cast<std::uint32_t>(month.RobotsTxtAgents.Count());
  if (looked_at == fetchers) return false;
  if (mdlWebPage::FetchedRobotsTxt(text)) return true;
  looked_at = fetchers;
  return false;
}

std::uint32_t& VisitRowOf(KeyStore::Ref uri) {
  return mdlMonth::Month().UriKeys.Note(uri, mdlMonth::kVisitRowNote);
}

// Adds an entry or exit page. The tables of visits have keys of their own, since few URLs begin or
// end a visit; the URL's row remembers the one among them.
void AddVisitPage(KeyStore::Ref uri, TallyTable& all, TallyTable& non_robot, bool robot) {
  KeyStore& uris = mdlMonth::Month().UriKeys;
  std::uint32_t& row = VisitRowOf(uri);
  try {
    if (row == KeyStore::kNone) row = all.Keys().FindOrEnter(uris.Key(uri));
  } catch (const std::bad_alloc&) {
    mdlMonth::LogTallyNotExtended(uris.Key(uri), 1, all);
    if (!robot) mdlMonth::LogTallyNotExtended(uris.Key(uri), 1, non_robot);
    return;
  }
  mdlMonth::TallyAddAt(row, all, 1);
  if (!robot) mdlMonth::TallyAddAt(row, non_robot, 1);
}

std::int32_t OpenVisit(stats::Visitor visitor, std::int32_t time, KeyStore::Ref uri) {
  const std::int32_t slot = state.slots.Open(visitor);
  if (slot == VisitSlots::kNoSlot) stats::ThrowOverflow();
  state.slots[slot].EntryUri = uri;
  state.slots[slot].StartTime = time;
  return slot;
}

void PrefetchVisitRow(KeyStore::Ref uri) {
  const KeyStore::Ref row = VisitRowOf(uri);
  if (row != KeyStore::kNone) __builtin_prefetch(&mdlMonth::Month().Visits.Keys.At(row, 0));
}

// Accounts the visit of a slot in use but for its pages.
void EndVisit(std::int16_t slot) {
  const stats::Visit& visit = state.slots[slot];
  std::int32_t seconds = state.slots.LastTime(slot) - visit.StartTime;
  if (seconds < 0) seconds += kSecondsOf31Days;
  const bool robot = IsRobot(state.slots.VisitorOf(slot).agent);
  state.slots.Free(slot);
  AddToBothBreakdowns(0, visit, seconds, robot);
  if (const int band = BandOf(seconds); band != 0) AddToBothBreakdowns(band, visit, seconds, robot);
  __builtin_prefetch(&VisitRowOf(visit.EntryUri));
  __builtin_prefetch(&VisitRowOf(visit.ExitUri));
  state.closed.push_back({visit.EntryUri, visit.ExitUri, robot});
}

void AddToVisit(std::int32_t slot, std::int32_t time, KeyStore::Ref uri, std::int32_t bytes) {
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
  state.closed.clear();
  state.slots.Clear();
  ResetBreakdown(state.all);
  ResetBreakdown(state.non_robot);
  state.tracking_error_reported = false;
}

void TrackVisit(stats::Visitor visitor, std::int32_t time, KeyStore::Ref uri, std::int32_t bytes) {
  try {
    std::int32_t slot = state.slots.Find(visitor);
    // The visitor's own visit is never timed out here, nor any in a higher slot.
    state.slots.CloseIdle(slot == VisitSlots::kNoSlot ? state.slots.Count() : slot,
                          time - kTimeoutSeconds, EndVisit);
    if (slot == VisitSlots::kNoSlot) slot = OpenVisit(visitor, time, uri);
    AddToVisit(slot, time, uri, bytes);
  } catch (const stats::Fault& fault) {
    ReportTrackingError(fault.description());
  } catch (const std::bad_alloc&) {
    stats::NoteLostCounts();
    ReportTrackingError("Out of memory");
  }
}

void TrackVisit(const stats::HashedKey& clientIp, const stats::HashedKey& userAgent,
                std::int32_t time, const stats::HashedKey& uri, std::int32_t bytes) {
  mdlMonth::MonthStats& month = mdlMonth::Month();
  TrackVisit(
      {month.ClientAddresses.Keys().FindOrEnter(clientIp), month.AgentKeys.FindOrEnter(userAgent)},
      time, month.UriKeys.FindOrEnter(uri), bytes);
  AddPagesOfClosedVisits();
}

void ReportTrackingError(const std::string& description) {
  if (state.tracking_error_reported) return;
  state.tracking_error_reported = true;
  mdlConfigs::LogWarning("Error tracking visit : " + description);
}

// Once memory has run out the month gets no page, so nobody needs a warning for each visit.
void AddPagesOfClosedVisits() {
  for (const ClosedVisit& visit : state.closed) {
    PrefetchVisitRow(visit.entry_uri);
    PrefetchVisitRow(visit.exit_uri);
  }
  mdlMonth::VisitTables& tables = mdlMonth::Month().Visits;
  for (const ClosedVisit& visit : state.closed) {
    if (stats::CountsAreLost()) break;
    AddVisitPage(visit.entry_uri, tables.AllEntry, tables.NonRobotEntry, visit.robot);
    AddVisitPage(visit.exit_uri, tables.AllExit, tables.NonRobotExit, visit.robot);
  }
  state.closed.clear();
}

void CloseVisit(std::int16_t slot) {
  EndVisit(slot);
  AddPagesOfClosedVisits();
}

void CloseAllVisits() {
  for (std::int16_t slot = 0; slot < state.slots.Count() && !stats::CountsAreLost(); ++slot) {
    if (state.slots.InUse(slot)) EndVisit(slot);
  }
  AddPagesOfClosedVisits();
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
