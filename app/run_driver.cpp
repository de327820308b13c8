#include "app/run_driver.h"

#include <memory>
#include <string>

#include "config/mdlConfigs.h"
#include "logread/mdlW3C.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "report/mdlGenHTML.h"
#include "report/mdlYear.h"
#include "report/page_names.h"
#include "stats/mdlDNS.h"

namespace mdlConfigs {
namespace {

bool all_pages_written = true;
std::string last_page_written;

// A page being replaced: what was written is put in place even when an error cut it short; the
// old page stands when the new one cannot be stored in full.
class PageFile {
 public:
  explicit PageFile(std::string path) : path_(std::move(path)) {
    last_page_written.clear();
    int error = 0;
    output_ = platform::TheFileSystem().CreateOutput(path_, &error);
    if (!output_) Fail(mod_systemInfo::GetErrorText(error));
  }

  bool is_open() const { return output_ != nullptr; }

  void Store(const std::string& page) {
    int error = output_->Append(page);
    if (error == 0) error = output_->Commit();
    if (error != 0) Fail(mod_systemInfo::GetErrorText(error));
    if (!failed_) last_page_written = path_;
  }

  // The first failure is the one that is reported.
  void Fail(const std::string& reason) {
    if (failed_) return;
    failed_ = true;
    all_pages_written = false;
    LogWarning("Error generating usage report " + path_ + " : " + reason);
  }

  std::int16_t status() const { return failed_ ? 1 : 0; }

 private:
  const std::string path_;
  std::unique_ptr<platform::OutputFile> output_;
  bool failed_ = false;
};

void ReportMonth(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                 std::int16_t year) {
  if (Run().Settings.LogFormat != "W3C") return;
  mdlW3C::ReadMonthLogs(firstDay, lastDay, month, year, mdlYear::AddHistoryRow);
  if (Run().Ui.quit_requested) return;  // half a month makes no page
  WriteMonthReport(firstDay, lastDay, month, year);
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
  mdlYear::LoadHistory();
  std::int16_t month = firstMonth;
  std::int16_t year = firstYear;
  const int all_months = (lastYear - firstYear) * 12 + lastMonth - firstMonth + 1;
  for (int months_done = 1;; ++months_done) {
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
  if (!Run().OnDemandMode) mdlYear::SaveHistory();
  return 0;
}

std::int16_t WriteMonthReport(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                              std::int16_t year) {
  const bool on_demand = Run().OnDemandMode;
  const std::string name = on_demand ? Run().ReportName : report::MonthPageName(month);
  const std::string base_path = platform::JoinPath(Run().Settings.UsageDir, name);
  const std::string path = base_path + ".htm";
  LogInformation(": month report created : " + path);
  ShowStatus("Formatting " + path);
  PageFile file(path);
  if (!file.is_open()) return file.status();
  std::string page;
  const mdlGenHTML::WriteResult result = mdlGenHTML::WriteMonthPage(
      page, base_path, {.firstDay = firstDay, .lastDay = lastDay, .month = month, .year = year},
      on_demand);
  if (!result.ok) file.Fail(result.error);
  file.Store(page);
  if (file.status() == 0) ShowStatus("Finished report " + path);
  return file.status();
}

std::int16_t WriteLast12MonthsPage() {
  const std::string& folder = Run().Settings.UsageDir;
  LogInformation(": Usage reports will be created in " + folder);
  if (Run().OnDemandMode) return 0;
  PageFile file(platform::JoinPath(folder, "index.htm"));
  if (!file.is_open()) return file.status();
  std::string page;
  mdlYear::WriteLast12Months(page);
  file.Store(page);
  return file.status();
}

bool AllPagesWritten() { return all_pages_written; }

const std::string& LastPageWritten() { return last_page_written; }

void ResetPagesWritten() { all_pages_written = true; }

}  // namespace mdlConfigs
