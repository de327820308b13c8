// Dates and times as the pages show them, and the number of days that a month is averaged over.
//
// No state. Called by both kinds of page; "now" is the platform's clock.
#ifndef HITWICK_REPORT_DATES_H_
#define HITWICK_REPORT_DATES_H_

#include <string>

namespace report {

// When browsers are to ask for the page anew: a day and ten minutes from now, in Greenwich time
// with English names: "Sun, 1 Feb 2026 02:10:00".
std::string ExpiryTime();

// Now by the UTC clock or the local one, month in the user's language: "31-Jan-2026 02:00".
std::string GenerationTime(bool utc);

// The days of a month that averages count: those up to and including today in the current month,
// else the month's length.
int DaysCounted(int month, int year);

}  // namespace report

#endif  // HITWICK_REPORT_DATES_H_
