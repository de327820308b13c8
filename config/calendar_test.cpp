#include "config/calendar.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

namespace {

using calendar::AddDays;
using calendar::Date;
using calendar::DateOfDayNumber;
using calendar::DayNumber;
using calendar::ReportDaysOfMonth;
using calendar::Weekday;

TEST(DayNumber, CountsFromNineteenSeventy) {
  EXPECT_EQ(DayNumber({1970, 1, 1}), 0);
  EXPECT_EQ(DayNumber({1969, 12, 31}), -1);
  EXPECT_EQ(DayNumber({2000, 3, 1}), 11017);
  EXPECT_EQ(DayNumber({1899, 12, 30}), -25569);
}

TEST(DayNumber, CarriesMonthsAndDaysOver) {
  EXPECT_EQ(DayNumber({2007, 13, 1}), DayNumber({2008, 1, 1}));
  EXPECT_EQ(DayNumber({2007, 0, 10}), DayNumber({2006, 12, 10}));
  EXPECT_EQ(DayNumber({2007, -1, 10}), DayNumber({2006, 11, 10}));
  EXPECT_EQ(DayNumber({2007, 25, 1}), DayNumber({2009, 1, 1}));
  EXPECT_EQ(DayNumber({2007, 1, 32}), DayNumber({2007, 2, 1}));
  EXPECT_EQ(DayNumber({2007, 3, 0}), DayNumber({2007, 2, 28}));
  EXPECT_EQ(DayNumber({2007, 2, 29}), DayNumber({2007, 3, 1}));
  EXPECT_EQ(DayNumber({2007, 99, 99}), DayNumber({2015, 6, 7}));
}

TEST(DayNumber, AgreesWithTheStandardCalendar) {
  std::mt19937 random(31);
  for (int i = 0; i < 20'000; ++i) {
    const int year = 1 + static_cast<int>(random() % 9999);
    const auto month = static_cast<unsigned>(1 + random() % 12);
    const auto day = static_cast<unsigned>(1 + random() % 28);
    const std::chrono::sys_days days =
        std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    const Date date{year, static_cast<int>(month), static_cast<int>(day)};
    ASSERT_EQ(DayNumber(date), days.time_since_epoch().count());
    ASSERT_EQ(DateOfDayNumber(DayNumber(date)), date);
    ASSERT_EQ(Weekday(date), static_cast<int>(std::chrono::weekday(days).c_encoding()));
  }
}

TEST(DateOfDayNumber, EveryDayOfFourCenturiesFollowsTheOneBefore) {
  for (long day = DayNumber({1900, 1, 1}); day < DayNumber({2301, 1, 1}); ++day) {
    const Date date = DateOfDayNumber(day);
    ASSERT_EQ(DayNumber(date), day);
    ASSERT_TRUE(date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31);
  }
}

TEST(AddDays, CrossesMonthsAndYears) {
  EXPECT_EQ(AddDays({2007, 1, 1}, -1), (Date{2006, 12, 31}));
  EXPECT_EQ(AddDays({2006, 12, 31}, 1), (Date{2007, 1, 1}));
  EXPECT_EQ(AddDays({2007, 3, 1}, -1), (Date{2007, 2, 28}));
  EXPECT_EQ(AddDays({2008, 3, 1}, -1), (Date{2008, 2, 29}));
  EXPECT_EQ(AddDays({2100, 3, 1}, -1), (Date{2100, 2, 28}));
  EXPECT_EQ(AddDays({2000, 2, 28}, 1), (Date{2000, 2, 29}));
}

TEST(AddDays, NormalisesTheDateItStartsFrom) {
  EXPECT_EQ(AddDays({2007, 13, 1}, -1), (Date{2007, 12, 31}));
  EXPECT_EQ(AddDays({2007, 2, 29}, 1), (Date{2007, 3, 2}));
  EXPECT_EQ(AddDays({0, 0, 0}, 1), (Date{-1, 12, 1})) << "day 0 of December is 30 November";
}

TEST(Weekday, CountsFromSunday) {
  EXPECT_EQ(Weekday({1970, 1, 1}), 4);
  EXPECT_EQ(Weekday({2026, 1, 31}), 6);
  EXPECT_EQ(Weekday({2026, 2, 1}), 0);
  EXPECT_EQ(Weekday({1969, 12, 31}), 3);
  EXPECT_EQ(Weekday({1899, 12, 31}), 0);
}

TEST(Weekday, OfTheDateThatItNormalisesTo) {
  EXPECT_EQ(Weekday({2007, 2, 30}), Weekday({2007, 3, 2}));
  EXPECT_EQ(Weekday({2007, 2, 30}), 5);
}

TEST(ReportDaysOfMonth, LengthsOfTheMonths) {
  const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  for (int month = 1; month <= 12; ++month) {
    EXPECT_EQ(ReportDaysOfMonth(month, 2007), lengths[month - 1]) << month;
  }
}

TEST(ReportDaysOfMonth, FebruaryHasTwentyNineDaysInEveryFourthYear) {
  EXPECT_EQ(ReportDaysOfMonth(2, 2008), 29);
  EXPECT_EQ(ReportDaysOfMonth(2, 2000), 29);
  EXPECT_EQ(ReportDaysOfMonth(2, 1900), 29);
  EXPECT_EQ(ReportDaysOfMonth(2, 2100), 29);
  EXPECT_EQ(ReportDaysOfMonth(2, 2099), 28);
  EXPECT_EQ(ReportDaysOfMonth(1, 2008), 31);
}

}  // namespace
