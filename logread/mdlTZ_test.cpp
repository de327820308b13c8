#include "logread/mdlTZ.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

#include "platform/service.h"
#include "tests/fakes/fake_clock.h"

namespace {

std::pair<int, int> OffsetOf(std::int16_t bias) {
  fakes::FakeClock clock;
  clock.bias_minutes = bias;
  platform::Replacement<platform::Clock> replacement(clock);
  std::int16_t hours = 99;
  std::int16_t minutes = 99;
  mdlTZ::GetZoneOffset(hours, minutes);
  return {hours, minutes};
}

TEST(GetZoneOffset, WholeHours) {
  EXPECT_EQ(OffsetOf(0), std::pair(0, 0));
  EXPECT_EQ(OffsetOf(300), std::pair(5, 0));
  EXPECT_EQ(OffsetOf(-60), std::pair(-1, 0));
  EXPECT_EQ(OffsetOf(720), std::pair(12, 0));
  EXPECT_EQ(OffsetOf(-840), std::pair(-14, 0));
}

TEST(GetZoneOffset, MinutesCarryTheSignOfTheBias) {
  EXPECT_EQ(OffsetOf(-330), std::pair(-5, -30));
  EXPECT_EQ(OffsetOf(-345), std::pair(-5, -45));
  EXPECT_EQ(OffsetOf(210), std::pair(3, 30));
}

TEST(GetZoneOffset, LessThanAnHourHasNoHours) {
  EXPECT_EQ(OffsetOf(30), std::pair(0, 30));
  EXPECT_EQ(OffsetOf(-30), std::pair(0, -30));
  EXPECT_EQ(OffsetOf(-59), std::pair(0, -59));
}

TEST(GetZoneBiasMinutes, IsTheBias) {
  for (const int bias : {0, 300, -330, 30, -840}) {
    fakes::FakeClock clock;
    clock.bias_minutes = static_cast<std::int16_t>(bias);
    platform::Replacement<platform::Clock> replacement(clock);
    EXPECT_EQ(mdlTZ::GetZoneBiasMinutes(), bias);
  }
}

}  // namespace
