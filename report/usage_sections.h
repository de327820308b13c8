// Daily and hourly usage: a bar chart with its legend, and the figures as a table.
//
// No state. The second and third section of the month page.
#ifndef HITWICK_REPORT_USAGE_SECTIONS_H_
#define HITWICK_REPORT_USAGE_SECTIONS_H_

namespace report {

class MonthPage;

// Both return an error code.
int WriteDailyUsage(MonthPage& month);
int WriteHourlyUsage(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_USAGE_SECTIONS_H_
