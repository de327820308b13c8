// How long visits lasted, and where they began and ended.
//
// No state. Sections of the month page; each returns an error code.
#ifndef HITWICK_REPORT_VISIT_TABLES_H_
#define HITWICK_REPORT_VISIT_TABLES_H_

namespace report {

class MonthPage;

int WriteSessionBreakdown(MonthPage& month);
int WriteEntryAndExitPages(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_VISIT_TABLES_H_
