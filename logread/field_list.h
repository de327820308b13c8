// The field list of a log and what can be told from it beforehand: at which columns of a regular
// line the fields stand. No state.
#ifndef HITWICK_LOGREAD_FIELD_LIST_H_
#define HITWICK_LOGREAD_FIELD_LIST_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "logread/line_reader.h"

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

// The log names of the fields, in the order of `Field`, without `kOther`.
extern const std::array<std::string_view, kFieldKinds - 1> kFieldNames;
Field FieldOf(std::string_view name);

// One name of a "#Fields:" line.
struct Column {
  Field field;
  std::string name;
};

// What a regular line is: the line of nearly every record, which can be read column by column
// without going through the steps that any other line needs. Nothing on it can fail and nothing
// has to be looked for:
//   - the list names "date" and, behind it, "time", and no field that is read twice;
//   - each name has its token on the line, one blank between two tokens and none elsewhere, and
//     the line is short enough for every token;
//   - hour and minute are two digits each, numbers are "-" or at most eight digits.
// The record parser adds: no filter rule that cannot be understood, no diagnostics.
class RegularColumns {
 public:
  RegularColumns() = default;
  explicit RegularColumns(const std::vector<Column>& columns);

  // Whether the list allows for regular lines / the line has the shape of one.
  bool possible() const { return count_ != 0; }
  bool Fit(const logread::Line& line) const {
    return line.fields == count_ && count_ != 0 && line.text.size() < kLineLimit &&
           !line.Field(count_ - 1).empty();
  }
  // The token of a field; empty when the list does not name it.
  std::string_view Token(const logread::Line& line, Field field) const {
    const std::size_t column = columns_[static_cast<std::size_t>(field)];
    return column == kNone ? std::string_view() : line.Field(column);
  }
  bool Has(Field field) const { return columns_[static_cast<std::size_t>(field)] != kNone; }
  // Whether a field that the list names stands before "time".
  bool PrecedesTime(Field field) const {
    return columns_[static_cast<std::size_t>(field)] <
           columns_[static_cast<std::size_t>(Field::kTime)];
  }

 private:
  static constexpr std::size_t kLineLimit = 32767;  // of the 16-bit cursor
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::size_t count_ = 0;  // columns; 0: no line is regular
  std::array<std::size_t, kFieldKinds> columns_{};
};

// The number that a token of a regular line holds: none ("-" or no token) or at most eight digits.
// False when it holds anything else. Eight bytes can be read at `token`, however short it is.
bool ReadPlainNumber(std::string_view token, std::int32_t* value);
// The hour and minute of a regular line's time, "hh:mm" and anything behind.
bool ReadPlainTime(std::string_view token, int* hour, int* minute);

}  // namespace mdlW3C

#endif  // HITWICK_LOGREAD_FIELD_LIST_H_
