#include <windows.h>

#include "platform/clock.h"
#include "platform/service.h"

namespace platform {
namespace {

DateTime FromSystemTime(const SYSTEMTIME& time) {
  return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

class SystemClock : public Clock {
 public:
  DateTime UtcNow() override {
    SYSTEMTIME time = {};
    GetSystemTime(&time);
    return FromSystemTime(time);
  }

  DateTime LocalNow() override {
    SYSTEMTIME time = {};
    GetLocalTime(&time);
    return FromSystemTime(time);
  }

  std::int16_t ZoneBiasMinutes() override {
    // The result would only say whether daylight saving is in force, which does not count here.
    TIME_ZONE_INFORMATION zone = {};
    GetTimeZoneInformation(&zone);
    return static_cast<std::int16_t>(zone.Bias);
  }
};

}  // namespace

Clock& TheClock() {
  static SystemClock system;
  return InUse<Clock>(system);
}

}  // namespace platform
