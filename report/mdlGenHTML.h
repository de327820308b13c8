// The month page: frame, summary sections, charts and ranked tables, with their CSV companions.
//
// No state. Called by the run driver after a month's logs have been read; reads the month's
// statistics, the visits, the settings and the filters. What its sections share is `MonthPage`.
#ifndef HITWICK_REPORT_MDLGENHTML_H_
#define HITWICK_REPORT_MDLGENHTML_H_

#include <string>

#include "report/period.h"

namespace mdlGenHTML {

using report::Period;

// The outcome of writing a page. A page that an error cut short is still worth keeping.
struct WriteResult {
  bool ok = true;
  std::string error;  // the system's sentence, when not ok
};

// Appends the whole page to `page`. `base_path` is the page's path without ".htm"; the CSV files
// stand beside it. A CSV file that cannot be created ends the page after the table it mirrors.
WriteResult WriteMonthPage(std::string& page, const std::string& base_path, const Period& period,
                           bool onDemand);

}  // namespace mdlGenHTML

#endif  // HITWICK_REPORT_MDLGENHTML_H_
