#include "logread/mdlTZ.h"

#include "platform/clock.h"

namespace mdlTZ {

void GetZoneOffset(std::int16_t& hours, std::int16_t& minutes) {
  const std::int16_t bias = GetZoneBiasMinutes();
  hours = static_cast<std::int16_t>(bias / 60);
  minutes = static_cast<std::int16_t>(bias - hours * 60);
}

std::int16_t GetZoneBiasMinutes() { return platform::TheClock().ZoneBiasMinutes(); }

}  // namespace mdlTZ
