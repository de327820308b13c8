#include "report/mdlYear.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "report/numbers.h"
#include "report/replace_file.h"

namespace mdlYear {
namespace {

constexpr std::size_t kFields = 10;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kAnnualHeader =
    "mon, yr, bytes, hits, pages, upages, responseTime, visitors, visits, files";

using Slots = std::array<HistoryRow, 12>;

Slots& TheSlots() {
  static Slots slots;
  return slots;
}

std::string UsageFile(std::string_view name) {
  return platform::JoinPath(mdlConfigs::Run().Settings.UsageDir, name);
}

// A decimal number, with or without sign, fraction and exponent, and nothing else.
std::optional<double> ParseNumber(std::string_view field) {
  std::string_view number = text::Trimmed(field, " \t\r");
  if (number.size() > 1 && number.front() == '+' && number[1] != '-') number.remove_prefix(1);
  const char* const end = number.data() + number.size();
  double value = 0;
  const auto [stop, failure] = std::from_chars(number.data(), end, value);
  const bool complete = failure == std::errc() && stop == end;
  if (!complete || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::int16_t> ToInt16(double value) {
  const double rounded = numbers::Round(value);
  if (rounded < std::numeric_limits<std::int16_t>::min() ||
      rounded > std::numeric_limits<std::int16_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int16_t>(rounded);
}

// The row of one line; nothing when the line is not a row of the history.
std::optional<HistoryRow> ParseLine(std::string_view line) {
  std::array<double, kFields> values;
  for (std::size_t i = 0; i < kFields; ++i) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos && i + 1 < kFields) return std::nullopt;
    const std::optional<double> value = ParseNumber(line.substr(0, comma));
    if (!value) return std::nullopt;
    values[i] = *value;
    line = comma == std::string_view::npos ? std::string_view() : line.substr(comma + 1);
  }
  const std::optional<std::int16_t> mon = ToInt16(values[0]);
  const std::optional<std::int16_t> yr = ToInt16(values[1]);
  if (!mon || !yr || *mon < 1 || *mon > 12) return std::nullopt;
  return HistoryRow{.mon = *mon,
                    .yr = *yr,
                    .bytes = values[2],
                    .hits = values[3],
                    .pages = values[4],
                    .upages = values[5],
                    .responseTime = values[6],
                    .visitors = values[7],
                    .visits = values[8],
                    .files = values[9]};
}

// All twelve slots, the month being the slot's number.
std::string HistoryLines() {
  std::string lines;
  for (int month = 1; month <= 12; ++month) {
    const HistoryRow& row = HistorySlot(month);
    lines += std::to_string(month);
    for (const double value : {static_cast<double>(row.yr), row.bytes, row.hits, row.pages,
                               row.upages, row.responseTime, row.visitors, row.visits, row.files}) {
      lines += "," + numbers::Plain(value);
    }
    lines += kLineEnd;
  }
  return lines;
}

// Returns an error code. The copy for spreadsheets is left alone when the history itself fails.
int WriteHistoryFiles() {
  const std::string lines = HistoryLines();
  const int error = report::ReplaceFile(UsageFile("History.txt"), lines);
  if (error != 0 || !mdlConfigs::Run().Settings.GenerateCSV) return error;
  return report::ReplaceFile(UsageFile("Annual.csv"),
                             std::string(kAnnualHeader).append(kLineEnd).append(lines));
}

}  // namespace

const HistoryRow& HistorySlot(int month) { return TheSlots()[static_cast<std::size_t>(month) - 1]; }

void LoadHistory() {
  TheSlots() = {};
  std::string content;
  const int error = platform::ReadWholeFile(UsageFile("History.txt"), &content);
  std::string_view rest = content;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    // What stands before a read error may be the first half of a number.
    if (end == std::string_view::npos && error != 0) return;
    const std::optional<HistoryRow> row = ParseLine(rest.substr(0, end));
    if (!row) return;
    AddHistoryRow(*row);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
}

void AddHistoryRow(const HistoryRow& row) {
  if (row.mon < 1 || row.mon > 12) return;
  const platform::DateTime today = platform::TheClock().LocalNow();
  const bool within_year =
      row.yr == today.year || (row.yr == today.year - 1 && row.mon > today.month);
  if (within_year) TheSlots()[static_cast<std::size_t>(row.mon) - 1] = row;
}

void SaveHistory() {
  const int error = WriteHistoryFiles();
  if (error == 0) return;
  mdlConfigs::LogWarning("Error saving past results " + UsageFile("History.txt") + " : " +
                         mod_systemInfo::GetErrorText(error));
}

}  // namespace mdlYear
