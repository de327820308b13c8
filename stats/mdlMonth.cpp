#include "stats/mdlMonth.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "stats/file_type.h"
#include "stats/lost_counts.h"
#include "stats/mdlVisit.h"
#include "stats/mdlWebPage.h"

namespace mdlMonth {
namespace {

using stats::AddTo;
using stats::HashedKey;
using stats::KeyStore;
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
constexpr std::string_view kFileStatus = "200";
constexpr std::string_view kEmptyMark = "-";
constexpr KeyStore::Ref kNoFileType = 0xFFFFFFFF;

TallyTable robots_txt_agents;
std::optional<MonthStats> month_stats(std::in_place, robots_txt_agents);

template <std::size_t N>
bool OneContains(const std::string_view (&list)[N], std::string_view status) {
  return std::any_of(std::begin(list), std::end(list), [status](std::string_view member) {
    return member.find(status) != std::string_view::npos;
  });
}

// How a status counts, as bits of the note in its row; see `AddHit`.
enum StatusClass : std::uint32_t {
  kStatusKnown = 1,
  kStatusSuccess = 2,
  kStatusSuccessOrRedirect = 4,
  kStatusFile = 8
};

std::uint32_t ClassOf(std::string_view status) {
  std::uint32_t status_class = kStatusKnown;
  if (IsSuccessStatus(status)) status_class |= kStatusSuccess;
  if (IsSuccessOrRedirectStatus(status)) status_class |= kStatusSuccessOrRedirect;
  if (status == kFileStatus) status_class |= kStatusFile;
  return status_class;
}

// A text of a hit and its row, which is looked for, and entered, when it is first needed.
struct HitKey {
  HitKey(std::string_view text, KeyStore& keys) : key(text), store(&keys) {}

  // False when there is no memory for a text that is new.
  bool FindRow() {
    try {
      if (row == KeyStore::kNone) row = store->FindOrEnter(key);
    } catch (const std::bad_alloc&) {
      stats::NoteLostCounts();
      return false;
    }
    return true;
  }

  HashedKey key;
  KeyStore* store;
  KeyStore::Ref row = KeyStore::kNone;
};

// The texts of a hit that several tables, or the visits, want.
struct HitKeys {
  HitKeys(const LogRecord& record, MonthStats& month)
      : uri(record.uriStem, month.UriKeys),
        agent(record.userAgent, month.AgentKeys),
        address(record.clientAddress, month.ClientAddresses.Keys()),
        referrer(record.referrer, month.ReferrerKeys) {}

  void PrefetchBuckets() const {
    for (const HitKey* key : {&uri, &agent, &address, &referrer}) {
      key->store->PrefetchBucket(key->key);
    }
  }
  void PrefetchRows() const {
    for (const HitKey* key : {&uri, &agent, &address, &referrer}) key->store->PrefetchRow(key->key);
  }

  HitKey uri;
  HitKey agent;
  HitKey address;
  HitKey referrer;
};

// One hit being added.
class HitAdder {
 public:
  HitAdder(LogRecord& record, HitKeys& keys)
      : record_(record), keys_(keys), bytes_(static_cast<float>(record.bytesSent)) {}

  void Add() {
    AddCounters();
    AddPeakHour();
    AddUri();
    AddClient();
    at_status_ = true;
    AddStatus();
    AddQueryAndUser();
    AddToVisit();
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
      TallyAdd(keys_.agent.key, month_.RobotsTxtAgents, bytes_);
    }
    if (keys_.uri.FindRow()) AddFileType(month_.UriKeys.Note(keys_.uri.row, kFileTypeNote));
  }

  // `note`, in the URL's row, holds the row of its file type or that it has none.
  void AddFileType(std::uint32_t& note) {
    if (note == kNoFileType) return;
    if (note != KeyStore::kNone) return TallyAddAt(note, month_.FileTypes, bytes_);
    std::string file_type;
    stats::FindFileType(record_.uriStem, file_type);
    if (!file_type.empty()) TallyAdd(file_type, month_.FileTypes, bytes_);
    note = file_type.empty() ? kNoFileType : month_.FileTypes.Keys().Find(file_type);
  }

  void AddClient() {
    AddUnlessEmpty(keys_.agent, month_.UserAgents);
    AddRepeating(record_.method, month_.Methods);
    AddUnlessEmpty(keys_.address, month_.ClientAddresses);
    AddUnlessEmpty(keys_.referrer, month_.Referrers);
    if (record_.timeTaken > 0) AddResponseTime(static_cast<float>(record_.timeTaken));
  }

  void AddResponseTime(float time_taken) {
    TallyTable& table = month_.UrlResponseTimes;
    if (!keys_.uri.FindRow()) return LogTallyNotExtended(record_.uriStem, time_taken, table);
    if (!table.AddToMeanAt(keys_.uri.row, time_taken)) {
      LogTallyOverflow(record_.uriStem, time_taken);
    }
  }

  void AddStatus() {
    KeyStore::Ref row = KeyStore::kNone;
    const std::uint32_t status = StatusClassOfHit(&row);
    if ((status & kStatusSuccess) != 0) {
      AddUnlessEmpty(keys_.uri, month_.SuccessUrls);
    } else {
      AddTo(month_.DayFailures[record_.day], 1);
      if ((status & kStatusSuccessOrRedirect) == 0) {
        AddKey(keys_.uri, month_.FailedUrls);
        AddUnlessEmpty(keys_.referrer, month_.FailedReferrers);
      }
    }
    if (row != KeyStore::kNone) {
      TallyAddAt(row, month_.StatusCodes, bytes_);
    } else {
      AddRepeating(record_.status, month_.StatusCodes);
    }
    if ((status & kStatusFile) != 0) AddFile();
  }

  // A site knows few statuses, so each is classified once. Sets `row` to the status's.
  std::uint32_t StatusClassOfHit(KeyStore::Ref* row) {
    if (record_.status.empty()) return ClassOf(record_.status);
    try {
      *row = month_.StatusKeys.FindOrEnterAgain(record_.status);
      std::uint32_t& note = month_.StatusKeys.Note(*row, kStatusClassNote);
      if (note == 0) note = ClassOf(record_.status);
      return note;
    } catch (const std::bad_alloc&) {
      return ClassOf(record_.status);
    }
  }

  void AddFile() {
    AddTo(month_.TotalFiles, 1);
    AddTo(month_.DayFiles[record_.day], 1);
    AddTo(month_.HourFiles[record_.hour], 1);
    if (!IsPage()) return;
    AddTo(month_.TotalPages, 1);
    AddTo(month_.DayPages[record_.day], 1);
    AddTo(month_.HourPages[record_.hour], 1);
    AddKey(keys_.uri, month_.Pages);
  }

  bool IsPage() {
    enum : std::uint32_t { kNotYet, kOtherFile, kPage };
    if (!keys_.uri.FindRow()) return mdlWebPage::IsPage(record_.uriStem) == 1;
    std::uint32_t& note = month_.UriKeys.Note(keys_.uri.row, kPageNote);
    if (note == kNotYet) note = mdlWebPage::IsPage(record_.uriStem) == 1 ? kPage : kOtherFile;
    return note == kPage;
  }

  void AddQueryAndUser() {
    if (record_.searchKeywords != kEmptyMark && !record_.searchKeywords.empty()) {
      TallyAdd(record_.searchKeywords, month_.Queries, bytes_);
    }
    if (record_.userName == kEmptyMark) record_.userName = "Anonymous";
    AddRepeating(record_.userName, month_.UserNames);
  }

  void AddToVisit() {
    if (!keys_.address.FindRow() || !keys_.agent.FindRow() || !keys_.uri.FindRow()) {
      return mdlVisit::ReportTrackingError("Out of memory");
    }
    mdlVisit::TrackVisit({keys_.address.row, keys_.agent.row}, TimeInPeriod(), keys_.uri.row,
                         record_.bytesSent);
  }

  // Seconds since the start of day 0. Fits: day and hour have indexed their arrays by now.
  std::int32_t TimeInPeriod() const {
    return ((record_.day * 24 + record_.hour) * 60 + record_.minute) * 60 + record_.second;
  }

  void AddKey(HitKey& key, TallyTable& table) {
    if (!key.FindRow()) return LogTallyNotExtended(key.key.text, bytes_, table);
    TallyAddAt(key.row, table, bytes_);
  }

  void AddUnlessEmpty(HitKey& key, TallyTable& table) {
    if (!key.key.text.empty()) AddKey(key, table);
  }

  // For tables of few keys that mostly repeat.
  void AddRepeating(std::string_view text, TallyTable& table) {
    if (text.empty()) return;
    try {
      TallyAddAt(table.Keys().FindOrEnterAgain(text), table, bytes_);
    } catch (const std::bad_alloc&) {
      LogTallyNotExtended(text, bytes_, table);
    }
  }

  LogRecord& record_;
  HitKeys& keys_;
  const float bytes_;
  MonthStats& month_ = Month();
  bool at_status_ = false;
};

void AddOneHit(LogRecord& record, HitKeys& keys) {
  HitAdder hit(record, keys);
  try {
    hit.Add();
  } catch (const stats::Fault& fault) {
    mdlConfigs::LogWarning("Error adding hit " + hit.Context() + " : " + fault.description());
  }
}

}  // namespace

MonthStats& Month() { return *month_stats; }

bool IsSuccessStatus(std::string_view status) { return OneContains(kSuccessStatuses, status); }

bool IsSuccessOrRedirectStatus(std::string_view status) {
  return IsSuccessStatus(status) || OneContains(kRedirectStatuses, status);
}

void InitMonth() {
  stats::ForgetLostCounts();
  month_stats.emplace(robots_txt_agents);
  mdlWebPage::BuildRobotWords();
}

void AddHit(LogRecord& record) { AddHits({&record, 1}); }

// Three rounds over the hits: their texts are hashed and the buckets of the indexes asked for,
// then the rows; when the adding begins, the first of them have come. Looking does not enter a
// key: a hit's rows appear when it is added.
void AddHits(std::span<LogRecord> records) {
  static std::vector<HitKeys> keys;
  keys.clear();
  for (const LogRecord& record : records) keys.emplace_back(record, Month()).PrefetchBuckets();
  for (HitKeys& hit_keys : keys) hit_keys.PrefetchRows();
  for (std::size_t i = 0; i < records.size(); ++i) AddOneHit(records[i], keys[i]);
  mdlVisit::AddPagesOfClosedVisits();
}

}  // namespace mdlMonth
