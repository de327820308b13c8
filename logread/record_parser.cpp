#include "logread/record_parser.h"

#include <cstring>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "logread/visitor_address.h"
#include "stats/fault.h"
#include "stats/log_record.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"

namespace mdlW3C {
namespace {

constexpr std::string_view kFieldsDirective = "#Fields:";
constexpr std::size_t kLastCursor = 32767;  // the cursor is a 16-bit integer
constexpr std::int32_t kLongestFailureMs = 1200000;

ReadingState reading;

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

struct Period {
  std::int16_t firstDay, lastDay, month, year;
};

// The numbers of a regular line.
struct PlainNumbers {
  int hour = 0;
  int minute = 0;
  std::int32_t bytes_sent = 0;
  std::int32_t bytes_received = 0;
  std::int32_t time_taken = 0;
};

// A date as a log writes it, and what it says; logs repeat theirs for a day.
struct ReadDateText {
  std::string text;
  calendar::Date date;
};

calendar::Date DateOf(std::string_view token) {
  static ReadDateText latest;
  if (token != latest.text) {
    latest.date = {ShortNumber(Piece(token, 0, 4)), ShortNumber(Piece(token, 5, 2)),
                   ShortNumber(LastTwo(token))};
    latest.text = token;
  }
  return latest.date;
}

// The date a day before or after; a shift from UTC asks for the same one again and again.
calendar::Date Neighbour(const calendar::Date& date, int days) {
  static calendar::Date latest;
  static int latest_days = 0;
  static calendar::Date neighbour;
  if (date != latest || days != latest_days) {
    neighbour = calendar::AddDays(date, days);
    latest = date;
    latest_days = days;
  }
  return neighbour;
}

// One line being parsed into the next record of the batch.
class RecordReader {
 public:
  explicit RecordReader(const Period& period) : period_(period) {
    record_date_ = reading.file_date;
  }

  // Reads all fields; false when the record's month is not the period's.
  bool ReadFields() {
    record_ = stats::LogRecord();
    for (std::size_t i = 0; i < reading.columns.size(); ++i) {
      const Column& column = reading.columns[i];
      step_ = column.name;
      const std::string_view token = NextToken();
      if (i == reading.visitor_column) visitor_ = token;
      if (!ReadField(column.field, token)) return false;
    }
    if (reading.visitor_column) ReadVisitor();
    return true;
  }

  // Reads and inserts the record of a regular line; false, with nothing changed, for any other
  // line. What could fail is read first, so the order of the columns no longer matters: only the
  // server's name, which stays even if the record is dropped, may stand on either side of the time.
  bool InsertRegular() {
    if (!reading.regular.Fit(reading.line)) return false;
    PlainNumbers numbers;
    if (!ReadPlainNumbers(&numbers)) return false;
    ReadDate(Token(Field::kDate));
    ShiftTime(numbers.hour, numbers.minute);
    const bool in_period = InPeriod();
    if (reading.regular.Has(Field::kComputerName) &&
        (in_period || reading.regular.PrecedesTime(Field::kComputerName))) {
      SetServerName(Token(Field::kComputerName));
    }
    if (!in_period) return true;
    record_.bytesSent = numbers.bytes_sent;
    record_.bytesReceived = numbers.bytes_received;
    record_.timeTaken = numbers.time_taken;
    record_.clientAddress = VisitorAddress(Token(Field::kClientIp));
    record_.method = Token(Field::kMethod);
    record_.uriStem = Token(Field::kUriStem);
    record_.status = Token(Field::kStatus);
    record_.userAgent = Token(Field::kUserAgent);
    record_.userName = Token(Field::kUserName);
    // Emptying the whole record first would cost 2 % of the time.
    record_.searchKeywords = record_.referrer = record_.hostLabel = std::string_view();
    if (reading.regular.Has(Field::kReferrer)) ReadReferrer(Token(Field::kReferrer));
    if (reading.regular.Has(Field::kHost)) ReadHost(Token(Field::kHost));
    if (reading.has_rules) CheckRegular();
    if (!skip_) Insert();
    return true;
  }

  bool skip() const { return skip_; }

  // Hands the record over if it is one and its day is in the period.
  void Insert() {
    step_ = "(insert)";
    if (record_.timeTaken > kLongestFailureMs && record_.status != "200") record_.timeTaken = 0;
    const bool empty =
        record_.uriStem.empty() && record_.clientAddress.empty() && record_.bytesSent == 0;
    if (empty || record_date_.day < period_.firstDay || record_date_.day > period_.lastDay) return;
    record_.month = static_cast<std::int16_t>(record_date_.month);
    record_.day = static_cast<std::int16_t>(record_date_.day);
    reading.batch.Keep();
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
        ReadClientAddress(token);
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
        SetServerName(token);
        break;
      case Field::kOther:
        break;
    }
    return true;
  }

  static std::string_view Token(Field field) { return reading.regular.Token(reading.line, field); }

  static bool ReadPlainNumbers(PlainNumbers* numbers) {
    return ReadPlainTime(Token(Field::kTime), &numbers->hour, &numbers->minute) &&
           ReadPlainNumber(Token(Field::kBytesSent), &numbers->bytes_sent) &&
           ReadPlainNumber(Token(Field::kBytesReceived), &numbers->bytes_received) &&
           ReadPlainNumber(Token(Field::kTimeTaken), &numbers->time_taken);
  }

  // The day also stands in for later records of the file that carry no date.
  void ReadDate(std::string_view token) {
    record_date_ = DateOf(token);
    reading.file_date.day = record_date_.day;
  }

  void ReadTime(std::string_view token) {
    ShiftTime(ShortNumber(Piece(token, 0, 2)), ShortNumber(Piece(token, 3, 2)));
  }

  // Shifts the time from UTC. The minute stays as it comes out, even below 0 or above 59: only
  // the hour it belongs to is corrected. A date moves by one day at most.
  void ShiftTime(int hour, int minute) {
    hour -= reading.offset_hours;
    minute -= reading.offset_minutes;
    if (minute < 0) --hour;
    if (minute >= 60) ++hour;
    if (hour < 0) {
      hour += 24;
      record_date_ = Neighbour(record_date_, -1);
    } else if (hour >= 24) {
      hour -= 24;
      record_date_ = Neighbour(record_date_, 1);
    }
    record_.hour = static_cast<std::int16_t>(hour);
    record_.minute = static_cast<std::int16_t>(minute);
  }

  bool InPeriod() const {
    return record_date_.month == period_.month && record_date_.year == period_.year;
  }

  // The machine's own addresses all count as one. They are no IPv4 addresses, as most are.
  static std::string_view VisitorAddress(std::string_view token) {
    if (!token.empty() && text::IsDigit(token.front())) return token;
    return BeginsWith(token, "::1") || BeginsWith(token, "fe80:") ? "127.0.0.1" : token;
  }

  // Where the site names another field for the visitor, "c-ip" only stands in for it, and rules
  // see the address that counts.
  void ReadClientAddress(std::string_view token) {
    if (reading.visitor_column) {
      record_.clientAddress = token;
    } else {
      Store(Field::kClientIp, VisitorAddress(token), record_.clientAddress);
    }
  }

  void ReadVisitor() {
    const std::string_view address = logread::FirstAddress(visitor_);
    const std::string_view counted = address.empty() ? record_.clientAddress : address;
    if (!counted.empty()) Store(Field::kClientIp, VisitorAddress(counted), record_.clientAddress);
  }

  // The search words come from the referrer's query; what is stored is the page without query and
  // fragment.
  void ReadReferrer(std::string_view token) {
    Store(Field::kReferrer, token, record_.referrer);
    if (token.size() <= 1) return;
    if (const std::size_t query = token.find('?'); query != text::kNone) {
      texts_.search_words = mdlWebPage::ExtractSearchWords(token.substr(query));
      record_.searchKeywords = texts_.search_words;
      record_.referrer = token.substr(0, query);
      Check(Field::kUriQuery, record_.searchKeywords);
    }
    record_.referrer = record_.referrer.substr(0, record_.referrer.find('#'));
  }

  void ReadHost(std::string_view token) {
    texts_.host_label.assign(" [").append(token).append("] ");
    record_.hostLabel = texts_.host_label;
  }

  static void SetServerName(std::string_view token) {
    if (reading.server_name != token) reading.server_name = token;
  }

  // Asks the rules of a regular line's fields; the referrer's have been asked when it was read.
  void CheckRegular() {
    for (const Field field : {Field::kMethod, Field::kUriStem, Field::kUriQuery, Field::kStatus,
                              Field::kUserAgent, Field::kUserName}) {
      if (reading.regular.Has(field)) Check(field, Token(field));
    }
    if (reading.regular.Has(Field::kClientIp)) Check(Field::kClientIp, record_.clientAddress);
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

  const Period period_;
  stats::LogRecord& record_ = reading.batch.Next();
  RecordTexts& texts_ = reading.batch.Texts();
  calendar::Date record_date_;
  std::string_view step_;
  std::string_view visitor_;  // the token of the column that the site names
  bool skip_ = false;
};

}  // namespace

ReadingState& Reading() { return reading; }

namespace {

std::optional<std::size_t> VisitorColumn() {
  const std::string& wanted = mdlConfigs::Run().Settings.ClientIPField;
  if (wanted == kFieldNames[static_cast<std::size_t>(Field::kClientIp)]) return std::nullopt;
  for (std::size_t i = 0; i < reading.columns.size(); ++i) {
    if (text::EqualsIgnoringCase(reading.columns[i].name, wanted)) return i;
  }
  return std::nullopt;
}

// What follows from the field list and the settings.
void PrepareColumns() {
  reading.visitor_column = VisitorColumn();
  reading.regular = reading.visitor_column ? RegularColumns() : RegularColumns(reading.columns);
}

}  // namespace

void PrepareFields() {
  PrepareColumns();
  reading.has_rules = false;
  reading.rules_understood = true;
  for (std::size_t i = 0; i < kFieldNames.size(); ++i) {
    reading.rules[i] = mdlFilters::FieldRules(kFieldNames[i]);
    reading.has_rules = reading.has_rules || !reading.rules[i].empty();
    reading.rules_understood = reading.rules_understood && reading.rules[i].Understood();
  }
}

std::string_view NextToken() {
  const char* const data = reading.line.text.data();
  const char* const end = data + reading.line.text.size();
  const char* begin = data + reading.cursor;
  while (begin != end && *begin == ' ') ++begin;
  const char* const stop = FindBlank(begin, end);
  reading.cursor = static_cast<std::size_t>(stop - data);
  if (reading.cursor >= kLastCursor) stats::ThrowOverflow();
  return {begin, static_cast<std::size_t>(stop - begin)};
}

void ReadHeaderLine() {
  if (!BeginsWith(reading.line.text, kFieldsDirective)) return;
  reading.columns.clear();
  reading.cursor = kFieldsDirective.size();
  try {
    for (std::string_view name = NextToken(); !name.empty(); name = NextToken()) {
      reading.columns.push_back({FieldOf(name), std::string(name)});
    }
  } catch (const stats::Fault&) {
    // The names before the end of the cursor's range form the list.
  }
  PrepareColumns();
}

void ParseRecord(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year) {
  RecordReader reader({firstDay, lastDay, month, year});
  const bool diagnostic = mdlConfigs::Run().LogTranslations;
  if (reading.rules_understood && !diagnostic && reader.InsertRegular()) return;
  try {
    if (!reader.ReadFields()) return;
    if (!reader.skip()) {
      reader.Insert();
      // The messages of a hit stand before those of the next line.
      if (diagnostic) AddWaitingRecords();
    } else if (diagnostic) {
      mdlConfigs::LogInformation(": Skipping log record because of filter rule");
    }
  } catch (const stats::Fault& fault) {
    if (!diagnostic) return;
    mdlConfigs::LogWarning(std::string("Error processing field ")
                               .append(reader.step())
                               .append(" : ")
                               .append(fault.description()));
  }
}

void AddWaitingRecords() { reading.batch.Add(); }

}  // namespace mdlW3C
