// Calendar arithmetic: day counts, neighbouring dates and weekdays of the proleptic Gregorian
// calendar, and the report's own rule for the length of February.
#ifndef HITWICK_CONFIG_CALENDAR_H_
#define HITWICK_CONFIG_CALENDAR_H_

namespace calendar {

struct Date {
  int year = 0;
  int month = 0;  // 1..12 once normalised
  int day = 0;    // 1..31 once normalised
  bool operator==(const Date&) const = default;
};

// Days since 1970-01-01. A month outside 1..12 or a day outside the month is carried over as
// calendar arithmetic does (month 13 is January of the next year, day 0 the last of the month
// before).
long DayNumber(const Date& date);
Date DateOfDayNumber(long day_number);

// The real calendar date `days` after `date` (before it when negative).
Date AddDays(const Date& date, int days);

// 0 = Sunday .. 6 = Saturday, of the date that `date` normalises to.
int Weekday(const Date& date);

// The month's length as the reports count it: February has 29 days in every year divisible by 4,
// 1900 and 2100 included. `month` is 1..12.
int ReportDaysOfMonth(int month, int year);

}  // namespace calendar

#endif  // HITWICK_CONFIG_CALENDAR_H_
