// The month's totals, averages and maxima, and the counts per return code and per method.
//
// No state. The first section of the month page.
#ifndef HITWICK_REPORT_SUMMARY_TABLE_H_
#define HITWICK_REPORT_SUMMARY_TABLE_H_

namespace report {

class MonthPage;

// "Monthly statistics". Returns an error code.
int WriteSummary(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_SUMMARY_TABLE_H_
