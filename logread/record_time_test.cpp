// The date and time of records: what the log says, shifted to the report's zone.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "logread/reader_fixture.h"

namespace {

class RecordTime : public ReaderTest {
 protected:
  // Reads one record with that date and time for a month, from a file that the month reads.
  void ReadAt(const std::string& date_and_time, int month, int year) {
    files_.files.clear();
    mdlW3C::Reset();
    std::string name = "ex" + TwoDigits(year - 2000) + TwoDigits(month) + "15.log";
    AddLines(name, {"#Fields: date time c-ip cs-uri-stem", date_and_time + " a /x"});
    Read(month, year);
  }
  // "day:hour" of the record, or "none" when it was dropped.
  std::string CountedAt(const std::string& date_and_time, int month, int year) {
    ReadAt(date_and_time, month, year);
    if (Month().TotalHits == 0) return "none";
    return std::to_string(DaysWithHits().at(0)) + ":" + std::to_string(HoursWithHits().at(0));
  }

 private:
  static std::string TwoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
  }
};

TEST_F(RecordTime, UtcIsNotShifted) {
  EXPECT_EQ(CountedAt("2007-01-20 10:45:00", 1, 2007), "20:10");
  EXPECT_EQ(CountedAt("2007-01-20 00:00:00", 1, 2007), "20:0");
  EXPECT_EQ(CountedAt("2007-01-31 23:59:59", 1, 2007), "31:23");
}

TEST_F(RecordTime, UseUtcLeavesTimesAsTheyAre) {
  clock_.bias_minutes = 300;
  State().Settings.UseUTC = true;
  EXPECT_EQ(CountedAt("2007-01-20 03:00:00", 1, 2007), "20:3");
}

TEST_F(RecordTime, WestOfUtcMovesBackOverMidnight) {
  clock_.bias_minutes = 300;
  EXPECT_EQ(CountedAt("2007-01-20 10:00:00", 1, 2007), "20:5");
  EXPECT_EQ(CountedAt("2007-01-20 05:00:00", 1, 2007), "20:0");
  EXPECT_EQ(CountedAt("2007-01-20 04:59:00", 1, 2007), "19:23");
}

TEST_F(RecordTime, WestOfUtcMovesIntoThePreviousMonth) {
  clock_.bias_minutes = 300;
  AddLines("ex070201.log", {"#Fields: date time c-ip cs-uri-stem", "2007-02-01 03:10:00 a /x",
                            "2007-02-01 05:00:00 a /next-month"});
  Read(1, 2007);
  EXPECT_EQ(Urls(), List{"/x"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{31});
  EXPECT_EQ(HoursWithHits(), std::vector<int>{22});
}

TEST_F(RecordTime, RecordMovedOutOfTheMonthIsDropped) {
  clock_.bias_minutes = 300;
  EXPECT_EQ(CountedAt("2007-01-01 02:00:00", 1, 2007), "none");
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_EQ(CountedAt("2007-01-01 02:00:00", 12, 2006), "31:21");
}

TEST_F(RecordTime, EastOfUtcMovesForwardOverMidnight) {
  clock_.bias_minutes = -60;
  EXPECT_EQ(CountedAt("2007-01-20 22:59:00", 1, 2007), "20:23");
  EXPECT_EQ(CountedAt("2007-01-20 23:00:00", 1, 2007), "21:0");
}

TEST_F(RecordTime, EastOfUtcMovesOverTheYearsEnd) {
  clock_.bias_minutes = -60;
  AddLines("ex061231.log", {"#Fields: date time c-ip cs-uri-stem", "2006-12-31 23:30:00 a /x",
                            "2006-12-31 22:30:00 a /last-year"});
  Read(1, 2007);
  EXPECT_EQ(Urls(), List{"/x"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{1});
  EXPECT_EQ(CountedAt("2006-12-31 23:30:00", 12, 2006), "none");
}

TEST_F(RecordTime, EndOfFebruaryIsTheRealOne) {
  clock_.bias_minutes = -60;
  EXPECT_EQ(CountedAt("2008-02-28 23:30:00", 2, 2008), "29:0");
  EXPECT_EQ(CountedAt("2007-02-28 23:30:00", 2, 2007), "none");
  EXPECT_EQ(CountedAt("2007-02-28 23:30:00", 3, 2007), "1:0");
  clock_.bias_minutes = 60;
  EXPECT_EQ(CountedAt("2008-03-01 00:30:00", 2, 2008), "29:23");
  EXPECT_EQ(CountedAt("2007-03-01 00:30:00", 2, 2007), "28:23");
}

TEST_F(RecordTime, MinutesAboveFiftyNineAddAnHour) {
  clock_.bias_minutes = -330;
  EXPECT_EQ(CountedAt("2007-01-20 10:45:00", 1, 2007), "20:16");
  EXPECT_EQ(CountedAt("2007-01-20 10:30:00", 1, 2007), "20:16");
  EXPECT_EQ(CountedAt("2007-01-20 10:29:00", 1, 2007), "20:15");
  EXPECT_EQ(CountedAt("2007-01-20 18:45:00", 1, 2007), "21:0");
}

TEST_F(RecordTime, MinutesBelowZeroTakeAnHour) {
  clock_.bias_minutes = 210;
  EXPECT_EQ(CountedAt("2007-01-20 10:29:00", 1, 2007), "20:6");
  EXPECT_EQ(CountedAt("2007-01-20 10:30:00", 1, 2007), "20:7");
  EXPECT_EQ(CountedAt("2007-01-20 03:29:00", 1, 2007), "19:23");
}

TEST_F(RecordTime, MinutesThatWereShiftedStayAsTheyAre) {
  clock_.bias_minutes = -330;
  // 15:59 and, an hour having been added without taking 60 minutes away, 16:75.
  ReadLines({"#Fields: date time c-ip cs-uri-stem", "2007-01-20 10:29:00 a /1",
             "2007-01-20 10:45:00 a /2"});
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Seconds, (60 + 75 - 59) * 60);
}

TEST_F(RecordTime, SecondsAreIgnored) {
  ReadLines({"#Fields: date time c-ip cs-uri-stem", "2007-01-20 10:29:00 a /1",
             "2007-01-20 10:29:59 a /2"});
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Seconds, 0);
}

TEST_F(RecordTime, OtherMonthOrYearIsDroppedSilently) {
  State().LogTranslations = true;
  EXPECT_EQ(CountedAt("2007-02-20 10:00:00", 1, 2007), "none");
  EXPECT_EQ(CountedAt("2006-01-20 10:00:00", 1, 2007), "none");
  EXPECT_EQ(CountedAt("- 10:00:00", 1, 2007), "none");
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(RecordTime, FieldsAfterTheTimeOfADroppedRecordAreNotRead) {
  State().LogTranslations = true;
  ReadLines({"#Fields: date time sc-bytes s-computername", "2007-02-20 10:00:00 99999999999 WEB9"});
  EXPECT_EQ(mdlW3C::ServerName(), "");
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(RecordTime, RecordWithoutATimeCountsByItsDayAlone) {
  ReadLines({"#Fields: date c-ip cs-uri-stem", "2009-08-20 a /x"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{20});
  EXPECT_EQ(HoursWithHits(), std::vector<int>{0});
}

TEST_F(RecordTime, DateAfterTheTimeReplacesTheDayAtLast) {
  clock_.bias_minutes = 300;
  ReadLines({"#Fields: time date c-ip cs-uri-stem", "03:00:00 2007-02-20 a /x"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{20});
  EXPECT_EQ(HoursWithHits(), std::vector<int>{22});
}

TEST_F(RecordTime, TimeWithoutADateUsesTheFilesDate) {
  clock_.bias_minutes = 300;
  ReadLines({"#Fields: time c-ip cs-uri-stem", "03:00:00 a /x"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{14});
}

TEST_F(RecordTime, DayOfADateIsKeptForRecordsWithoutOne) {
  ReadLines(
      {"#Fields: date c-ip cs-uri-stem", "2007-01-20 a /1", "#Fields: c-ip cs-uri-stem", "a /2"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{20});
  EXPECT_EQ(Month().DayHits[20], 2.0F);
}

TEST_F(RecordTime, KeptDayIsNotTheShiftedOne) {
  clock_.bias_minutes = 300;
  ReadLines({"#Fields: date time c-ip cs-uri-stem", "2007-01-20 03:00:00 a /1",
             "#Fields: c-ip cs-uri-stem", "a /2"});
  EXPECT_EQ(DaysWithHits(), (std::vector<int>{19, 20}));
}

TEST_F(RecordTime, KeptDayEndsWithItsFile) {
  AddLines("ex070114.log", {"#Fields: date c-ip cs-uri-stem", "2007-01-20 a /1"});
  AddLines("ex070115.log", {"#Fields: c-ip cs-uri-stem", "a /2"});
  Read(1, 2007);
  EXPECT_EQ(DaysWithHits(), (std::vector<int>{15, 20}));
}

TEST_F(RecordTime, MissingOrEmptyDateMakesTheKeptDayZero) {
  for (const char* line : {"a /1", "a /1 -"}) {
    ReadLines({"#Fields: c-ip cs-uri-stem date", line, "#Fields: c-ip cs-uri-stem", "a /2"});
    EXPECT_EQ(Month().TotalHits, 0.0F) << line;
  }
}

TEST_F(RecordTime, DateIsReadByItsPlaces) {
  EXPECT_EQ(CountedAt("2007/01/20 10:00:00", 1, 2007), "20:10");
  EXPECT_EQ(CountedAt("2007x01yy20 10:00:00", 1, 2007), "20:10");
  EXPECT_EQ(CountedAt("2007-1-20 10:00:00", 1, 2007), "20:10") << "characters 6 and 7 are 1-";
  EXPECT_EQ(CountedAt("2007-01-x7 10:00:00", 1, 2007), "none") << "x7 is no number";
  EXPECT_EQ(CountedAt("20070120 10:00:00", 1, 2007), "none") << "characters 6 and 7 are 12";
  EXPECT_EQ(CountedAt("20070120 10:00:00", 12, 2007), "20:10");
}

TEST_F(RecordTime, TimeIsReadByItsPlaces) {
  EXPECT_EQ(CountedAt("2007-01-20 10-45", 1, 2007), "20:10");
  EXPECT_EQ(CountedAt("2007-01-20 1045", 1, 2007), "20:10");
  EXPECT_EQ(CountedAt("2007-01-20 9:15:00", 1, 2007), "20:9");
  EXPECT_EQ(CountedAt("2007-01-20 -", 1, 2007), "20:0");
  EXPECT_EQ(CountedAt("2007-01-20 x", 1, 2007), "20:0");
}

TEST_F(RecordTime, NonexistentDateIsNormalisedOnlyWhenItMoves) {
  EXPECT_EQ(CountedAt("2007-02-29 12:00:00", 2, 2007), "29:12");
  EXPECT_EQ(CountedAt("2007-01-32 12:00:00", 1, 2007), "none") << "no such day in the period";
  EXPECT_EQ(CountedAt("2007-13-01 12:00:00", 1, 2008), "none");
  clock_.bias_minutes = 300;
  EXPECT_EQ(CountedAt("2007-02-29 03:00:00", 2, 2007), "28:22") << "1 March less a day";
  EXPECT_EQ(CountedAt("2007-01-32 03:00:00", 1, 2007), "31:22");
  EXPECT_EQ(CountedAt("2007-13-01 03:00:00", 12, 2007), "31:22");
  EXPECT_EQ(CountedAt("2007-13-02 03:00:00", 1, 2008), "1:22");
  EXPECT_EQ(CountedAt("2007-01-00 03:00:00", 12, 2006), "30:22");
  EXPECT_EQ(CountedAt("2007-00-10 03:00:00", 12, 2006), "9:22");
}

TEST_F(RecordTime, HoursBeyondADayMoveByOneDayOnly) {
  EXPECT_EQ(CountedAt("2007-01-20 24:00:00", 1, 2007), "21:0");
  EXPECT_EQ(CountedAt("2007-01-20 48:00:00", 1, 2007), "21:24");
  EXPECT_EQ(CountedAt("2007-01-31 24:00:00", 1, 2007), "none");
}

TEST_F(RecordTime, MinutesOfADamagedTime) {
  EXPECT_EQ(CountedAt("2007-01-20 10:60:00", 1, 2007), "20:11");
  EXPECT_EQ(CountedAt("2007-01-20 10:99:00", 1, 2007), "20:11");
  EXPECT_EQ(CountedAt("2007-01-20 23:99:00", 1, 2007), "21:0");
}

TEST_F(RecordTime, HourThatNoDayHasIsReportedByTheStatisticsAlone) {
  State().LogTranslations = true;
  ReadAt("2007-01-20 75:00:00", 1, 2007);
  EXPECT_EQ(Month().TotalHits, 1.0F);
  EXPECT_EQ(Month().DayHits[21], 1.0F);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(Urls(), List{});
  EXPECT_EQ(log_.Texts(), List{"HitwickError adding hit counters : Subscript out of range"});
}

}  // namespace
