#include "stats/mdlMonth.h"

#include <algorithm>
#include <optional>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "stats/file_type.h"
#include "stats/mdlVisit.h"
#include "stats/mdlWebPage.h"

namespace mdlMonth {
namespace {

using stats::AddTo;
using stats::HashedKey;
using stats::LogRecord;

// One word to a line.
// clang-format off
constexpr std::string_view kSuccessStatuses[] = {
    "200",
    "201",
    "202",
    "203",
    "204",
    "205",
    "206",
    "304",
};
constexpr std::string_view kRedirectStatuses[] = {
    "301",
    "302",
    "303",
    "307",
};
// clang-format on
constexpr std::string_view kRobotsTxt = "/robots.txt";
constexpr std::string_view kEmptyMark = "-";

TallyTable robots_txt_agents;
std::optional<MonthStats> month_stats(std::in_place, robots_txt_agents);

template <std::size_t N>
bool OneContains(const std::string_view (&list)[N], std::string_view status) {
  return std::any_of(std::begin(list), std::end(list), [status](std::string_view member) {
    return member.find(status) != std::string_view::npos;
  });
}

// One hit being added: the record, and its texts hashed once for all tables.
class HitAdder {
 public:
  explicit HitAdder(LogRecord& record)
      : record_(record),
        uri_(record.uriStem),
        agent_(record.userAgent),
        address_(record.clientAddress),
        referrer_(record.referrer),
        bytes_(static_cast<float>(record.bytesSent)) {}

  void Add() {
    AddCounters();
    AddPeakHour();
    AddUri();
    AddClient();
    at_status_ = true;
    AddStatus();
    AddFile();
    AddQueryAndUser();
    mdlVisit::TrackVisit(address_, agent_, TimeInPeriod(), record_.uriStem, record_.bytesSent);
    if (!record_.hostLabel.empty()) month_.HostLabel = record_.hostLabel;
  }

  // What an error message names. Tables and visits report their own errors, so a hit can end only
  // at the counters and peaks before them or at the counts that depend on the status; the values
  // that are added in between and afterwards never appear.
  std::string Context() const {
    return at_status_ ? std::string("Status=").append(record_.status) : "counters";
  }

 private:
  void AddCounters() {
    AddTo(month_.TotalHits, 1);
    AddTo(month_.DayHits[record_.day], 1);
    AddTo(month_.HourHits[record_.hour], 1);
    AddTo(month_.TotalBytes, bytes_);
    AddTo(month_.DayBytes[record_.day], bytes_);
    AddTo(month_.HourBytes[record_.hour], bytes_);
    const float time_taken = static_cast<float>(record_.timeTaken);
    AddTo(month_.TotalTimeTaken, time_taken);
    AddTo(month_.DayTimeTaken[record_.day], time_taken);
    AddTo(month_.HourTimeTaken[record_.hour], time_taken);
    if (month_.MaxTimeTaken < time_taken) month_.MaxTimeTaken = time_taken;
  }

  // Hits are assumed to come in time order; an hour that recurs later starts from 0. A later hour
  // that ties a peak replaces it.
  void AddPeakHour() {
    if (record_.day != month_.CurrentDay || record_.hour != month_.CurrentHour) {
      month_.CurrentDay = record_.day;
      month_.CurrentHour = record_.hour;
      month_.CurrentHourBytes = 0;
      month_.CurrentHourHits = 0;
    }
    AddTo(month_.CurrentHourBytes, bytes_);
    AddTo(month_.CurrentHourHits, 1);
    if (month_.CurrentHourBytes >= month_.PeakHourBytes) {
      month_.PeakHourBytes = month_.CurrentHourBytes;
      month_.PeakHourBytesDay = month_.CurrentDay;
      month_.PeakHourBytesHour = month_.CurrentHour;
    }
    if (month_.CurrentHourHits >= month_.PeakHourHits) {
      month_.PeakHourHits = month_.CurrentHourHits;
      month_.PeakHourHitsDay = month_.CurrentDay;
      month_.PeakHourHitsHour = month_.CurrentHour;
    }
  }

  void AddUri() {
    if (record_.uriStem.empty()) return;
    if (!record_.userAgent.empty() && text::EqualsIgnoringCase(record_.uriStem, kRobotsTxt)) {
      TallyAdd(agent_, month_.RobotsTxtAgents, bytes_);
    }
    static std::string file_type;  // reused, so that a hit allocates nothing
    stats::FindFileType(record_.uriStem, file_type);
    if (!file_type.empty()) TallyAdd(file_type, month_.FileTypes, bytes_);
  }

  void AddClient() {
    AddUnlessEmpty(agent_, month_.UserAgents);
    AddUnlessEmpty(record_.method, month_.Methods);
    AddUnlessEmpty(address_, month_.ClientAddresses);
    AddUnlessEmpty(referrer_, month_.Referrers);
    if (record_.timeTaken > 0) {
      TallyAdd(uri_, month_.UrlResponseTimes, static_cast<float>(record_.timeTaken), true);
    }
  }

  void AddStatus() {
    if (record_.status.empty() || IsSuccessStatus(record_.status)) {
      AddUnlessEmpty(uri_, month_.SuccessUrls);
    } else {
      AddTo(month_.DayFailures[record_.day], 1);
      if (!IsSuccessOrRedirectStatus(record_.status)) {
        TallyAdd(uri_, month_.FailedUrls, bytes_);
        AddUnlessEmpty(referrer_, month_.FailedReferrers);
      }
    }
    AddUnlessEmpty(record_.status, month_.StatusCodes);
  }

  void AddFile() {
    if (record_.status != "200") return;
    AddTo(month_.TotalFiles, 1);
    AddTo(month_.DayFiles[record_.day], 1);
    AddTo(month_.HourFiles[record_.hour], 1);
    if (mdlWebPage::IsPage(record_.uriStem) == 0) return;
    AddTo(month_.TotalPages, 1);
    AddTo(month_.DayPages[record_.day], 1);
    AddTo(month_.HourPages[record_.hour], 1);
    TallyAdd(uri_, month_.Pages, bytes_);
  }

  void AddQueryAndUser() {
    if (record_.searchKeywords != kEmptyMark) {
      AddUnlessEmpty(record_.searchKeywords, month_.Queries);
    }
    if (record_.userName == kEmptyMark) record_.userName = "Anonymous";
    AddUnlessEmpty(record_.userName, month_.UserNames);
  }

  // Seconds since the start of day 0. Fits: day and hour have indexed their arrays by now.
  std::int32_t TimeInPeriod() const {
    return ((record_.day * 24 + record_.hour) * 60 + record_.minute) * 60 + record_.second;
  }

  void AddUnlessEmpty(const HashedKey& key, TallyTable& table) {
    if (!key.text.empty()) TallyAdd(key, table, bytes_);
  }

  LogRecord& record_;
  const HashedKey uri_;
  const HashedKey agent_;
  const HashedKey address_;
  const HashedKey referrer_;
  const float bytes_;
  MonthStats& month_ = Month();
  bool at_status_ = false;
};

}  // namespace

MonthStats& Month() { return *month_stats; }

bool IsSuccessStatus(std::string_view status) { return OneContains(kSuccessStatuses, status); }

bool IsSuccessOrRedirectStatus(std::string_view status) {
  return IsSuccessStatus(status) || OneContains(kRedirectStatuses, status);
}

void InitMonth() {
  month_stats.emplace(robots_txt_agents);
  mdlWebPage::BuildRobotWords();
}

void AddHit(LogRecord& record) {
  HitAdder hit(record);
  try {
    hit.Add();
  } catch (const stats::Fault& fault) {
    mdlConfigs::LogWarning("Error adding hit " + hit.Context() + " : " + fault.description());
  }
}

}  // namespace mdlMonth
