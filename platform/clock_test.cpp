#include "platform/clock.h"

#include <gtest/gtest.h>

#include <memory>

#include "platform/service.h"
#include "tests/fakes/fake_clock.h"

namespace platform {
namespace {

// What holds for every clock; the parameter tells whether a fake stands in.
class ClockTest : public testing::TestWithParam<bool> {
 protected:
  ClockTest() {
    if (GetParam()) replacement_ = std::make_unique<Replacement<Clock>>(fake_);
  }

 private:
  fakes::FakeClock fake_;
  std::unique_ptr<Replacement<Clock>> replacement_;
};

void ExpectPlausible(const DateTime& time) {
  EXPECT_GE(time.year, 2024);
  EXPECT_TRUE(time.month >= 1 && time.month <= 12) << time.month;
  EXPECT_TRUE(time.day >= 1 && time.day <= 31) << time.day;
  EXPECT_TRUE(time.hour >= 0 && time.hour <= 23) << time.hour;
  EXPECT_TRUE(time.minute >= 0 && time.minute <= 59) << time.minute;
  EXPECT_TRUE(time.second >= 0 && time.second <= 60) << time.second;
}

TEST_P(ClockTest, GivesPlausibleTimes) {
  ExpectPlausible(TheClock().UtcNow());
  ExpectPlausible(TheClock().LocalNow());
}

TEST_P(ClockTest, BiasIsThatOfAZoneOnEarth) {
  EXPECT_GE(TheClock().ZoneBiasMinutes(), -14 * 60);
  EXPECT_LE(TheClock().ZoneBiasMinutes(), 12 * 60);
}

INSTANTIATE_TEST_SUITE_P(FakeAndReal, ClockTest, testing::Values(true, false),
                         [](const auto& suite) { return suite.param ? "Fake" : "Real"; });

TEST(ReplacementTest, IsUndoneAtTheEndOfItsScopeAndNests) {
  fakes::FakeClock outer({2001, 2, 3, 4, 5, 6});
  fakes::FakeClock inner({2011, 2, 3, 4, 5, 6});
  const Replacement<Clock> outer_replacement(outer);
  {
    const Replacement<Clock> inner_replacement(inner);
    EXPECT_EQ(TheClock().UtcNow().year, 2011);
  }
  EXPECT_EQ(TheClock().UtcNow().year, 2001);
}

}  // namespace
}  // namespace platform
