#include "stats/mdlMonth.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "stats/log_record.h"
#include "stats/mdlVisit.h"
#include "stats/month_fixture.h"

namespace {

using mdlMonth::AddHit;
using mdlMonth::InitMonth;
using mdlMonth::Month;
using mdlMonth::TallyTable;
using stats::LogRecord;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

using AddHitTotals = MonthTest;
using AddHitPeaks = MonthTest;
using AddHitErrors = MonthTest;
using AddHitVisits = MonthTest;
using InitMonthTest = MonthTest;

TEST_F(AddHitTotals, CountsHitBytesAndTimeInTotalDayAndHour) {
  Add(FullRecord());
  Add(FullRecord());
  EXPECT_EQ(Month().TotalHits, 2.0F);
  EXPECT_EQ(Month().DayHits[7], 2.0F);
  EXPECT_EQ(Month().HourHits[13], 2.0F);
  EXPECT_EQ(Month().TotalBytes, 2000.0F);
  EXPECT_EQ(Month().DayBytes[7], 2000.0F);
  EXPECT_EQ(Month().HourBytes[13], 2000.0F);
  EXPECT_EQ(Month().TotalTimeTaken, 500.0F);
  EXPECT_EQ(Month().DayTimeTaken[7], 500.0F);
  EXPECT_EQ(Month().HourTimeTaken[13], 500.0F);
  EXPECT_EQ(Month().DayHits[8], 0.0F);
  EXPECT_EQ(Month().HourHits[12], 0.0F);
}

TEST_F(AddHitTotals, ReceivedBytesAreNotCounted) {
  LogRecord record = FullRecord();
  record.bytesSent = 0;
  record.bytesReceived = 5000;
  AddHit(record);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
}

TEST_F(AddHitTotals, LongestTimeTakenIsKept) {
  LogRecord record = FullRecord();
  for (const std::int32_t time : {100, 900, 300}) {
    record.timeTaken = time;
    AddHit(record);
  }
  EXPECT_EQ(Month().MaxTimeTaken, 900.0F);
}

TEST_F(AddHitTotals, FirstAndLastDayAndHourCount) {
  AddAt(1, 0);
  AddAt(31, 23);
  AddAt(31, 24);
  EXPECT_EQ(Month().DayHits[1], 1.0F);
  EXPECT_EQ(Month().DayHits[31], 2.0F);
  EXPECT_EQ(Month().HourHits[0], 1.0F);
  EXPECT_EQ(Month().HourHits[23], 1.0F);
  EXPECT_EQ(Month().HourHits[24], 1.0F);
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(AddHitTotals, CountersStopAtTheLimitOfSinglePrecision) {
  Month().TotalHits = 16777215;
  AddAt(1, 1);
  EXPECT_EQ(Month().TotalHits, 16777216.0F);
  AddAt(1, 1);
  EXPECT_EQ(Month().TotalHits, 16777216.0F);
  EXPECT_EQ(Month().DayHits[1], 2.0F);
}

// The largest number that a log can hold no longer changes a sum of 2^56, so no log makes one
// overflow.
TEST_F(AddHitTotals, SumsStopGrowingBeforeTheyOverflow) {
  constexpr float kStandstill = 72057594037927936.0F;
  stats::LogRecord record = FullRecord();
  record.bytesSent = record.timeTaken = 2147483647;
  Month().TotalBytes = Month().DayBytes[record.day] = Month().TotalTimeTaken = kStandstill;
  Add(record);
  EXPECT_EQ(Month().TotalBytes, kStandstill);
  EXPECT_EQ(Month().DayBytes[record.day], kStandstill);
  EXPECT_EQ(Month().TotalTimeTaken, kStandstill);
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(AddHitTotals, BytesAreConvertedToSinglePrecisionBeforeTheyAreAdded) {
  AddAt(1, 1, 16777217);
  EXPECT_EQ(Month().TotalBytes, 16777216.0F);
  AddAt(1, 1, 1);
  EXPECT_EQ(Month().TotalBytes, 16777216.0F);
  AddAt(1, 1, 2147483647);
  EXPECT_EQ(Month().TotalBytes, 16777216.0F + 2147483648.0F);
}

TEST_F(AddHitTotals, FilesAreHitsOfStatusTwoHundred) {
  AddUri("/logo.gif");
  AddUri("/logo.gif", "304");
  AddUri("/logo.gif", "206");
  EXPECT_EQ(Month().TotalFiles, 1.0F);
  EXPECT_EQ(Month().DayFiles[7], 1.0F);
  EXPECT_EQ(Month().HourFiles[13], 1.0F);
  EXPECT_EQ(Month().TotalPages, 0.0F);
  EXPECT_TRUE(Keys(Month().Pages).empty());
}

TEST_F(AddHitTotals, PagesAreFilesWhoseUrlIsAPage) {
  AddUri("/index.htm");
  AddUri("/folder/");
  AddUri("/index.htm", "404");
  EXPECT_EQ(Month().TotalFiles, 2.0F);
  EXPECT_EQ(Month().TotalPages, 2.0F);
  EXPECT_EQ(Month().DayPages[7], 2.0F);
  EXPECT_EQ(Month().HourPages[13], 2.0F);
  EXPECT_EQ(Keys(Month().Pages), (KeyList{"/index.htm", "/folder/"}));
}

TEST_F(AddHitTotals, LastNonEmptyHostLabelIsKept) {
  EXPECT_EQ(Month().HostLabel, "");
  LogRecord record = FullRecord();
  for (const char* label : {" [one] ", " [two] ", ""}) {
    record.hostLabel = label;
    AddHit(record);
  }
  EXPECT_EQ(Month().HostLabel, " [two] ");
}

TEST_F(AddHitTotals, HostLabelOutlivesTheReadersBuffer) {
  std::string buffer = " [buffered] ";
  LogRecord record = FullRecord();
  record.hostLabel = buffer;
  AddHit(record);
  buffer.assign(buffer.size(), 'x');
  EXPECT_EQ(Month().HostLabel, " [buffered] ");
}

TEST_F(AddHitPeaks, BusiestHourOfOneDayIsKept) {
  AddAt(1, 10, 100);
  AddAt(1, 10, 100);
  AddAt(1, 11, 500);
  AddAt(2, 3, 50);
  EXPECT_EQ(Month().PeakHourHits, 2.0F);
  EXPECT_EQ(Month().PeakHourHitsDay, 1);
  EXPECT_EQ(Month().PeakHourHitsHour, 10);
  EXPECT_EQ(Month().PeakHourBytes, 500.0F);
  EXPECT_EQ(Month().PeakHourBytesDay, 1);
  EXPECT_EQ(Month().PeakHourBytesHour, 11);
}

TEST_F(AddHitPeaks, LaterHourThatTiesReplacesThePeak) {
  AddAt(1, 10, 100);
  AddAt(1, 10, 100);
  AddAt(2, 5, 150);
  EXPECT_EQ(Month().PeakHourHitsDay, 1);
  AddAt(2, 5, 50);
  EXPECT_EQ(Month().PeakHourHits, 2.0F);
  EXPECT_EQ(Month().PeakHourHitsDay, 2);
  EXPECT_EQ(Month().PeakHourHitsHour, 5);
  EXPECT_EQ(Month().PeakHourBytes, 200.0F);
  EXPECT_EQ(Month().PeakHourBytesDay, 2);
  EXPECT_EQ(Month().PeakHourBytesHour, 5);
}

TEST_F(AddHitPeaks, SameHourOfAnotherDayStartsFromZero) {
  AddAt(1, 10, 100);
  AddAt(2, 10, 40);
  EXPECT_EQ(Month().CurrentHourBytes, 40.0F);
  EXPECT_EQ(Month().CurrentHourHits, 1.0F);
  EXPECT_EQ(Month().CurrentDay, 2);
  EXPECT_EQ(Month().CurrentHour, 10);
}

TEST_F(AddHitPeaks, HourThatRecursStartsFromZero) {
  AddAt(1, 10);
  AddAt(1, 10);
  AddAt(1, 11);
  AddAt(1, 10);
  EXPECT_EQ(Month().CurrentHourHits, 1.0F);
  EXPECT_EQ(Month().PeakHourHits, 2.0F);
  EXPECT_EQ(Month().HourHits[10], 3.0F);
}

TEST_F(AddHitPeaks, HitWithoutBytesTiesTheEmptyPeak) {
  AddAt(9, 8, 0);
  EXPECT_EQ(Month().PeakHourBytes, 0.0F);
  EXPECT_EQ(Month().PeakHourBytesDay, 9);
  EXPECT_EQ(Month().PeakHourBytesHour, 8);
}

TEST_F(AddHitErrors, HourOutsideTheArrayKeepsTheCountsBeforeIt) {
  LogRecord record = FullRecord();
  record.hour = 75;
  record.userName = "-";
  AddHit(record);
  EXPECT_EQ(Month().TotalHits, 1.0F);
  EXPECT_EQ(Month().DayHits[7], 1.0F);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(Month().TotalTimeTaken, 0.0F);
  EXPECT_EQ(Month().PeakHourHits, 0.0F);
  EXPECT_EQ(Month().StatusCodes.Count(), 0);
  EXPECT_EQ(Month().HostLabel, "");
  EXPECT_EQ(record.userName, "-");
  EXPECT_EQ(mdlVisit::SlotCount(), 0);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "HitwickError adding hit counters : Subscript out of range");
}

TEST_F(AddHitErrors, DayOutsideTheArrayCountsInTheTotalOnly) {
  const std::int16_t days[] = {0, 32, -1, 32767, -32768};
  for (const std::int16_t day : days) AddAt(day, 10, 100);
  EXPECT_EQ(Month().TotalHits, 5.0F);
  EXPECT_EQ(Month().HourHits[10], 0.0F);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(log_.entries.size(), 5U);
}

TEST_F(AddHitErrors, HoursOutsideTheArray) {
  const std::int16_t hours[] = {-1, 25, 32767, -32768};
  for (const std::int16_t hour : hours) AddAt(3, hour, 100);
  EXPECT_EQ(Month().TotalHits, 4.0F);
  EXPECT_EQ(Month().DayHits[3], 4.0F);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(log_.CountWith("HitwickError adding hit counters : Subscript out of range"), 4);
}

TEST_F(AddHitErrors, NextHitIsNotTouchedByTheErrorOfTheOneBefore) {
  AddAt(3, 75);
  Add(FullRecord());
  EXPECT_EQ(Month().TotalHits, 2.0F);
  EXPECT_EQ(Keys(Month().StatusCodes), KeyList{"200"});
  EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(AddHitErrors, OverflowOfATotalEndsTheHitThere) {
  Month().TotalBytes = kInfinity;
  Add(FullRecord());
  EXPECT_EQ(Month().HourHits[13], 1.0F);
  EXPECT_EQ(Month().DayBytes[7], 0.0F);
  EXPECT_EQ(Month().UserAgents.Count(), 0);
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError adding hit counters : Overflow"});
}

TEST_F(AddHitErrors, OverflowOfTheFailuresNamesTheStatus) {
  Month().DayFailures[7] = kInfinity;
  AddUri("/gone", "404");
  EXPECT_EQ(Keys(Month().UserAgents), KeyList{"Mozilla"});
  EXPECT_EQ(Month().FailedUrls.Count(), 0);
  EXPECT_EQ(Month().StatusCodes.Count(), 0);
  EXPECT_EQ(Month().UserNames.Count(), 0);
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError adding hit Status=404 : Overflow"});
}

TEST_F(AddHitErrors, OverflowOfThePagesKeepsTheFileCounted) {
  Month().TotalPages = kInfinity;
  Add(FullRecord());
  EXPECT_EQ(Month().TotalFiles, 1.0F);
  EXPECT_EQ(Month().DayPages[7], 0.0F);
  EXPECT_EQ(Month().Pages.Count(), 0);
  EXPECT_EQ(Month().Queries.Count(), 0);
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError adding hit Status=200 : Overflow"});
}

TEST_F(AddHitErrors, OverflowInOneTableDoesNotEndTheHit) {
  mdlMonth::TallyAdd("Mozilla", Month().UserAgents, kInfinity);
  Add(FullRecord());
  EXPECT_EQ(log_.Texts(),
            KeyList{"Hitwick : Error summing string 'Mozilla' metric=1000. Error is :  Overflow"});
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(Keys(Month().Methods), KeyList{"GET"});
  EXPECT_EQ(Keys(Month().UserNames), KeyList{"alice"});
  EXPECT_EQ(Month().HostLabel, " [www.example.com] ");
}

TEST_F(AddHitVisits, TimeWithinThePeriodIsInSeconds) {
  LogRecord record = FullRecord();
  AddHit(record);
  record.minute = 22;
  record.second = 5;
  AddHit(record);
  mdlVisit::CloseAllVisits();
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Visits, 1);
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Fetches, 2);
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Seconds, 125);
}

TEST_F(AddHitVisits, DaysAndHoursCountInTheTime) {
  LogRecord record = FullRecord();
  AddHit(record);
  record.day = 8;
  record.hour = 15;
  AddHit(record);
  mdlVisit::CloseAllVisits();
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Seconds, (24 + 2) * 3600);
}

TEST_F(AddHitVisits, OddMinutesOfHalfHourZonesCountAsTheyAre) {
  LogRecord record = FullRecord();
  record.minute = -25;
  AddHit(record);
  record.minute = 75;
  AddHit(record);
  mdlVisit::CloseAllVisits();
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Seconds, 100 * 60);
}

TEST_F(AddHitVisits, VisitorIsAddressWithAgent) {
  LogRecord record = FullRecord();
  AddHit(record);
  record.userAgent = "Opera";
  AddHit(record);
  record.clientAddress = "10.0.0.2";
  AddHit(record);
  EXPECT_EQ(mdlVisit::SlotCount(), 3);
}

TEST_F(AddHitVisits, ExitPageIsTheUriOfTheLatestHit) {
  AddUri("/in");
  AddUri("/out", "404");
  mdlVisit::CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), KeyList{"/in"});
  EXPECT_EQ(Keys(Month().Visits.AllExit), KeyList{"/out"});
}

TEST_F(InitMonthTest, ResetsTotalsArraysPeaksAndLabel) {
  Add(FullRecord());
  AddUri("/gone", "404");
  InitMonth();
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(Month().TotalHits, 0.0F);
  EXPECT_EQ(Month().TotalFiles, 0.0F);
  EXPECT_EQ(Month().TotalPages, 0.0F);
  EXPECT_EQ(Month().TotalTimeTaken, 0.0F);
  EXPECT_EQ(Month().MaxTimeTaken, 0.0F);
  EXPECT_EQ(Month().PeakHourBytes, 0.0F);
  EXPECT_EQ(Month().PeakHourBytesDay, 1);
  EXPECT_EQ(Month().PeakHourBytesHour, 0);
  EXPECT_EQ(Month().PeakHourHits, 0.0F);
  EXPECT_EQ(Month().PeakHourHitsDay, 1);
  EXPECT_EQ(Month().PeakHourHitsHour, 0);
  EXPECT_EQ(Month().CurrentHourBytes, 0.0F);
  EXPECT_EQ(Month().CurrentHourHits, 0.0F);
  EXPECT_EQ(Month().CurrentDay, 0);
  EXPECT_EQ(Month().CurrentHour, 0);
  EXPECT_EQ(Month().HostLabel, "");
}

TEST_F(InitMonthTest, ResetsEveryDayAndHour) {
  for (std::int16_t day = 1; day <= 31; ++day) {
    LogRecord record = FullRecord();
    record.day = day;
    record.hour = static_cast<std::int16_t>(day % 25);
    record.status = day % 2 == 0 ? "200" : "404";
    AddHit(record);
  }
  InitMonth();
  const mdlMonth::MonthStats& month = Month();
  for (int day = 1; day <= 31; ++day) {
    EXPECT_EQ(month.DayBytes[day] + month.DayHits[day] + month.DayFiles[day] + month.DayPages[day] +
                  month.DayTimeTaken[day] + month.DayFailures[day],
              0.0F);
  }
  for (int hour = 0; hour <= 24; ++hour) {
    EXPECT_EQ(month.HourBytes[hour] + month.HourHits[hour] + month.HourFiles[hour] +
                  month.HourPages[hour] + month.HourTimeTaken[hour],
              0.0F);
  }
}

TEST_F(InitMonthTest, EmptiesEveryTableButTheAgentsOfRobotsTxt) {
  LogRecord record = FullRecord();
  record.uriStem = "/robots.txt";
  AddHit(record);
  record.status = "404";
  AddHit(record);
  mdlVisit::CloseAllVisits();
  mdlMonth::TallyAdd("MSIE", Month().Browsers, 1);
  mdlMonth::TallyAdd("Windows", Month().OperatingSystems, 1);
  InitMonth();
  for (const TallyTable* table :
       {&Month().SuccessUrls, &Month().UserAgents, &Month().ClientAddresses, &Month().Methods,
        &Month().Referrers, &Month().StatusCodes, &Month().Queries, &Month().UserNames,
        &Month().Pages, &Month().FailedUrls, &Month().FailedReferrers, &Month().FileTypes,
        &Month().UrlResponseTimes, &Month().Visits.AllEntry, &Month().Visits.AllExit,
        &Month().Visits.NonRobotEntry, &Month().Visits.NonRobotExit, &Month().Browsers,
        &Month().OperatingSystems}) {
    EXPECT_EQ(table->Count(), 0);
  }
  EXPECT_EQ(Keys(Month().RobotsTxtAgents), KeyList{"Mozilla"});
}

TEST_F(InitMonthTest, TablesRankedByMetricCountAgainInTheNextMonth) {
  AddUri("/a");
  mdlMonth::SortTallyByMetric(Month().SuccessUrls);
  InitMonth();
  AddUri("/b");
  AddUri("/c");
  AddUri("/c");
  EXPECT_EQ(Keys(Month().SuccessUrls), (KeyList{"/c", "/b"}));
}

TEST_F(InitMonthTest, RobotOfOneMonthIsARobotInTheNext) {
  LogRecord record = FullRecord();
  record.userAgent = "Stealth";
  record.uriStem = "/robots.txt";
  AddHit(record);
  InitMonth();
  mdlVisit::InitVisits();
  record.uriStem = "/page.htm";
  AddHit(record);
  mdlVisit::CloseAllVisits();
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Visits, 1);
  EXPECT_EQ(mdlVisit::NonRobotVisitLengths()[0].Visits, 0);
}

}  // namespace
