#include "platform/clock.h"

#include <ctime>

#include "platform/service.h"
#include "platform/standard_time_linux.h"

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
    return static_cast<std::int16_t>(-StandardOffset(std::time(nullptr)) / 60);
  }
};

}  // namespace

Clock& TheClock() {
  static SystemClock system;
  return InUse<Clock>(system);
}

}  // namespace platform
