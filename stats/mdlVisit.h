// Visits: consecutive hits of one client address with one user agent, without a pause of more than
// 20 minutes and 10 seconds.
//
// State: the open visits in numbered slots and two breakdowns by length, reset by `InitVisits`
// (the log reader, at the start of a month), fed by `AddHit`, closed by `CloseAllVisits`, read by
// the page writers.
#ifndef HITWICK_STATS_MDLVISIT_H_
#define HITWICK_STATS_MDLVISIT_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "stats/hashed_key.h"
#include "stats/visit_slots.h"

namespace mdlVisit {

// One row of a breakdown. Durations in seconds.
struct LengthBucket {
  std::int32_t UpperBound = 0;  // exclusive; unused in row 0
  std::string_view Label;
  std::int32_t Visits = 0;
  std::int32_t Seconds = 0;
  float SecondsSquares = 0;
  std::int32_t Fetches = 0;
  float FetchesSquares = 0;
  bool ErrorReported = false;  // one warning per row and month
};

// Rows 0..6 are used; row 0 ("Total") counts every visit.
inline constexpr int kBreakdownRows = 7;
using Breakdown = std::array<LengthBucket, 8>;

Breakdown& AllVisitLengths();
Breakdown& NonRobotVisitLengths();

// The slots used so far in this period: the largest number of visits open at one time.
std::int16_t SlotCount();
// The slots allocated: 100, then doubled up to 32,767; never shrinks.
std::int16_t SlotCapacity();

// Forgets all visits and zeroes both breakdowns.
void InitVisits();

// Adds a hit to its visit, opening one when there is none. `time` is in seconds within the
// period. Visits in lower slots (all slots, for a new visitor) that have been idle too long are
// closed on the way; their entry and exit pages wait for `AddPagesOfClosedVisits`. `visitor` and
// `uri` are rows of the month's addresses, agents and URLs.
void TrackVisit(stats::Visitor visitor, std::int32_t time, stats::KeyStore::Ref uri,
                std::int32_t bytes);
// Adds the entry and exit pages that wait, in the order in which their visits were closed: what
// they need of the tables comes from memory together.
void AddPagesOfClosedVisits();
// Both at once with texts, whose rows are looked for or entered.
void TrackVisit(const stats::HashedKey& clientIp, const stats::HashedKey& userAgent,
                std::int32_t time, const stats::HashedKey& uri, std::int32_t bytes);
// Reports an error that kept a hit out of the visits: one warning a month.
void ReportTrackingError(const std::string& description);

// Ends the visit of a slot in use (0..SlotCount()-1) and accounts it.
void CloseVisit(std::int16_t slot);
// Closes every slot still in use, in slot order.
void CloseAllVisits();

// Visits += 1, Fetches += fetches and so on, in single precision for the squares. An overflow ends
// the call and is reported once per row and month.
void AddToBreakdown(Breakdown& breakdown, int row, std::int32_t fetches, std::int32_t seconds);

}  // namespace mdlVisit

#endif  // HITWICK_STATS_MDLVISIT_H_
