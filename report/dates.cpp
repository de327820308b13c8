#include "report/dates.h"

#include <cstddef>
#include <string_view>

#include "config/calendar.h"
#include "config/number_text.h"
#include "logread/mdlTZ.h"
#include "platform/clock.h"
#include "platform/environment.h"

namespace report {
namespace {

constexpr int kMinutesPerDay = 24 * 60;
constexpr std::string_view kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

}  // namespace

std::string ExpiryTime() {
  const platform::DateTime now = platform::TheClock().LocalNow();
  const int total = now.hour * 60 + now.minute + mdlTZ::GetZoneBiasMinutes() + 10;
  // The bias may lead out of the day in either direction.
  const int days = total >= 0 ? total / kMinutesPerDay : (total + 1) / kMinutesPerDay - 1;
  const int minutes = total - days * kMinutesPerDay;
  const calendar::Date date = calendar::AddDays({now.year, now.month, now.day}, 1 + days);
  const auto weekday = static_cast<std::size_t>(calendar::Weekday(date));
  return std::string(kWeekdays[weekday]) + ", " + std::to_string(date.day) + " " +
         std::string(platform::kEnglishMonths[static_cast<std::size_t>(date.month) - 1]) + " " +
         std::to_string(date.year) + " " + text::TwoDigits(minutes / 60) + ":" +
         text::TwoDigits(minutes % 60) + ":" + text::TwoDigits(now.second);
}

std::string GenerationTime(bool utc) {
  platform::Clock& clock = platform::TheClock();
  const platform::DateTime now = utc ? clock.UtcNow() : clock.LocalNow();
  return std::to_string(now.day) + "-" + platform::MonthAbbreviation(now.month) + "-" +
         std::to_string(now.year) + " " + text::TwoDigits(now.hour) + ":" +
         text::TwoDigits(now.minute);
}

int DaysCounted(int month, int year) {
  const platform::DateTime today = platform::TheClock().LocalNow();
  if (month == today.month && year == today.year) return today.day;
  return calendar::ReportDaysOfMonth(month, year);
}

}  // namespace report
