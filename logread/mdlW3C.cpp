#include "logread/mdlW3C.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "config/calendar.h"
#include "config/log_files.h"
#include "config/mdlConfigs.h"
#include "config/number_text.h"
#include "config/text.h"
#include "logread/line_reader.h"
#include "logread/log_input.h"
#include "logread/mdlTZ.h"
#include "logread/record_parser.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "stats/lost_counts.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"

namespace mdlW3C {
namespace {

constexpr std::string_view kPrefixes[] = {"ex", "u_ex"};
constexpr std::size_t kSuffix = 4;        // ".log"
constexpr std::size_t kDayAndSuffix = 6;  // two day digits and ".log"
constexpr calendar::Date kDateSerialZero = {1899, 12, 30};

struct PeriodArguments {
  std::int16_t firstDay, lastDay, month, year;
};

bool QuitRequested() { return mdlConfigs::Run().Ui.quit_requested; }

// The year in a log file's name. Up to 2000 the year number is taken as a date serial number and
// the two-digit year of that date is used; IIS logs of such years do not exist.
std::string YearDigits(int year) {
  if (year > 2000) return text::TwoDigits(year - 2000);
  return text::TwoDigits(calendar::AddDays(kDateSerialZero, year).year % 100);
}

std::string MonthDigits(int year, int month) { return YearDigits(year) + text::TwoDigits(month); }

// Reads one file that was found; false when the user asked to quit.
bool ProcessFile(const std::string& name, const PeriodArguments& period) {
  const std::string& folder = mdlConfigs::Run().Settings.LogDir;
  mdlConfigs::ShowStatus("Reading " + name);
  const std::string_view plain_name = log_files::PlainName(name);
  const std::string stem =
      platform::JoinPath(folder, plain_name.substr(0, plain_name.size() - kDayAndSuffix));
  ReadLogFile(platform::JoinPath(folder, name), period.firstDay, period.lastDay, period.month,
              period.year, stem);
  return !QuitRequested();
}

// The log files whose names begin with `stem`, a prefix and the digits of a month.
std::vector<std::string> FilesOfMonth(const std::string& stem) {
  return log_files::List(mdlConfigs::Run().Settings.LogDir, stem);
}

// The log file whose name is `stem`, a prefix and the digits of a day: one at most, of several
// spellings the first.
std::vector<std::string> FileOfDay(const std::string& stem) {
  std::vector<std::string> names = FilesOfMonth(stem);
  std::erase_if(names, [&](const std::string& name) {
    return log_files::PlainName(name).size() != stem.size() + kSuffix;
  });
  if (names.size() > 1) names.resize(1);
  return names;
}

// Adds what `files_of` finds for each prefix and the digits.
template <class FilesOf>
void AddFiles(FilesOf files_of, const std::string& digits, std::vector<std::string>& names) {
  for (const std::string_view prefix : kPrefixes) {
    for (std::string& name : files_of(std::string(prefix) + digits)) {
      names.push_back(std::move(name));
    }
  }
}

void AddNeighbourDay(const calendar::Date& date, std::vector<std::string>& names) {
  AddFiles(FileOfDay, MonthDigits(date.year, date.month) + text::TwoDigits(date.day), names);
}

// The names of the files to read, in order. East of UTC the month begins in the log of the day
// before it, elsewhere it ends in the log of the day after it.
std::vector<std::string> FilesToRead(const PeriodArguments& period) {
  const ReadingState& reading = Reading();
  const bool east = reading.offset_hours < 0 || reading.offset_minutes < 0;
  std::vector<std::string> names;
  if (east) AddNeighbourDay(calendar::AddDays({period.year, period.month, 1}, -1), names);
  AddFiles(FilesOfMonth, MonthDigits(period.year, period.month), names);
  if (!east) AddNeighbourDay(calendar::AddDays({period.year, period.month + 1, 1}, 0), names);
  return names;
}

// False when the user asked to quit.
bool ReadAllFiles(const PeriodArguments& period) {
  const std::vector<std::string> names = FilesToRead(period);
  log_input::BeginMonth(mdlConfigs::Run().Settings.LogDir, names);
  return std::ranges::all_of(
      names, [&period](const std::string& name) { return ProcessFile(name, period); });
}

void SetZoneOffset() {
  ReadingState& reading = Reading();
  reading.offset_hours = reading.offset_minutes = 0;
  if (!mdlConfigs::Run().Settings.UseUTC) {
    mdlTZ::GetZoneOffset(reading.offset_hours, reading.offset_minutes);
  }
}

stats::HistoryRow MonthTotals(const PeriodArguments& period) {
  const mdlMonth::MonthStats& month = mdlMonth::Month();
  stats::HistoryRow row;
  row.mon = period.month;
  row.yr = period.year;
  row.bytes = month.TotalBytes;
  row.hits = month.TotalHits;
  row.pages = month.TotalPages;
  row.upages = mdlMonth::TallyCount(month.SuccessUrls);
  row.responseTime = month.TotalTimeTaken;
  row.visitors = mdlMonth::TallyCount(month.ClientAddresses);
  row.visits = mdlVisit::AllVisitLengths()[0].Visits;
  row.files = month.TotalFiles;
  return row;
}

// A number in a file's name; 0 where other characters stand in its place.
int NamedNumber(std::string_view text) { return text::ToInt16(text).value_or(0); }

std::string_view LastCharacters(std::string_view text, std::size_t count) {
  return text.size() > count ? text.substr(text.size() - count) : text;
}

calendar::Date DateInName(std::string_view path, std::string_view stem) {
  const std::string_view year_and_month = LastCharacters(stem, 4);
  calendar::Date date;
  date.year = NamedNumber("20" + std::string(year_and_month.substr(0, 2)));
  date.month = NamedNumber(LastCharacters(stem, 2));
  date.day = stem.size() < path.size() ? NamedNumber(path.substr(stem.size(), 2)) : 0;
  return date;
}

void LogFileError(std::string_view what, const std::string& path, int error) {
  if (!mdlConfigs::Run().LogTranslations) return;
  mdlConfigs::LogWarning(std::string(what).append(path) + " : " +
                         mod_systemInfo::GetErrorText(error));
}

void ReadLine(const PeriodArguments& period) {
  ReadingState& reading = Reading();
  if (reading.line.text.empty()) return;
  reading.cursor = 0;
  if (reading.line.text.front() == '#') {
    ReadHeaderLine();
  } else {
    ParseRecord(period.firstDay, period.lastDay, period.month, period.year);
  }
}

// There is no use in reading on once memory has run out.
bool HasToStop() { return QuitRequested() || stats::CountsAreLost(); }

void ReadLines(logread::LineReader& lines, const PeriodArguments& period) {
  while (!HasToStop() && lines.NextBlock()) {
    while (!HasToStop() && lines.Next(&Reading().line)) ReadLine(period);
    AddWaitingRecords();
    mdlConfigs::StayResponsive();
  }
}

}  // namespace

void ReadMonthLogs(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                   std::int16_t year, const HistorySink& add_history_row) {
  const PeriodArguments period = {firstDay, lastDay, month, year};
  mdlMonth::InitMonth();
  SetZoneOffset();
  mdlVisit::InitVisits();
  if (!ReadAllFiles(period)) return;
  mdlVisit::CloseAllVisits();
  if (!stats::CountsAreLost()) add_history_row(MonthTotals(period));
}

void ReadLogFile(const std::string& path, std::int16_t firstDay, std::int16_t lastDay,
                 std::int16_t month, std::int16_t year, const std::string& stem) {
  static logread::LineReader lines;  // its buffer serves every file
  Reading().file_date = DateInName(path, stem);
  int error = 0;
  const std::unique_ptr<platform::InputFile> file = log_input::Open(path, &error);
  if (!file) return LogFileError("Error on open of  ", path, error);
  if (const auto& pump = mdlConfigs::Run().Ui.process_pending_events) pump();
  PrepareFields();
  lines.Start(*file);
  ReadLines(lines, {firstDay, lastDay, month, year});
  if (lines.error() != 0) LogFileError("Error during read of  ", path, lines.error());
}

const std::string& ServerName() { return Reading().server_name; }

void Reset() { Reading() = ReadingState(); }

}  // namespace mdlW3C
