// What the on-demand window decides: the entries of its lists, what is selected first, the report's
// name, the checks of the choice, and the building of the report.
//
// State: `OnDemandMode` and `ReportName` of `mdlConfigs::Run()`, set while a report is built and
// cleared on every way out. Called by `frmOnDemand`.
#ifndef HITWICK_UI_ON_DEMAND_H_
#define HITWICK_UI_ON_DEMAND_H_

#include <string>
#include <string_view>
#include <vector>

namespace ui::on_demand {

inline constexpr int kNoSelection = -1;

// "1" to "31": `lstFromDay` and `lstToDay`.
std::vector<std::string> DayEntries();
// The twelve full month names of the user's locale.
std::vector<std::string> MonthEntries();
// This year and the four before it; `year` is the entry's item data.
struct YearEntry {
  std::string text;
  int year = 0;
};
std::vector<YearEntry> YearEntries();

// The selected entry of each list, 0-based; kNoSelection when none is.
struct Selection {
  int from_day = kNoSelection;
  int to_day = kNoSelection;
  int month = kNoSelection;
  int year = kNoSelection;
};
// Day 1, today's day, the current month, this year.
Selection FirstSelection();

// What `txtRepName` is to hold instead of `text`: each of \ / . ' " replaced by "_".
std::string txtRepName_Change(std::string_view text);

// Checks the choice and builds the report; a choice that cannot be used is told in a box. Opens
// the page when it was written in full, and only then. `year` of the choice indexes
// `year_entries`.
void btnGoMonth_Click(const Selection& choice, const std::vector<YearEntry>& year_entries,
                      const std::string& report_name);

// True when `btnGoMonth_Click` would build a report; shows nothing. For the window, which shows
// progress only then.
bool IsValid(const Selection& choice, const std::vector<YearEntry>& year_entries);

}  // namespace ui::on_demand

#endif  // HITWICK_UI_ON_DEMAND_H_
