// A clock that stands where the test has put it.
#ifndef HITWICK_TESTS_FAKES_FAKE_CLOCK_H_
#define HITWICK_TESTS_FAKES_FAKE_CLOCK_H_

#include <cstdint>

#include "platform/clock.h"

namespace fakes {

class FakeClock : public platform::Clock {
 public:
  FakeClock() = default;
  // The same date and time in both zones, bias 0.
  explicit FakeClock(const platform::DateTime& now) : utc(now), local(now) {}

  platform::DateTime UtcNow() override { return utc; }
  platform::DateTime LocalNow() override { return local; }
  std::int16_t ZoneBiasMinutes() override { return bias_minutes; }

  platform::DateTime utc{2026, 1, 31, 2, 0, 0};
  platform::DateTime local{2026, 1, 31, 2, 0, 0};
  std::int16_t bias_minutes = 0;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_CLOCK_H_
