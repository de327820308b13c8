// The ranked tables that list one tally each: what was fetched, by whom, and where from.
//
// No state. Sections of the month page; each returns an error code. A table that ranks a tally of
// the month by another quantity leaves it in that order.
#ifndef HITWICK_REPORT_RANKED_TABLES_H_
#define HITWICK_REPORT_RANKED_TABLES_H_

namespace report {

class MonthPage;

int WriteUrlsByHits(MonthPage& month);
int WriteUrlsByKBytes(MonthPage& month);
int WritePagesByHits(MonthPage& month);
int WriteSlowestPages(MonthPage& month);
int WriteFileTypesByHits(MonthPage& month);
int WriteFileTypesByKBytes(MonthPage& month);
// Looks up the host names of the listed addresses and counts them for the table of countries.
int WriteReaders(MonthPage& month);
int WriteReferrers(MonthPage& month);
int WriteReferringSites(MonthPage& month);
int WriteQueries(MonthPage& month);
int WriteBrokenLinks(MonthPage& month);
int WriteBrokenReferrers(MonthPage& month);
// Only with the setting that shows user names.
int WriteUserNames(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_RANKED_TABLES_H_
