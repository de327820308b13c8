#include "ui/on_demand.h"

#include <cstddef>
#include <cstdint>

#include "app/run_driver.h"
#include "config/mdlConfigs.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/mod_systemInfo.h"

namespace ui::on_demand {
namespace {

constexpr int kDays = 31;
constexpr int kMonths = 12;
constexpr int kYears = 5;
constexpr int kFirstYear = 1980;

// The mode of a report on demand, for as long as one is built.
class OnDemandMode {
 public:
  OnDemandMode() { mdlConfigs::Run().OnDemandMode = true; }
  ~OnDemandMode() { mdlConfigs::Run().OnDemandMode = false; }
  OnDemandMode(const OnDemandMode&) = delete;
  OnDemandMode& operator=(const OnDemandMode&) = delete;
};

// The choice as numbers: what the user sees, not the places in the lists.
struct Period {
  int from_day = 0;
  int to_day = 0;
  int month = 0;
  int year = 0;  // 0: none selected
};

Period PeriodOf(const Selection& choice, const std::vector<YearEntry>& year_entries) {
  Period period = {choice.from_day + 1, choice.to_day + 1, choice.month + 1, 0};
  const auto year = static_cast<std::size_t>(choice.year);
  if (choice.year >= 0 && year < year_entries.size()) period.year = year_entries[year].year;
  return period;
}

// What is wrong with a choice; empty when nothing is.
std::string Complaint(const Period& period) {
  if (period.from_day > period.to_day || period.from_day < 1 || period.to_day > kDays) {
    return "Invalid day range.";
  }
  if (period.month < 1) return "Please select a month.";
  if (period.year < kFirstYear) return "Please select a year";
  return {};
}

void ReadAndReport(const Period& period) {
  const auto month = static_cast<std::int16_t>(period.month);
  const auto year = static_cast<std::int16_t>(period.year);
  mdlConfigs::RunPeriod(static_cast<std::int16_t>(period.from_day),
                        static_cast<std::int16_t>(period.to_day), month, month, year, year);
}

void BuildReport(const Period& period, const std::string& report_name) {
  mdlConfigs::Run().ReportName = report_name;
  ReadAndReport(period);
  const std::string page = mdlConfigs::LastPageWritten();
  if (!page.empty()) mod_systemInfo::OpenFile(page);
}

}  // namespace

std::vector<std::string> DayEntries() {
  std::vector<std::string> days;
  for (int day = 1; day <= kDays; ++day) days.push_back(std::to_string(day));
  return days;
}

std::vector<std::string> MonthEntries() {
  std::vector<std::string> months;
  for (int month = 1; month <= kMonths; ++month) months.push_back(platform::MonthName(month));
  return months;
}

std::vector<YearEntry> YearEntries() {
  const int this_year = platform::TheClock().LocalNow().year;
  std::vector<YearEntry> years;
  for (int year = this_year; year > this_year - kYears; --year) {
    years.push_back({std::to_string(year), year});
  }
  return years;
}

Selection FirstSelection() {
  const platform::DateTime today = platform::TheClock().LocalNow();
  return {0, today.day - 1, today.month - 1, 0};
}

std::string txtRepName_Change(std::string_view text) {
  std::string name(text);
  for (char& c : name) {
    if (std::string_view("\\/.'\"").find(c) != std::string_view::npos) c = '_';
  }
  return name;
}

void btnGoMonth_Click(const Selection& choice, const std::vector<YearEntry>& year_entries,
                      const std::string& report_name) {
  const OnDemandMode mode;
  const Period period = PeriodOf(choice, year_entries);
  const std::string complaint = Complaint(period);
  if (!complaint.empty()) {
    mdlConfigs::TellUser(complaint);
    return;
  }
  BuildReport(period, report_name);
}

bool IsValid(const Selection& choice, const std::vector<YearEntry>& year_entries) {
  return Complaint(PeriodOf(choice, year_entries)).empty();
}

}  // namespace ui::on_demand
