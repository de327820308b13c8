// What the visitors used: browsers, operating systems and robots; and the one-row summary.
//
// No state. Sections of the month page; each returns an error code.
#ifndef HITWICK_REPORT_AGENT_TABLES_H_
#define HITWICK_REPORT_AGENT_TABLES_H_

namespace report {

class MonthPage;

// Classifies every user agent of the month: fills `Browsers` and `OperatingSystems` of the month's
// statistics, ranked by hits, and the page's robot traffic. Runs before the sections below.
void ClassifyAgents(MonthPage& month);

int WriteAgents(MonthPage& month);
int WriteBrowsersAndSystems(MonthPage& month);
int WriteRobots(MonthPage& month);
int WriteShortSummary(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_AGENT_TABLES_H_
