// The month page: frame, summary sections, charts and ranked tables, with their CSV companions.
//
// State: this computer's name, looked up once per run. Called by the run driver after a month's
// logs have been read; reads the month's statistics, the visits, the settings and the filters.
#ifndef HITWICK_REPORT_MDLGENHTML_H_
#define HITWICK_REPORT_MDLGENHTML_H_

#include <cstdint>
#include <string>

namespace mdlGenHTML {

struct Period {
  std::int16_t firstDay = 1;
  std::int16_t lastDay = 31;
  std::int16_t month = 1;  // 1..12
  std::int16_t year = 0;   // four digits
};

// The outcome of writing a page. A page that an error cut short is still worth keeping.
struct WriteResult {
  bool ok = true;
  std::string error;  // the system's sentence, when not ok
};

// Appends the whole page to `page`. `base_path` is the page's path without ".htm"; the CSV files
// stand beside it. A CSV file that cannot be created ends the page after the table it mirrors.
WriteResult WriteMonthPage(std::string& page, const std::string& base_path, const Period& period,
                           bool onDemand);

// This computer's name as both kinds of page show it (HTML-escaped), asked for once per run.
const std::string& HostName();

// Forgets the computer's name. For tests.
void Reset();

}  // namespace mdlGenHTML

#endif  // HITWICK_REPORT_MDLGENHTML_H_
