#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "platform/clock.h"
#include "platform/standard_time_linux.h"

namespace platform {
namespace {

class LinuxClockTest : public testing::Test {
 protected:
  ~LinuxClockTest() override { SetZone(nullptr); }

  static void SetZone(const char* zone) {
    if (zone == nullptr) {
      unsetenv("TZ");
    } else {
      setenv("TZ", zone, 1);
    }
    tzset();
  }
  static int BiasOf(const char* zone) {
    SetZone(zone);
    return TheClock().ZoneBiasMinutes();
  }
  static int BiasOfNamedZone(const std::string& zone) { return BiasOf(zone.c_str()); }
  static bool HasZones() { return std::filesystem::exists("/usr/share/zoneinfo/Europe/Dublin"); }
};

TEST_F(LinuxClockTest, BiasIsPositiveWestOfGreenwich) {
  EXPECT_EQ(BiasOf("UTC0"), 0);
  EXPECT_EQ(BiasOf("<-03>3"), 180);
  EXPECT_EQ(BiasOf("<+0530>-5:30"), -330);
  EXPECT_EQ(BiasOf("<-0330>3:30"), 210);
}

TEST_F(LinuxClockTest, BiasIgnoresDaylightSaving) {
  EXPECT_EQ(BiasOf("CET-1CEST,M3.5.0,M10.5.0/3"), -60);
  EXPECT_EQ(BiasOf("EST5EDT,M3.2.0,M11.1.0"), 300);
  EXPECT_EQ(BiasOf("AEST-10AEDT,M10.1.0,M4.1.0/3"), -600);
  EXPECT_EQ(BiasOf("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"), -630);
}

TEST_F(LinuxClockTest, BiasIgnoresDaylightSavingThatIsInForce) {
  // Saving time all the year but for its last four days.
  EXPECT_EQ(BiasOf("AAA-3BBB,J1/0,J362/0"), -180);
}

TEST_F(LinuxClockTest, WinterTimeCountedAsTheExceptionIsStillTheStandard) {
  EXPECT_EQ(BiasOf("IST-1GMT0,M10.5.0,M3.5.0/1"), 0);
  if (!HasZones()) GTEST_SKIP() << "no zone database";
  EXPECT_EQ(BiasOfNamedZone("Europe/Dublin"), 0);
}

// All zones of the database are compared in zones_test.py.
TEST_F(LinuxClockTest, SavingTimeOfYearsIsTakenAsItIs) {
  if (!HasZones()) GTEST_SKIP() << "no zone database";
  SetZone("Europe/Berlin");
  constexpr std::time_t kAugust1941 = -896832000;
  EXPECT_EQ(StandardOffset(kAugust1941), 2 * 60 * 60);
}

TEST_F(LinuxClockTest, NearestTimeThatIsNotFlaggedIsTheStandard) {
  if (!HasZones()) GTEST_SKIP() << "no zone database";
  SetZone("Pacific/Apia");
  constexpr std::time_t kDay = 24 * 60 * 60;
  constexpr std::time_t kOctober2011 = 1317427200;
  EXPECT_EQ(StandardOffset(kOctober2011), -11 * 60 * 60);
  EXPECT_EQ(StandardOffset(kOctober2011 + 105 * kDay), 13 * 60 * 60);  // after the date line
}

TEST_F(LinuxClockTest, NamedZones) {
  if (!HasZones()) GTEST_SKIP() << "no zone database";
  EXPECT_EQ(BiasOfNamedZone("Europe/Berlin"), -60);
  EXPECT_EQ(BiasOfNamedZone("America/New_York"), 300);
  EXPECT_EQ(BiasOfNamedZone("Asia/Kolkata"), -330);
  EXPECT_EQ(BiasOfNamedZone("Asia/Tokyo"), -540);
}

TEST_F(LinuxClockTest, LocalTimeFollowsTheZoneDaylightSavingIncluded) {
  SetZone("AAA-3BBB-5,0/0,J365/26");  // in saving time all the year
  DateTime utc;
  DateTime local;
  do {
    utc = TheClock().UtcNow();
    local = TheClock().LocalNow();
  } while (utc.second != local.second);
  EXPECT_EQ(local.hour, (utc.hour + 5) % 24);
  EXPECT_EQ(local.minute, utc.minute);
}

TEST_F(LinuxClockTest, UtcDoesNotFollowTheZone) {
  SetZone("<+12>-12");
  const std::time_t before = std::time(nullptr);
  const DateTime utc = TheClock().UtcNow();
  std::tm fields{};
  fields.tm_year = utc.year - 1900;
  fields.tm_mon = utc.month - 1;
  fields.tm_mday = utc.day;
  fields.tm_hour = utc.hour;
  fields.tm_min = utc.minute;
  fields.tm_sec = utc.second;
  EXPECT_LE(timegm(&fields) - before, 2);
  EXPECT_GE(timegm(&fields) - before, 0);
}

}  // namespace
}  // namespace platform
