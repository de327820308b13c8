// Reading a month in the plainest way: every line goes through all steps, one after the other, into
// tables that are searched from the front. Slow, and obviously right; the real reader and the real
// statistics have to agree with it. Test code only.
#ifndef HITWICK_TESTS_REFERENCE_LITERAL_MONTH_H_
#define HITWICK_TESTS_REFERENCE_LITERAL_MONTH_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/calendar.h"
#include "config/text.h"
#include "logread/mdlFilters.h"
#include "stats/file_type.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"
#include "tests/reference/literal_tally.h"
#include "tests/reference/literal_visits.h"

namespace reference {

// What became of a line. Every line is one of these.
enum class Fate {
  kBlank,
  kHeader,
  kHit,         // handed to the statistics
  kOtherMonth,  // dropped: not of the period
  kNothing,     // dropped: neither URL nor address nor bytes
  kOtherDay,    // dropped: not of the days asked for
  kFiltered,    // dropped: a rule says so
  kFailed       // dropped: an error
};
inline constexpr std::size_t kFates = 8;

struct Record {
  calendar::Date date;
  int hour = 0;
  int minute = 0;
  std::string address, method, uri, words, status, agent, referrer, host_label, user;
  std::int32_t bytes = 0;
  std::int32_t time_taken = 0;
};

// The numeric value of a text, rounded; nothing when it is beyond `most`.
inline std::optional<std::int32_t> NumberIn(const std::string& text, double most) {
  std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
  if (end != 0 && end < text.size() && text[end] == '.') {
    end = std::min(text.find_first_not_of("0123456789", end + 1), text.size());
  }
  const double value = std::nearbyint(std::strtod(("0" + text.substr(0, end)).c_str(), nullptr));
  if (!(value <= most)) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

class LiteralMonth {
 public:
  struct Period {
    int first_day = 1, last_day = 31, month = 1, year = 2026;
    int offset_hours = 0, offset_minutes = 0;
  };

  // `slots`: the visit slots allocated so far in this process.
  LiteralMonth(const Period& period, int slots)
      : visits([this](const std::string& agent) { return IsRobot(agent); }, slots),
        period_(period) {
    visits.InitVisits();
  }

  void ReadFile(std::string_view content, const calendar::Date& file_date) {
    file_date_ = file_date;
    while (!content.empty()) {
      const std::size_t end = content.find('\n');
      std::string line(content.substr(0, end));
      if (end != std::string_view::npos && line.ends_with('\r')) line.pop_back();
      fates[static_cast<std::size_t>(ReadLine(line))] += 1;
      content = end == std::string_view::npos ? std::string_view() : content.substr(end + 1);
    }
  }

  std::size_t Count(Fate fate) const { return fates[static_cast<std::size_t>(fate)]; }

  std::array<std::size_t, kFates> fates{};
  std::size_t failed_hits = 0;  // of those handed to the statistics

  float total_hits = 0, total_bytes = 0, total_time = 0, total_files = 0, total_pages = 0;
  float longest_time = 0;
  std::array<float, 32> day_hits{}, day_bytes{}, day_failures{};
  std::array<float, 25> hour_hits{}, hour_bytes{};
  TallyTable success_urls, robots_txt_agents, agents, addresses, methods, referrers, statuses;
  TallyTable queries, users, pages, failed_urls, failed_referrers, file_types, response_times;
  LiteralVisits visits;
  std::string host_label;

 private:
  static constexpr std::size_t kLastCursor = 32767;

  bool IsRobot(const std::string& agent) const {
    for (std::int32_t i = 1; i <= robots_txt_agents.Count(); ++i) {
      if (robots_txt_agents.entries[static_cast<std::size_t>(i)].Key == agent) return true;
    }
    return mdlWebPage::HasRobotWord(agent);
  }

  // The next token; nothing when the cursor would leave its range.
  std::optional<std::string> Token(const std::string& line) {
    while (cursor_ <= line.size() && line[cursor_ - 1] == ' ') ++cursor_;
    std::string token;
    while (cursor_ <= line.size() && line[cursor_ - 1] != ' ') token += line[cursor_++ - 1];
    if (cursor_ > kLastCursor) return std::nullopt;
    for (char& c : token) {
      if (c == '"' || c == '\'' || c == '<' || c == '>') c = '_';
    }
    return token;
  }

  Fate ReadLine(const std::string& line) {
    if (line.empty()) return Fate::kBlank;
    cursor_ = 1;
    if (line[0] != '#') return ReadRecord(line);
    if (!text::EqualsIgnoringCase(line.substr(0, 8), "#Fields:")) return Fate::kHeader;
    fields_.clear();
    cursor_ = 9;
    for (std::optional<std::string> name = Token(line); name && !name->empty();
         name = Token(line)) {
      fields_.push_back(*name);
    }
    return Fate::kHeader;
  }

  Fate ReadRecord(const std::string& line) {
    Record record;
    record.date = file_date_;
    skip_ = false;
    for (const std::string& field : fields_) {
      const std::optional<std::string> token = Token(line);
      if (!token) return Fate::kFailed;
      const Fate fate = ReadField(field, *token, record);
      if (fate != Fate::kHit) return fate;
    }
    if (skip_) return Fate::kFiltered;
    if (record.time_taken > 1200000 && record.status != "200") record.time_taken = 0;
    if (record.uri.empty() && record.address.empty() && record.bytes == 0) return Fate::kNothing;
    if (record.date.day < period_.first_day || record.date.day > period_.last_day) {
      return Fate::kOtherDay;
    }
    AddHit(record);
    return Fate::kHit;
  }

  // kHit: go on.
  Fate ReadField(const std::string& field, const std::string& token, Record& record) {
    if (field == "date") return ReadDate(token, record);
    if (field == "time") return ReadTime(token, record);
    if (field == "sc-bytes") return ReadNumber(token, &record.bytes);
    if (field == "time-taken") return ReadNumber(token, &record.time_taken);
    std::int32_t not_kept = 0;
    if (field == "cs-bytes") return ReadNumber(token, &not_kept);
    if (field == "cs(Referer)") return ReadReferrer(token, record);
    if (field == "cs-uri-query") return Check(field, token);
    if (field == "cs-host") record.host_label = " [" + token + "] ";
    std::string* const target = field == "c-ip"             ? &record.address
                                : field == "cs-method"      ? &record.method
                                : field == "cs-uri-stem"    ? &record.uri
                                : field == "cs(User-Agent)" ? &record.agent
                                : field == "cs-username"    ? &record.user
                                : field == "sc-status"      ? &record.status
                                                            : nullptr;
    if (target == nullptr) return Fate::kHit;
    *target = field == "c-ip" && IsOwnAddress(token) ? "127.0.0.1" : token;
    return Check(field, *target);
  }

  static bool IsOwnAddress(const std::string& token) {
    return text::EqualsIgnoringCase(token.substr(0, 3), "::1") ||
           text::EqualsIgnoringCase(token.substr(0, 5), "fe80:");
  }

  Fate Check(const std::string& field, const std::string& value) {
    const mdlFilters::Verdict verdict = mdlFilters::CheckFilters(field, value);
    if (verdict == mdlFilters::Verdict::kBadPattern) return Fate::kFailed;
    if (verdict == mdlFilters::Verdict::kSkip) skip_ = true;
    return Fate::kHit;
  }

  static std::string Piece(const std::string& text, std::size_t from, std::size_t count) {
    return from < text.size() ? text.substr(from, count) : std::string();
  }

  Fate ReadDate(const std::string& token, Record& record) {
    const auto year = NumberIn(Piece(token, 0, 4), 32767);
    const auto month = NumberIn(Piece(token, 5, 2), 32767);
    const auto day = NumberIn(token.size() > 2 ? token.substr(token.size() - 2) : token, 32767);
    if (!year || !month || !day) return Fate::kFailed;
    record.date = {*year, *month, *day};
    file_date_.day = *day;
    return Fate::kHit;
  }

  Fate ReadTime(const std::string& token, Record& record) {
    const auto hour = NumberIn(Piece(token, 0, 2), 32767);
    const auto minute = NumberIn(Piece(token, 3, 2), 32767);
    if (!hour || !minute) return Fate::kFailed;
    record.hour = *hour - period_.offset_hours;
    record.minute = *minute - period_.offset_minutes;
    if (record.minute < 0) record.hour -= 1;
    if (record.minute >= 60) record.hour += 1;
    const int move = record.hour < 0 ? -1 : record.hour >= 24 ? 1 : 0;
    record.hour -= 24 * move;
    if (move != 0) record.date = calendar::AddDays(record.date, move);
    const bool in_period = record.date.month == period_.month && record.date.year == period_.year;
    return in_period ? Fate::kHit : Fate::kOtherMonth;
  }

  static Fate ReadNumber(const std::string& token, std::int32_t* number) {
    const auto value = NumberIn(token, std::numeric_limits<std::int32_t>::max());
    if (!value) return Fate::kFailed;
    *number = *value;
    return Fate::kHit;
  }

  Fate ReadReferrer(const std::string& token, Record& record) {
    record.referrer = token;
    if (const Fate fate = Check("cs(Referer)", token); fate != Fate::kHit) return fate;
    if (token.size() <= 1) return Fate::kHit;
    if (const std::size_t query = token.find('?'); query != std::string::npos) {
      record.words = mdlWebPage::ExtractSearchWords(token.substr(query));
      record.referrer.resize(query);
      if (const Fate fate = Check("cs-uri-query", record.words); fate != Fate::kHit) return fate;
    }
    record.referrer = record.referrer.substr(0, record.referrer.find('#'));
    return Fate::kHit;
  }

  static void Add(const std::string& key, TallyTable& table, std::int32_t value) {
    if (!key.empty()) TallyAdd(key, table, static_cast<float>(value), false);
  }

  void AddHit(const Record& record) {
    const auto day = static_cast<std::size_t>(record.date.day);
    const auto hour = static_cast<std::size_t>(record.hour);
    const auto bytes = static_cast<float>(record.bytes);
    const auto time_taken = static_cast<float>(record.time_taken);
    total_hits += 1;
    day_hits[day] += 1;
    if (record.hour < 0 || record.hour > 24) {  // no such slot: the hit ends here
      ++failed_hits;
      return;
    }
    hour_hits[hour] += 1;
    total_bytes += bytes;
    day_bytes[day] += bytes;
    hour_bytes[hour] += bytes;
    total_time += time_taken;
    longest_time = std::max(longest_time, time_taken);
    AddTexts(record);
    AddStatus(record, day);
    if (record.words != "-") Add(record.words, queries, record.bytes);
    Add(record.user == "-" ? "Anonymous" : record.user, users, record.bytes);
    const int seconds = ((record.date.day * 24 + record.hour) * 60 + record.minute) * 60;
    visits.TrackVisit(record.address, record.agent, seconds, record.uri, record.bytes);
    if (!record.host_label.empty()) host_label = record.host_label;
  }

  void AddTexts(const Record& record) {
    if (text::EqualsIgnoringCase(record.uri, "/robots.txt")) {
      Add(record.agent, robots_txt_agents, record.bytes);
    }
    std::string file_type;
    stats::FindFileType(record.uri, file_type);
    Add(file_type, file_types, record.bytes);
    Add(record.agent, agents, record.bytes);
    Add(record.method, methods, record.bytes);
    Add(record.address, addresses, record.bytes);
    Add(record.referrer, referrers, record.bytes);
    if (record.time_taken > 0) {
      TallyAdd(record.uri, response_times, static_cast<float>(record.time_taken), true);
    }
  }

  void AddStatus(const Record& record, std::size_t day) {
    if (mdlMonth::IsSuccessStatus(record.status)) {
      Add(record.uri, success_urls, record.bytes);
    } else {
      day_failures[day] += 1;
      if (!mdlMonth::IsSuccessOrRedirectStatus(record.status)) {
        TallyAdd(record.uri, failed_urls, static_cast<float>(record.bytes), false);
        Add(record.referrer, failed_referrers, record.bytes);
      }
    }
    Add(record.status, statuses, record.bytes);
    if (record.status != "200") return;
    total_files += 1;
    if (mdlWebPage::IsPage(record.uri) == 0) return;
    total_pages += 1;
    TallyAdd(record.uri, pages, static_cast<float>(record.bytes), false);
  }

  const Period period_;
  calendar::Date file_date_;
  std::vector<std::string> fields_;
  std::size_t cursor_ = 1;
  bool skip_ = false;
};

}  // namespace reference

#endif  // HITWICK_TESTS_REFERENCE_LITERAL_MONTH_H_
