// The standard time of the local zone, worked out from what the C library tells of the zone.
//
// No state but the C library's own zone, which the caller has set with `tzset`. Linux only; called
// by the clock.
#ifndef HITWICK_PLATFORM_STANDARD_TIME_LINUX_H_
#define HITWICK_PLATFORM_STANDARD_TIME_LINUX_H_

#include <ctime>

namespace platform {

// The seconds by which the standard time in force at `now` stands before UTC.
//
// Where the zone database does not flag daylight saving that is the offset at `now`; where it
// does, that of the nearest time within a year which is not flagged. Some zones flag their winter
// instead (Dublin) or a month of the year (Casablanca): a flagged time that is behind the other
// one is the standard.
long StandardOffset(std::time_t now);

}  // namespace platform

#endif  // HITWICK_PLATFORM_STANDARD_TIME_LINUX_H_
