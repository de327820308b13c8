// The statistics of one reporting period, and the adding of one hit to them.
//
// State: one `MonthStats` for the process, reset by `InitMonth` (the log reader, before the first
// file of a month), filled by `AddHit` (the record parser), read by the page writers.
#ifndef HITWICK_STATS_MDLMONTH_H_
#define HITWICK_STATS_MDLMONTH_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "stats/fault.h"
#include "stats/log_record.h"
#include "stats/tally.h"

namespace mdlMonth {

// Sums of one measure, one for each number from `First` to `Last`; any other index is an error.
template <int First, int Last>
class NumberedSums {
 public:
  float& operator[](int number) { return values_[Place(number)]; }
  float operator[](int number) const { return values_[Place(number)]; }

 private:
  static std::size_t Place(int number) {
    if (number < First || number > Last) stats::ThrowSubscript();
    return static_cast<std::size_t>(number - First);
  }
  std::array<float, Last - First + 1> values_{};
};
using DayArray = NumberedSums<1, 31>;  // days of the month
// Hours of the day. Slot 24 takes the hours that a damaged time can yield and is shown nowhere.
using HourArray = NumberedSums<0, 24>;

// What is kept with a key, so that it is worked out once for each key and month. 0 is "not yet".
enum UriNote { kFileTypeNote, kPageNote, kVisitRowNote, kUriNotes };
enum AgentNote { kRobotWordNote, kNoRobotsTxtNote, kAgentNotes };
enum StatusNote { kStatusClassNote, kStatusNotes };

// Entry and exit pages of visits; metric 1 per visit. Filled when a visit closes.
struct VisitTables {
  stats::KeyStore Keys{4};  // of the four tables below
  TallyTable AllEntry{Keys, 0};
  TallyTable AllExit{Keys, 1};
  TallyTable NonRobotEntry{Keys, 2};
  TallyTable NonRobotExit{Keys, 3};
};

// Single-precision counters, hit counts included. Bytes are bytes, times are milliseconds. The
// metric of every tally is the sum of the bytes sent unless said otherwise.
struct MonthStats {
  // With the one table that outlives the month.
  explicit MonthStats(TallyTable& robots_txt_agents) : RobotsTxtAgents(robots_txt_agents) {}

  float TotalBytes = 0;
  float TotalHits = 0;
  float TotalFiles = 0;  // hits whose status is exactly "200"
  float TotalPages = 0;  // those of them whose URL is a page
  float TotalTimeTaken = 0;
  float MaxTimeTaken = 0;

  // The busiest single hour of one day, by bytes and by hits, and when it was.
  float PeakHourBytes = 0;
  std::int16_t PeakHourBytesDay = 1;
  std::int16_t PeakHourBytesHour = 0;
  float PeakHourHits = 0;
  std::int16_t PeakHourHitsDay = 1;
  std::int16_t PeakHourHitsHour = 0;
  // Running totals of the (day, hour) that the last hit fell in.
  float CurrentHourBytes = 0;
  float CurrentHourHits = 0;
  std::int16_t CurrentDay = 0;
  std::int16_t CurrentHour = 0;

  std::string HostLabel;  // the last non-empty host label of a hit

  DayArray DayBytes, DayHits, DayFiles, DayPages, DayTimeTaken;
  DayArray DayFailures;  // hits that are no success: redirects too, unlike `FailedUrls`
  HourArray HourBytes, HourHits, HourFiles, HourPages, HourTimeTaken;

  stats::KeyStore UriKeys{4, kUriNotes};  // of SuccessUrls, Pages, FailedUrls and UrlResponseTimes
  TallyTable SuccessUrls{UriKeys, 0};
  TallyTable& RobotsTxtAgents;  // agents that fetched /robots.txt; kept from month to month
  stats::KeyStore AgentKeys{1, kAgentNotes};
  TallyTable UserAgents{AgentKeys, 0};
  TallyTable ClientAddresses;
  TallyTable Methods;
  stats::KeyStore ReferrerKeys{2};  // of Referrers and FailedReferrers
  TallyTable Referrers{ReferrerKeys, 0};
  stats::KeyStore StatusKeys{1, kStatusNotes};
  TallyTable StatusCodes{StatusKeys, 0};
  TallyTable Queries;  // search words of referrers
  TallyTable UserNames;
  TallyTable Pages{UriKeys, 1};
  TallyTable FailedUrls{UriKeys, 3};            // neither success nor redirect
  TallyTable FailedReferrers{ReferrerKeys, 1};  // likewise
  TallyTable FileTypes;                         // upper-case extensions
  TallyTable UrlResponseTimes{UriKeys, 2};      // metric: mean time taken
  VisitTables Visits;
  TallyTable Browsers;          // filled by the page writer from UserAgents
  TallyTable OperatingSystems;  // likewise
};

MonthStats& Month();

// Starts a period: everything to zero but `RobotsTxtAgents`; rebuilds the robot word list.
void InitMonth();

// Adds one hit. Day and hour index the arrays unchecked by the caller; an error in any step ends
// the hit there, keeps what is already counted, and is reported as a warning in the event log. A
// user name "-" is replaced by "Anonymous" in the record.
//
// How a status counts. As a file or page: when it is exactly "200". As a success or a redirect:
// when it is contained in one of "200".."206", "304" / in one of those or of "301", "302", "303",
// "307", so that a damaged, shorter status ("20", "4") still counts by what it is part of; an
// empty one is contained in all of them and counts as a success.
void AddHit(stats::LogRecord& record);
// Adds several hits, one after the other, at most `kMostHits`. What they will need of the tables
// is asked for beforehand, so that the waiting for memory overlaps.
inline constexpr std::size_t kMostHits = 32;
void AddHits(std::span<stats::LogRecord> records);

bool IsSuccessStatus(std::string_view status);
bool IsSuccessOrRedirectStatus(std::string_view status);

}  // namespace mdlMonth

#endif  // HITWICK_STATS_MDLMONTH_H_
