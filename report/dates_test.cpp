#include "report/dates.h"

#include "platform/environment.h"
#include "report/report_fixture_test.h"

namespace {

class Dates : public ReportTest {};

TEST_F(Dates, ExpiryIsADayTenMinutesAndTheBiasFromNow) {
  clock_.local = {2026, 1, 10, 14, 5, 9};
  clock_.bias_minutes = -60;
  EXPECT_EQ(report::ExpiryTime(), "Sun, 11 Jan 2026 13:15:09");
}

TEST_F(Dates, ExpiryMovesOverTheEndOfDayMonthAndYear) {
  clock_.local = {2026, 12, 31, 23, 55, 0};
  clock_.bias_minutes = 0;
  EXPECT_EQ(report::ExpiryTime(), "Sat, 2 Jan 2027 00:05:00");
  clock_.bias_minutes = 720;
  EXPECT_EQ(report::ExpiryTime(), "Sat, 2 Jan 2027 12:05:00");
}

TEST_F(Dates, ExpiryMovesBackOverMidnightEastOfGreenwich) {
  clock_.local = {2026, 3, 1, 0, 30, 7};
  clock_.bias_minutes = -330;
  EXPECT_EQ(report::ExpiryTime(), "Sun, 1 Mar 2026 19:10:07");
  clock_.local = {2026, 3, 1, 0, 50, 7};
  clock_.bias_minutes = -60;
  EXPECT_EQ(report::ExpiryTime(), "Mon, 2 Mar 2026 00:00:07");
}

TEST_F(Dates, GenerationTimeIsThatOfTheNamedClock) {
  clock_.local = {2026, 2, 3, 4, 5, 6};
  clock_.utc = {2026, 2, 2, 23, 15, 6};
  const std::string feb = platform::MonthAbbreviation(2);
  EXPECT_EQ(report::GenerationTime(false), "3-" + feb + "-2026 04:05");
  EXPECT_EQ(report::GenerationTime(true), "2-" + feb + "-2026 23:15");
}

TEST_F(Dates, CurrentMonthCountsUpToToday) {
  clock_.local = {2026, 3, 15, 0, 0, 0};
  EXPECT_EQ(report::DaysCounted(3, 2026), 15);
  EXPECT_EQ(report::DaysCounted(3, 2025), 31);
}

TEST_F(Dates, OtherMonthsCountTheirLength) {
  EXPECT_EQ(report::DaysCounted(1, 2026), 31);
  EXPECT_EQ(report::DaysCounted(4, 2025), 30);
  EXPECT_EQ(report::DaysCounted(2, 2025), 28);
  EXPECT_EQ(report::DaysCounted(2, 2024), 29);
  EXPECT_EQ(report::DaysCounted(2, 1900), 29);
  EXPECT_EQ(report::DaysCounted(2, 2100), 29);
}

}  // namespace
