// The lines of a W3C log: header lines set the order of the fields, every other line is a record.
//
// State: `Reading()`, shared with the reading loop, which sets the line, the file's date and the
// zone offset and then calls one of the two line handlers.
#ifndef HITWICK_LOGREAD_RECORD_PARSER_H_
#define HITWICK_LOGREAD_RECORD_PARSER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/calendar.h"
#include "logread/mdlFilters.h"

namespace mdlW3C {

// The fields that are read. Their log names compare exactly; any other field is skipped.
enum class Field : std::uint8_t {
  kDate,
  kTime,
  kClientIp,
  kMethod,
  kUriStem,
  kUriQuery,
  kStatus,
  kBytesSent,
  kBytesReceived,
  kTimeTaken,
  kUserAgent,
  kReferrer,
  kUserName,
  kHost,
  kComputerName,
  kOther
};
inline constexpr std::size_t kFieldKinds = static_cast<std::size_t>(Field::kOther) + 1;

// One name of a "#Fields:" line.
struct Column {
  Field field;
  std::string name;
};

struct ReadingState {
  std::string_view line;   // without its line end
  std::size_t cursor = 0;  // where the next token is looked for, 0-based
  calendar::Date file_date;
  std::int16_t offset_hours = 0;    // UTC = local + offset
  std::int16_t offset_minutes = 0;  // carries the same sign
  std::vector<Column> columns;      // of the last "#Fields:" line
  std::array<mdlFilters::FieldRules, kFieldKinds> rules;
  std::string server_name;
};

ReadingState& Reading();

// Looks up which filter rules apply to which field; to be called before records are parsed and
// after the rules have changed.
void PrepareFilters();

// The next blank-separated token; empty at the end of the line. Throws `stats::Fault` when it
// would leave the (1-based, 16-bit) cursor above 32,767.
std::string_view NextToken();

// Handles a line that begins with "#": takes over the field list of a "#Fields:" line.
void ReadHeaderLine();

// Handles any other line: hands the record to the month's statistics unless it lies outside the
// period, is refused by a filter, is empty or cannot be read.
void ParseRecord(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year);

}  // namespace mdlW3C

#endif  // HITWICK_LOGREAD_RECORD_PARSER_H_
