#include "platform/clock.h"

#include <ctime>

#include "platform/service.h"

namespace platform {
namespace {

DateTime ToDateTime(const std::tm& time) {
  return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday,
          time.tm_hour,        time.tm_min,     time.tm_sec};
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

constexpr std::time_t kSecondsPerDay = 24 * 60 * 60;
constexpr int kDaysOfYear = 366;

// True when daylight saving is in force now or at some time within the next year.
bool ObservesDaylightSaving(std::time_t now) {
  for (int day = 0; day <= kDaysOfYear; ++day) {
    if (LocalTime(now + day * kSecondsPerDay).tm_isdst > 0) return true;
  }
  return false;
}

// The smallest offset from UTC, in seconds, within a year of `now`. That is winter's, also where
// the zone database counts winter as the exception (Europe/Dublin).
long SmallestOffset(std::time_t now) {
  long smallest = LocalTime(now).tm_gmtoff;
  for (int day = -kDaysOfYear; day <= kDaysOfYear; ++day) {
    const long offset = LocalTime(now + day * kSecondsPerDay).tm_gmtoff;
    if (offset < smallest) smallest = offset;
  }
  return smallest;
}

class SystemClock : public Clock {
 public:
  DateTime UtcNow() override {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    return ToDateTime(utc);
  }

  DateTime LocalNow() override {
    tzset();
    return ToDateTime(LocalTime(std::time(nullptr)));
  }

  std::int16_t ZoneBiasMinutes() override {
    tzset();
    const std::time_t now = std::time(nullptr);
    const long offset =
        ObservesDaylightSaving(now) ? SmallestOffset(now) : LocalTime(now).tm_gmtoff;
    return static_cast<std::int16_t>(-offset / 60);
  }
};

}  // namespace

Clock& TheClock() {
  static SystemClock system;
  return InUse<Clock>(system);
}

}  // namespace platform
