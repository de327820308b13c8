// The month page while it is being written: where it goes, what it covers, and what its sections
// hand on to one another.
//
// One value per page, made by `mdlGenHTML::WriteMonthPage` and passed through the sections. A
// section returns 0, or the system's error code when its CSV companion cannot be put in place: the
// page then ends there.
#ifndef HITWICK_REPORT_MONTH_PAGE_H_
#define HITWICK_REPORT_MONTH_PAGE_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "report/csv.h"
#include "report/domains.h"
#include "report/period.h"
#include "stats/tally.h"

namespace report {

// What the user agents of the month that are robots have caused.
struct RobotTraffic {
  double hits = 0;
  double bytes = 0;
};

class MonthPage {
 public:
  // `page` outlives this object; `base_path` as `WriteMonthPage` takes it.
  MonthPage(std::string& page, std::string base_path, const Period& period);

  // The rows of a table that the list size leaves, of `entries`.
  std::int32_t Rows(std::int32_t entries) const;

  // The link to a table's CSV companion; empty when none is written.
  std::string DownloadLink(std::string_view csv_name) const;
  // Puts a companion in place; does nothing when CSV output is off. Returns an error code.
  int SaveCsv(std::string_view csv_name, const csv::Table& table) const;

  std::string& page;
  const Period period;
  const std::string month_name;      // in the user's language
  const std::string month_and_year;  // "January 2026"
  const std::string host;            // this computer's name, escaped
  const int days;                    // that averages are taken over
  const double total_hits;           // what percentages refer to
  const double total_bytes;

  DomainTallies domains;  // fed by the table of readers as it looks up their names
  RobotTraffic robots;

 private:
  const std::string base_path_;
  const std::int32_t list_size_;
  const bool with_csv_;
};

}  // namespace report

#endif  // HITWICK_REPORT_MONTH_PAGE_H_
