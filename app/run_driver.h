// The run driver: walks a range of months, reads each month's logs, writes its page and finally
// the last-12-months page.
//
// State: whether every file of this run could be written. Called by start-up and by the windows.
#ifndef HITWICK_APP_RUN_DRIVER_H_
#define HITWICK_APP_RUN_DRIVER_H_

#include <cstdint>
#include <string>

namespace mdlConfigs {

// Reads and reports every month from (firstMonth, firstYear) to (lastMonth, lastYear) inclusive,
// restricted to days firstDay..lastDay of each, and saves the history unless on demand. Months are
// 1..12, years four digits. Always 0.
// When quitting is asked for, the month being read gets no page and later ones are left alone; the
// history of the months before is kept.
std::int16_t RunPeriod(std::int16_t firstDay, std::int16_t lastDay, std::int16_t firstMonth,
                       std::int16_t lastMonth, std::int16_t firstYear, std::int16_t lastYear);

// Creates one month page. 0, or 1 when it could not be written (logged).
std::int16_t WriteMonthReport(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                              std::int16_t year);

// Creates "index.htm"; on demand nothing is written. 0, or 1 when it could not be written.
std::int16_t WriteLast12MonthsPage();

// False once a page, the history or its copy could not be written, since the start or the last
// reset.
bool AllPagesWritten();
void ResetPagesWritten();

// The path of the page written last, if `RunPeriod` or one of those after it has put it in place
// in full; empty when that failed, or when nothing has been written since `RunPeriod` began.
const std::string& LastPageWritten();

}  // namespace mdlConfigs

#endif  // HITWICK_APP_RUN_DRIVER_H_
