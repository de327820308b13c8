#include "app/run_driver.h"

#include <new>
#include <string>
#include <string_view>

#include "config/mdlConfigs.h"
#include "logread/mdlW3C.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "report/mdlGenHTML.h"
#include "report/mdlYear.h"
#include "report/page_names.h"
#include "stats/lost_counts.h"
#include "stats/mdlDNS.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"

namespace mdlConfigs {
namespace {

bool all_written = true;
std::string last_page_written;

void ReportFailedPage(const std::string& path, const std::string& reason) {
  all_written = false;
  LogWarning("Error generating usage report " + path + " : " + reason);
}

// Puts a finished page in place; a page that an error cut short, too, for which `failure` is the
// reason and otherwise empty. The first failure is the one that is reported. 0, or 1.
std::int16_t StorePage(const std::string& path, const std::string& page, std::string failure) {
  const int error = platform::TheFileSystem().ReplaceFile(path, page);
  if (failure.empty() && error != 0) failure = mod_systemInfo::GetErrorText(error);
  last_page_written = failure.empty() ? path : std::string();
  if (failure.empty()) return 0;
  ReportFailedPage(path, failure);
  return 1;
}

// The base name of a month's page.
std::string ReportName(int month) {
  return Run().OnDemandMode ? Run().ReportName : report::MonthPageName(month);
}

bool IsFileOfReport(std::string_view name, const std::string& report) {
  return name == report + ".htm" || (name.starts_with(report + "-") && name.ends_with(".csv"));
}

// The files that runs of this kind write into the usage folder.
bool IsOwnFile(std::string_view name) {
  for (const char* file : {"History.txt", "History.old", "Annual.csv", "index.htm"}) {
    if (name == file) return true;
  }
  for (int month = 1; month <= 12; ++month) {
    if (IsFileOfReport(name, ReportName(month))) return true;
  }
  return false;
}

// The path of a month's page without ".htm".
std::string BasePath(int month) {
  return platform::JoinPath(Run().Settings.UsageDir, ReportName(month));
}

void ReadAndWriteMonth(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                       std::int16_t year) {
  mdlW3C::ReadMonthLogs(firstDay, lastDay, month, year, mdlYear::AddHistoryRow);
  // Half a month makes no page.
  if (Run().Ui.quit_requested || stats::CountsAreLost()) return;
  WriteMonthReport(firstDay, lastDay, month, year);
}

// A month for which the memory does not suffice leaves the old page as it is: the figures of a new
// one would be wrong. What it holds is given back first.
void GiveUpMonth(int month) {
  mdlMonth::InitMonth();
  mdlVisit::InitVisits();
  ReportFailedPage(BasePath(month) + ".htm", "Out of memory");
}

void ReportMonth(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year) {
  if (Run().Settings.LogFormat != "W3C") return;
  try {
    ReadAndWriteMonth(firstDay, lastDay, month, year);
  } catch (const std::bad_alloc&) {
    stats::NoteLostCounts();
  }
  if (stats::CountsAreLost()) GiveUpMonth(month);
}

void ShowMonth(const MonthBegun& begun) {
  if (Run().Ui.show_month) Run().Ui.show_month(begun);
}

void ShowMonthsDone(int done, int all) {
  if (Run().Ui.show_months_done) Run().Ui.show_months_done(done, all);
}

}  // namespace

std::int16_t RunPeriod(std::int16_t firstDay, std::int16_t lastDay, std::int16_t firstMonth,
                       std::int16_t lastMonth, std::int16_t firstYear, std::int16_t lastYear) {
  LogInformation(": Logfiles will be read from " + Run().Settings.LogDir);
  last_page_written.clear();
  mdlDNS::BeginRun();
  platform::TheFileSystem().RemoveLeftOvers(Run().Settings.UsageDir, IsOwnFile);
  mdlYear::LoadHistory();
  std::int16_t month = firstMonth;
  std::int16_t year = firstYear;
  const int all_months = (lastYear - firstYear) * 12 + lastMonth - firstMonth + 1;
  for (int months_done = 1;; ++months_done) {
    ShowMonth({.month = month, .year = year, .number = months_done, .all = all_months});
    ReportMonth(firstDay, lastDay, month, year);
    ShowMonthsDone(months_done, all_months);
    if (month == lastMonth && year == lastYear) break;
    if (month != 12) {
      ++month;
    } else {
      month = 1;
      ++year;
    }
    if (Run().Ui.process_pending_events) Run().Ui.process_pending_events();
    if (Run().Ui.quit_requested) break;
  }
  if (!Run().OnDemandMode && mdlYear::SaveHistory() != 0) all_written = false;
  return 0;
}

std::int16_t WriteMonthReport(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                              std::int16_t year) {
  const bool on_demand = Run().OnDemandMode;
  const std::string base_path = BasePath(month);
  const std::string path = base_path + ".htm";
  LogInformation(": month report created : " + path);
  ShowStatus("Formatting " + path);
  std::string page;
  const mdlGenHTML::WriteResult result = mdlGenHTML::WriteMonthPage(
      page, base_path, {.firstDay = firstDay, .lastDay = lastDay, .month = month, .year = year},
      on_demand);
  const std::int16_t status = StorePage(path, page, result.error);
  if (status == 0) ShowStatus("Finished report " + path);
  return status;
}

std::int16_t WriteLast12MonthsPage() {
  const std::string& folder = Run().Settings.UsageDir;
  LogInformation(": Usage reports will be created in " + folder);
  if (Run().OnDemandMode) return 0;
  const auto held = mdlYear::HoldHistory();
  std::string page;
  mdlYear::WriteLast12Months(page);
  return StorePage(platform::JoinPath(folder, "index.htm"), page, "");
}

bool AllPagesWritten() { return all_written; }

const std::string& LastPageWritten() { return last_page_written; }

void ResetPagesWritten() { all_written = true; }

}  // namespace mdlConfigs
