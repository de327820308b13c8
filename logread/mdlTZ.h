// The offset of the local zone from UTC: split for the log reader, in minutes for the pages.
//
// No state. Only the standard bias counts, in summer too.
#ifndef HITWICK_LOGREAD_MDLTZ_H_
#define HITWICK_LOGREAD_MDLTZ_H_

#include <cstdint>

namespace mdlTZ {

// UTC = local time + offset. `hours` is the bias / 60 truncated toward zero, `minutes` the rest
// with the bias's sign (bias -330 gives -5 and -30).
void GetZoneOffset(std::int16_t& hours, std::int16_t& minutes);

// The bias in minutes, positive west of UTC.
std::int16_t GetZoneBiasMinutes();

}  // namespace mdlTZ

#endif  // HITWICK_LOGREAD_MDLTZ_H_
