// The lines of a W3C log: header lines set the order of the fields, every other line is a record.
//
// State: `Reading()`, shared with the reading loop, which sets the line, the file's date and the
// zone offset and then calls one of the two line handlers.
#ifndef HITWICK_LOGREAD_RECORD_PARSER_H_
#define HITWICK_LOGREAD_RECORD_PARSER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/calendar.h"
#include "logread/field_list.h"
#include "logread/line_reader.h"
#include "logread/mdlFilters.h"
#include "logread/record_batch.h"

namespace mdlW3C {

struct ReadingState {
  logread::Line line;
  std::size_t cursor = 0;  // where the next token is looked for, 0-based
  calendar::Date file_date;
  std::int16_t offset_hours = 0;    // UTC = local + offset
  std::int16_t offset_minutes = 0;  // carries the same sign
  std::vector<Column> columns;      // of the last "#Fields:" line
  RegularColumns regular;           // the same for lines that need no general treatment
  // Of the field that the site names for the visitor's address; none when that is "c-ip" or when
  // the list does not have it.
  std::optional<std::size_t> visitor_column;
  std::array<mdlFilters::FieldRules, kFieldKinds> rules;
  bool has_rules = false;
  bool rules_understood = true;  // no rule's pattern is an error
  RecordBatch batch;
  std::string server_name;
};

ReadingState& Reading();

// Looks up which filter rules apply to which field and which column holds the visitor's address; to
// be called before the records of a file are parsed and after rules or settings have changed.
void PrepareFields();

// The next blank-separated token; empty at the end of the line. Throws `stats::Fault` when it
// would leave the (1-based, 16-bit) cursor above 32,767.
std::string_view NextToken();

// Handles a line that begins with "#": takes over the field list of a "#Fields:" line.
void ReadHeaderLine();

// Handles any other line: hands the record to the month's statistics unless it lies outside the
// period, is refused by a filter, is empty or cannot be read. Records are handed over in batches.
void ParseRecord(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year);

// Hands over the records that still wait; to be called before the block of their lines goes.
void AddWaitingRecords();

}  // namespace mdlW3C

#endif  // HITWICK_LOGREAD_RECORD_PARSER_H_
