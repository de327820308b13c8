#include "logread/record_parser.h"

#include <cstring>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "stats/fault.h"
#include "stats/log_record.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"

namespace mdlW3C {
namespace {

constexpr std::string_view kFieldsDirective = "#Fields:";
constexpr std::size_t kLastCursor = 32767;  // the cursor is a 16-bit integer
constexpr std::int32_t kLongestFailureMs = 1200000;

// In the order of `Field`, without `kOther`.
// One name to a line.
// clang-format off
constexpr std::string_view kFieldNames[] = {
    "date",
    "time",
    "c-ip",
    "cs-method",
    "cs-uri-stem",
    "cs-uri-query",
    "sc-status",
    "sc-bytes",
    "cs-bytes",
    "time-taken",
    "cs(User-Agent)",
    "cs(Referer)",
    "cs-username",
    "cs-host",
    "s-computername",
};
// clang-format on
static_assert(std::size(kFieldNames) + 1 == kFieldKinds);

ReadingState reading;

Field FieldOf(std::string_view name) {
  for (std::size_t i = 0; i < std::size(kFieldNames); ++i) {
    if (kFieldNames[i] == name) return static_cast<Field>(i);
  }
  return Field::kOther;
}

// The first blank in [from, end), or end. Tokens are short, so eight bytes at a time pay off where
// a call of memchr does not.
const char* FindBlank(const char* from, const char* end) {
  constexpr std::uint64_t kBlanks = 0x2020202020202020u;
  constexpr std::uint64_t kLow = 0x0101010101010101u;
  constexpr std::uint64_t kHigh = 0x8080808080808080u;
  for (; end - from >= 8; from += 8) {
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    const std::uint64_t zero_at_blank = word ^ kBlanks;
    if (((zero_at_blank - kLow) & ~zero_at_blank & kHigh) != 0) break;
  }
  while (from != end && *from != ' ') ++from;
  return from;
}

std::int16_t ShortNumber(std::string_view text) {
  const auto value = text::ToInt16(text);
  if (!value) stats::ThrowOverflow();
  return *value;
}

std::int32_t LongNumber(std::string_view text) {
  const auto value = text::ToInt32(text);
  if (!value) stats::ThrowOverflow();
  return *value;
}

// `count` characters from a 0-based position, fewer (or none) where the text ends before.
std::string_view Piece(std::string_view text, std::size_t from, std::size_t count) {
  return from < text.size() ? text.substr(from, count) : std::string_view();
}

std::string_view LastTwo(std::string_view text) {
  return text.size() > 2 ? text.substr(text.size() - 2) : text;
}

bool BeginsWith(std::string_view text, std::string_view prefix) {
  return text::EqualsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

// One line being parsed. The texts that are not part of the line live in buffers that are reused
// from record to record.
class RecordReader {
 public:
  RecordReader(std::int16_t month, std::int16_t year) : period_month_(month), period_year_(year) {
    record_date_ = reading.file_date;
  }

  // Reads all fields; false when the record's month is not the period's.
  bool ReadFields() {
    for (const Column& column : reading.columns) {
      step_ = column.name;
      if (!ReadField(column.field, NextToken())) return false;
    }
    return true;
  }

  bool skip() const { return skip_; }

  // Hands the record over if it is one and its day is in the period.
  void Insert(std::int16_t firstDay, std::int16_t lastDay) {
    step_ = "(insert)";
    if (record_.timeTaken > kLongestFailureMs && record_.status != "200") record_.timeTaken = 0;
    const bool empty =
        record_.uriStem.empty() && record_.clientAddress.empty() && record_.bytesSent == 0;
    if (empty || record_date_.day < firstDay || record_date_.day > lastDay) return;
    record_.month = static_cast<std::int16_t>(record_date_.month);
    record_.day = static_cast<std::int16_t>(record_date_.day);
    mdlMonth::AddHit(record_);
  }

  // What an error message names: the field being read, or the step after the fields.
  std::string_view step() const { return step_; }

 private:
  // False when the record is to be dropped at once.
  bool ReadField(Field field, std::string_view token) {
    switch (field) {
      case Field::kDate:
        ReadDate(token);
        break;
      case Field::kTime:
        ReadTime(token);
        return InPeriod();
      case Field::kClientIp:
        Store(field, VisitorAddress(token), record_.clientAddress);
        break;
      case Field::kMethod:
        Store(field, token, record_.method);
        break;
      case Field::kUriStem:
        Store(field, token, record_.uriStem);
        break;
      case Field::kUriQuery:
        Check(field, token);
        break;
      case Field::kStatus:
        Store(field, token, record_.status);
        break;
      case Field::kBytesSent:
        record_.bytesSent = LongNumber(token);
        break;
      case Field::kBytesReceived:
        record_.bytesReceived = LongNumber(token);
        break;
      case Field::kTimeTaken:
        record_.timeTaken = LongNumber(token);
        break;
      case Field::kUserAgent:
        Store(field, token, record_.userAgent);
        break;
      case Field::kReferrer:
        ReadReferrer(token);
        break;
      case Field::kUserName:
        Store(field, token, record_.userName);
        break;
      case Field::kHost:
        ReadHost(token);
        break;
      case Field::kComputerName:
        reading.server_name = token;
        break;
      case Field::kOther:
        break;
    }
    return true;
  }

  // The day also stands in for later records of the file that carry no date.
  void ReadDate(std::string_view token) {
    record_date_.year = ShortNumber(Piece(token, 0, 4));
    record_date_.month = ShortNumber(Piece(token, 5, 2));
    record_date_.day = ShortNumber(LastTwo(token));
    reading.file_date.day = record_date_.day;
  }

  // Shifts the time from UTC. The minute stays as it comes out, even below 0 or above 59: only
  // the hour it belongs to is corrected. A date moves by one day at most.
  void ReadTime(std::string_view token) {
    int hour = ShortNumber(Piece(token, 0, 2)) - reading.offset_hours;
    const int minute = ShortNumber(Piece(token, 3, 2)) - reading.offset_minutes;
    if (minute < 0) --hour;
    if (minute >= 60) ++hour;
    if (hour < 0) {
      hour += 24;
      record_date_ = calendar::AddDays(record_date_, -1);
    } else if (hour >= 24) {
      hour -= 24;
      record_date_ = calendar::AddDays(record_date_, 1);
    }
    record_.hour = static_cast<std::int16_t>(hour);
    record_.minute = static_cast<std::int16_t>(minute);
  }

  bool InPeriod() const {
    return record_date_.month == period_month_ && record_date_.year == period_year_;
  }

  // The machine's own addresses all count as one.
  static std::string_view VisitorAddress(std::string_view token) {
    return BeginsWith(token, "::1") || BeginsWith(token, "fe80:") ? "127.0.0.1" : token;
  }

  // The search words come from the referrer's query; what is stored is the page without query and
  // fragment.
  void ReadReferrer(std::string_view token) {
    Store(Field::kReferrer, token, record_.referrer);
    if (token.size() <= 1) return;
    if (const std::size_t query = token.find('?'); query != text::kNone) {
      search_words_ = mdlWebPage::ExtractSearchWords(token.substr(query));
      record_.searchKeywords = search_words_;
      record_.referrer = token.substr(0, query);
      Check(Field::kUriQuery, record_.searchKeywords);
    }
    record_.referrer = record_.referrer.substr(0, record_.referrer.find('#'));
  }

  void ReadHost(std::string_view token) {
    host_label_.assign(" [").append(token).append("] ");
    record_.hostLabel = host_label_;
  }

  void Store(Field field, std::string_view value, std::string_view& target) {
    target = value;
    Check(field, value);
  }

  void Check(Field field, std::string_view value) {
    mdlFilters::FieldRules& rules = reading.rules[static_cast<std::size_t>(field)];
    if (rules.empty()) return;
    const mdlFilters::Verdict verdict = rules.Check(value);
    if (verdict == mdlFilters::Verdict::kBadPattern) throw stats::Fault("Invalid pattern string");
    skip_ = skip_ || verdict == mdlFilters::Verdict::kSkip;
  }

  static inline std::string search_words_;
  static inline std::string host_label_;

  const std::int16_t period_month_;
  const std::int16_t period_year_;
  stats::LogRecord record_;
  calendar::Date record_date_;
  std::string_view step_;
  bool skip_ = false;
};

}  // namespace

ReadingState& Reading() { return reading; }

void PrepareFilters() {
  for (std::size_t i = 0; i < std::size(kFieldNames); ++i) {
    reading.rules[i] = mdlFilters::FieldRules(kFieldNames[i]);
  }
}

std::string_view NextToken() {
  const char* const data = reading.line.data();
  const char* const end = data + reading.line.size();
  const char* begin = data + reading.cursor;
  while (begin != end && *begin == ' ') ++begin;
  const char* const stop = FindBlank(begin, end);
  reading.cursor = static_cast<std::size_t>(stop - data);
  if (reading.cursor >= kLastCursor) stats::ThrowOverflow();
  return {begin, static_cast<std::size_t>(stop - begin)};
}

void ReadHeaderLine() {
  if (!BeginsWith(reading.line, kFieldsDirective)) return;
  reading.columns.clear();
  reading.cursor = kFieldsDirective.size();
  try {
    for (;;) {
      const std::string_view name = NextToken();
      if (name.empty()) return;
      reading.columns.push_back({FieldOf(name), std::string(name)});
    }
  } catch (const stats::Fault&) {
    // The names before the end of the cursor's range form the list.
  }
}

void ParseRecord(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year) {
  RecordReader reader(month, year);
  const bool diagnostic = mdlConfigs::Run().LogTranslations;
  try {
    if (!reader.ReadFields()) return;
    if (!reader.skip()) return reader.Insert(firstDay, lastDay);
    if (diagnostic) mdlConfigs::LogInformation(": Skipping log record because of filter rule");
  } catch (const stats::Fault& fault) {
    if (!diagnostic) return;
    mdlConfigs::LogWarning(std::string("Error processing field ")
                               .append(reader.step())
                               .append(" : ")
                               .append(fault.description()));
  }
}

}  // namespace mdlW3C
