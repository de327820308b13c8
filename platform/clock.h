// The present date and time, and the local zone's offset from UTC.
#ifndef HITWICK_PLATFORM_CLOCK_H_
#define HITWICK_PLATFORM_CLOCK_H_

#include <cstdint>

namespace platform {

// A date and time as a wall clock shows it; no zone is attached.
struct DateTime {
  int year = 0;    // four digits
  int month = 0;   // 1..12
  int day = 0;     // 1..31
  int hour = 0;    // 0..23
  int minute = 0;  // 0..59
  int second = 0;  // 0..60
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual DateTime UtcNow() = 0;
  // The wall clock of the zone that the system (on Linux `TZ`, if set) names, daylight saving
  // included.
  virtual DateTime LocalNow() = 0;
  // The zone's bias in minutes: UTC = local standard time + bias, so zones west of UTC are
  // positive. Daylight saving is ignored, in summer too.
  virtual std::int16_t ZoneBiasMinutes() = 0;
};

Clock& TheClock();

}  // namespace platform

#endif  // HITWICK_PLATFORM_CLOCK_H_
