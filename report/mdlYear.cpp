#include "report/mdlYear.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "report/numbers.h"

namespace mdlYear {
namespace {

constexpr std::size_t kFields = 10;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kAnnualHeader =
    "mon, yr, bytes, hits, pages, upages, responseTime, visitors, visits, files";

// A larger figure is none that a month could have.
constexpr double kMostFigure = 1e15;

using Slots = std::array<HistoryRow, 12>;

struct State {
  Slots slots;
  Slots loaded;                     // as they were before the first month
  std::array<bool, 12> reported{};  // the months whose rows are this run's own
  bool saved = false;
};

State& TheState() {
  static State state;
  return state;
}

std::size_t IndexOf(int month) { return static_cast<std::size_t>(month) - 1; }

std::string UsageFile(std::string_view name) {
  return platform::JoinPath(mdlConfigs::Run().Settings.UsageDir, name);
}

// A decimal number, with or without sign, fraction and exponent, and nothing else; a figure that a
// history can hold.
std::optional<double> ParseNumber(std::string_view field) {
  std::string_view number = text::Trimmed(field, " \t\r");
  if (number.size() > 1 && number.front() == '+' && number[1] != '-') number.remove_prefix(1);
  const char* const end = number.data() + number.size();
  double value = 0;
  const auto [stop, failure] = std::from_chars(number.data(), end, value);
  const bool complete = failure == std::errc() && stop == end;
  if (!complete || !(value >= 0 && value <= kMostFigure)) return std::nullopt;
  return value + 0.0;  // no minus before a zero
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
  const std::optional<std::int16_t> mon = text::ToInt16(values[0]);
  const std::optional<std::int16_t> yr = text::ToInt16(values[1]);
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

// A reported row as the file can hold it, so that its line is read again.
HistoryRow Storable(HistoryRow row) {
  for (double* figure : {&row.bytes, &row.hits, &row.pages, &row.upages, &row.responseTime,
                         &row.visitors, &row.visits, &row.files}) {
    *figure = std::min(*figure, kMostFigure);
  }
  return row;
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

bool IsWithinYear(const HistoryRow& row) {
  if (row.mon < 1 || row.mon > 12) return false;
  const platform::DateTime today = platform::TheClock().LocalNow();
  return row.yr == today.year || (row.yr == today.year - 1 && row.mon > today.month);
}

// "History.txt" as it stands now.
struct HistoryFile {
  int error = 0;  // of the reading; a file that is not there is an empty one
  std::string content;
  Slots slots;
  int broken_line = 0;  // the number of the line at which the loading stopped with text left
};

// Fills the slots from the lines up to the first that is no row.
void ReadLines(HistoryFile* file) {
  std::string_view rest = file->content;
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t end = rest.find('\n');
    // What stands before a read error may be the first half of a number.
    if (end == std::string_view::npos && file->error != 0) return;
    const std::optional<HistoryRow> row = ParseLine(rest.substr(0, end));
    if (!row) {
      const bool text_left = rest.find_first_not_of(" \t\r\n") != std::string_view::npos;
      file->broken_line = text_left ? number : 0;
      return;
    }
    if (IsWithinYear(*row)) file->slots[IndexOf(row->mon)] = *row;
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
}

HistoryFile ReadHistoryFile() {
  HistoryFile file;
  file.error = platform::ReadWholeFile(UsageFile("History.txt"), &file.content);
  if (platform::MeansNotThere(file.error)) file.error = 0;
  ReadLines(&file);
  return file;
}

// Keeps a file of which a part would be lost, unless an older one is kept already. An error code.
int KeepBrokenFile(const HistoryFile& file) {
  if (file.broken_line == 0) return 0;
  const std::string old_path = UsageFile("History.old");
  int error = 0;
  platform::TheFileSystem().OpenForReading(old_path, &error);
  const bool is_first = platform::MeansNotThere(error);
  error = is_first ? platform::TheFileSystem().ReplaceFile(old_path, file.content) : 0;
  if (error != 0) return error;
  mdlConfigs::LogWarning(": Line " + std::to_string(file.broken_line) + " of " +
                         UsageFile("History.txt") +
                         " is no row of the history; it and the lines below it are dropped. " +
                         (is_first ? "The file as it was is kept as " + old_path
                                   : old_path + " is there already and stays as it is"));
  return 0;
}

// Puts this run's rows among those of the file. Where another run has reported the same month of a
// later year meanwhile, that one's row stays.
void MergeWith(const Slots& saved) {
  State& state = TheState();
  for (std::size_t i = 0; i < saved.size(); ++i) {
    const bool newer = saved[i].yr > state.slots[i].yr && saved[i].yr != state.loaded[i].yr;
    if (!state.reported[i] || newer) state.slots[i] = saved[i];
  }
}

// Returns an error code. The copy for spreadsheets is left alone when the history itself fails.
int WriteHistoryFiles() {
  platform::FileSystem& files = platform::TheFileSystem();
  const std::string lines = HistoryLines();
  const int error = files.ReplaceFile(UsageFile("History.txt"), lines);
  if (error != 0 || !mdlConfigs::Run().Settings.GenerateCSV) return error;
  return files.ReplaceFile(UsageFile("Annual.csv"),
                           std::string(kAnnualHeader).append(kLineEnd).append(lines));
}

// Returns an error code.
int MergeAndStore() {
  const HistoryFile file = ReadHistoryFile();
  if (file.error != 0) return file.error;
  MergeWith(file.slots);
  const int error = KeepBrokenFile(file);
  return error != 0 ? error : WriteHistoryFiles();
}

std::unique_ptr<platform::FolderLock> LockHistory(int* error) {
  return platform::TheFileSystem().LockFolder(mdlConfigs::Run().Settings.UsageDir,
                                              platform::kLockPatience, error);
}

void LogSavingError(int error) {
  mdlConfigs::LogWarning("Error saving past results " + UsageFile("History.txt") + " : " +
                         mod_systemInfo::GetErrorText(error));
}

}  // namespace

const HistoryRow& HistorySlot(int month) { return TheState().slots[IndexOf(month)]; }

void LoadHistory() {
  TheState() = {};
  TheState().slots = TheState().loaded = ReadHistoryFile().slots;
}

void AddHistoryRow(const HistoryRow& row) {
  if (!IsWithinYear(row)) return;
  State& state = TheState();
  state.slots[IndexOf(row.mon)] = Storable(row);
  state.reported[IndexOf(row.mon)] = true;
}

std::int16_t SaveHistory() {
  int error = 0;
  const std::unique_ptr<platform::FolderLock> lock = LockHistory(&error);
  if (lock != nullptr) error = MergeAndStore();
  TheState().saved = error == 0;
  if (error != 0) LogSavingError(error);
  return error == 0 ? 0 : 1;
}

std::unique_ptr<platform::FolderLock> HoldHistory() {
  if (!TheState().saved) return nullptr;
  int error = 0;
  std::unique_ptr<platform::FolderLock> lock = LockHistory(&error);
  if (lock == nullptr) {
    mdlConfigs::LogWarning(": Other runs may have changed the history since it was saved : " +
                           mod_systemInfo::GetErrorText(error));
    return nullptr;
  }
  const HistoryFile file = ReadHistoryFile();
  if (file.error == 0) TheState().slots = file.slots;
  return lock;
}

}  // namespace mdlYear
