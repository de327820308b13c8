// Grouping the readers' host names by country or domain and by company, and the table of both.
//
// State: none of its own; the month page carries the tallies from the table of readers, which
// feeds them, to the table of countries.
#ifndef HITWICK_REPORT_DOMAINS_H_
#define HITWICK_REPORT_DOMAINS_H_

#include <cstdint>
#include <string_view>

#include "stats/tally.h"

namespace report {

class MonthPage;

// Metrics are hits.
struct DomainTallies {
  stats::TallyTable countries;
  stats::TallyTable companies;
  double attributed_hits = 0;  // hits of the addresses that counted for a country
};

// Counts a reader's host name, as the resolver gave it, with the reader's hits. A name without a
// usable top-level label counts nowhere.
void AddHost(DomainTallies& domains, std::string_view host, std::int32_t hits);

// "Top Countries, Domains, Companies, ISPs". Returns an error code.
int WriteDomains(MonthPage& month);

}  // namespace report

#endif  // HITWICK_REPORT_DOMAINS_H_
