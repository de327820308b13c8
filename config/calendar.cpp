#include "config/calendar.h"

namespace calendar {
namespace {

// Floor division, for dates before the epoch.
constexpr long FloorDiv(long a, long b) {
  return a / b - ((a % b != 0 && (a < 0) != (b < 0)) ? 1 : 0);
}

// Days from 1970-01-01 to the first of a month, months counted from March of year 0 so that the
// leap day ends a year.
long DaysToMonthStart(long year, int month) {
  const long y = month <= 2 ? year - 1 : year;
  const long era = FloorDiv(y, 400);
  const long year_of_era = y - era * 400;
  const long day_of_year = (153L * (month > 2 ? month - 3 : month + 9) + 2) / 5;
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year -
         719468;
}

}  // namespace

long DayNumber(const Date& date) {
  const long months = date.year * 12L + (date.month - 1);
  const long year = FloorDiv(months, 12);
  const int month = static_cast<int>(months - year * 12) + 1;
  return DaysToMonthStart(year, month) + date.day - 1;
}

Date DateOfDayNumber(long day_number) {
  const long z = day_number + 719468;
  const long era = FloorDiv(z, 146097);
  const long day_of_era = z - era * 146097;
  const long year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const long day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const long m = (5 * day_of_year + 2) / 153;
  Date date;
  date.day = static_cast<int>(day_of_year - (153 * m + 2) / 5 + 1);
  date.month = static_cast<int>(m < 10 ? m + 3 : m - 9);
  date.year = static_cast<int>(year_of_era + era * 400 + (date.month <= 2 ? 1 : 0));
  return date;
}

Date AddDays(const Date& date, int days) { return DateOfDayNumber(DayNumber(date) + days); }

int Weekday(const Date& date) {
  const long days = DayNumber(date) + 4;  // 1970-01-01 was a Thursday
  return static_cast<int>(days - FloorDiv(days, 7) * 7);
}

int ReportDaysOfMonth(int month, int year) {
  if (month == 2) return year % 4 == 0 ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

}  // namespace calendar
