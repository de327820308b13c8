// Which files belong to a month, and what a month leaves behind. The reading of the lines and the
// parsing of the records have test files of their own.
#include "logread/mdlW3C.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "logread/reader_fixture.h"
#include "platform/mod_systemInfo.h"
#include "tests/fakes/temp_dir.h"

namespace {

class FileSelection : public ReaderTest {
 protected:
  void AddEmptyLogs(const List& names) {
    for (const std::string& name : names) AddLog(name, "");
  }
  List OpenedWithBias(int bias, int month, int year) {
    clock_.bias_minutes = static_cast<std::int16_t>(bias);
    files_.opened.clear();
    Read(month, year);
    return Opened();
  }
};

TEST_F(FileSelection, WestOfUtcReadsTheNextMonthsFirstDay) {
  AddEmptyLogs({"ex061231.log", "ex070115.log", "ex070201.log", "ex070202.log"});
  EXPECT_EQ(OpenedWithBias(300, 1, 2007), (List{"ex070115.log", "ex070201.log"}));
}

TEST_F(FileSelection, EastOfUtcReadsThePreviousMonthsLastDay) {
  AddEmptyLogs({"ex061230.log", "ex061231.log", "ex070115.log", "ex070201.log"});
  EXPECT_EQ(OpenedWithBias(-60, 1, 2007), (List{"ex061231.log", "ex070115.log"}));
}

TEST_F(FileSelection, UtcItselfCountsAsWest) {
  AddEmptyLogs({"ex061231.log", "ex070115.log", "ex070201.log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), (List{"ex070115.log", "ex070201.log"}));
}

TEST_F(FileSelection, MinutesAloneDecideInZonesNearUtc) {
  AddEmptyLogs({"ex061231.log", "ex070115.log", "ex070201.log"});
  EXPECT_EQ(OpenedWithBias(-30, 1, 2007), (List{"ex061231.log", "ex070115.log"}));
  EXPECT_EQ(OpenedWithBias(30, 1, 2007), (List{"ex070115.log", "ex070201.log"}));
}

TEST_F(FileSelection, UseUtcIgnoresTheZone) {
  AddEmptyLogs({"ex061231.log", "ex070115.log", "ex070201.log"});
  State().Settings.UseUTC = true;
  EXPECT_EQ(OpenedWithBias(-60, 1, 2007), (List{"ex070115.log", "ex070201.log"}));
}

TEST_F(FileSelection, UtcMonthForgetsTheZoneOfTheMonthBefore) {
  AddEmptyLogs({"ex061231.log", "ex070115.log", "ex070201.log"});
  EXPECT_EQ(OpenedWithBias(-90, 1, 2007), (List{"ex061231.log", "ex070115.log"}));
  State().Settings.UseUTC = true;
  EXPECT_EQ(OpenedWithBias(-90, 1, 2007), (List{"ex070115.log", "ex070201.log"}));
}

TEST_F(FileSelection, PrefixesFollowEachOtherInEveryStep) {
  AddEmptyLogs({"u_ex061231.log", "ex061231.log", "u_ex070102.log", "ex070103.log",
                "u_ex070101.log", "ex070104.log", "u_ex070201.log", "ex070201.log"});
  EXPECT_EQ(OpenedWithBias(-60, 1, 2007),
            (List{"ex061231.log", "u_ex061231.log", "ex070103.log", "ex070104.log",
                  "u_ex070101.log", "u_ex070102.log"}));
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), (List{"ex070103.log", "ex070104.log", "u_ex070101.log",
                                              "u_ex070102.log", "ex070201.log", "u_ex070201.log"}));
}

TEST_F(FileSelection, DecemberReachesIntoTheNextYear) {
  AddEmptyLogs({"ex061231.log", "ex070101.log", "ex060101.log"});
  EXPECT_EQ(OpenedWithBias(60, 12, 2006), (List{"ex061231.log", "ex070101.log"}));
}

TEST_F(FileSelection, LastDayOfFebruaryIsTheRealOne) {
  AddEmptyLogs({"ex070228.log", "ex070229.log", "ex080228.log", "ex080229.log", "ex1000228.log",
                "ex1000229.log"});
  EXPECT_EQ(OpenedWithBias(-60, 3, 2007), List{"ex070228.log"});
  EXPECT_EQ(OpenedWithBias(-60, 3, 2008), List{"ex080229.log"});
  EXPECT_EQ(OpenedWithBias(-60, 3, 2100), List{"ex1000228.log"});
}

TEST_F(FileSelection, YearsFrom2001AreCountedFrom2000) {
  AddEmptyLogs({"ex010301.log", "ex100301.log", "ex990301.log", "ex1000301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 2001), List{"ex010301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 2010), List{"ex100301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 2099), List{"ex990301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 2100), List{"ex1000301.log"});
}

TEST_F(FileSelection, YearsUpTo2000AreTakenAsDaySerials) {
  AddEmptyLogs({"ex000301.log", "ex010301.log", "ex050301.log", "ex990301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 2000), List{"ex050301.log"}) << "1905-06-22";
  EXPECT_EQ(OpenedWithBias(0, 3, 1999), List{"ex050301.log"});
  EXPECT_EQ(OpenedWithBias(0, 3, 1), List{"ex990301.log"}) << "1899-12-31";
  EXPECT_EQ(OpenedWithBias(0, 3, 2), List{"ex000301.log"}) << "1900-01-01";
  EXPECT_EQ(OpenedWithBias(0, 3, 366), List{"ex000301.log"}) << "1900-12-31";
  EXPECT_EQ(OpenedWithBias(0, 3, 367), List{"ex010301.log"}) << "1901-01-01";
}

TEST_F(FileSelection, NeighbourDayHasTheDigitsOfItsOwnYear) {
  AddEmptyLogs({"ex001231.log", "ex051231.log", "ex010101.log", "ex050101.log"});
  EXPECT_EQ(OpenedWithBias(-60, 1, 2001), (List{"ex051231.log", "ex010101.log"}));
  EXPECT_EQ(OpenedWithBias(0, 12, 2000), (List{"ex051231.log", "ex010101.log"}));
}

TEST_F(FileSelection, OtherFilesAreLeftAlone) {
  AddEmptyLogs({"in070115.log", "ex070115.txt", "ex070215.log", "ex060115.log", "xex070115.log",
                "u_in070115.log", "ex070115.log.bak", "u_u_ex070115.log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), List{});
}

TEST_F(FileSelection, AnythingMayStandBetweenMonthAndExtension) {
  AddEmptyLogs({"ex0701.log", "ex07011.log", "ex070115x.log", "ex0701_part2.log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007).size(), 4U);
}

TEST_F(FileSelection, NeighbourDayIsExactlyOneNamePerPrefix) {
  AddEmptyLogs({"ex070201x.log", "ex0702011.log", "xex070201.log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), List{});
}

TEST_F(FileSelection, LetterCaseOfNamesIsIgnored) {
  AddEmptyLogs({"EX070115.LOG", "U_Ex070116.log", "Ex070201.Log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), (List{"EX070115.LOG", "U_Ex070116.log", "Ex070201.Log"}));
}

TEST_F(FileSelection, FirstOfSeveralSpellingsOfANeighbourDayIsRead) {
  AddEmptyLogs({"ex070201.log", "EX070201.log", "Ex070201.log"});
  EXPECT_EQ(OpenedWithBias(0, 1, 2007), List{"EX070201.log"});
}

TEST(ReadMonthLogs, ReadsARealFolder) {
  const fakes::ScopedTempDir folder;
  fakes::FakeClock clock;
  const platform::Replacement<platform::Clock> replacement(clock);
  const std::string fields = "#Fields: c-ip cs-uri-stem\r\n";
  fakes::WriteFile(folder / "u_ex070116.log", fields + "a /second\r\n");
  fakes::WriteFile(folder / "ex070115.log", fields + "a /first\r\n");
  fakes::WriteFile(folder / "ex070201.log", fields + "a /neighbour\r\n");
  fakes::WriteFile(folder / "ex070202.log", fields + "a /other\r\n");
  mdlConfigs::ResetRun();
  mdlW3C::Reset();
  mdlConfigs::Run().Settings.LogDir = folder.path();
  mdlW3C::ReadMonthLogs(1, 31, 1, 2007, [](const stats::HistoryRow&) {});
  EXPECT_EQ(mdlMonth::Month().TotalHits, 3.0F);
  EXPECT_EQ(mdlMonth::Month().SuccessUrls.At(1).Key, "/first");
  EXPECT_EQ(mdlMonth::Month().SuccessUrls.At(2).Key, "/second");
  EXPECT_EQ(mdlMonth::Month().SuccessUrls.At(3).Key, "/neighbour");
}

class FileDate : public ReaderTest {
 protected:
  // The days on which a record without a date counts in a file of that name.
  std::vector<int> DayOfFile(const std::string& name, const std::string& more_fields = "",
                             const std::string& more_values = "") {
    files_.files.clear();
    AddLines(name, {"#Fields: c-ip cs-uri-stem" + more_fields, "a /x" + more_values});
    Read(1, 2007);
    return DaysWithHits();
  }
};

TEST_F(FileDate, DayOfRecordsWithoutADate) {
  EXPECT_EQ(DayOfFile("ex070101.log"), std::vector<int>{1});
  EXPECT_EQ(DayOfFile("u_ex070131.log"), std::vector<int>{31});
}

TEST_F(FileDate, MonthAndYearOfRecordsWithATimeOnly) {
  EXPECT_EQ(DayOfFile("ex070115.log", " time", " 10:00:00"), std::vector<int>{15});
  EXPECT_EQ(DayOfFile("ex070201.log", " time", " 10:00:00"), std::vector<int>{});
}

TEST_F(FileDate, OddNamesYieldWhateverDigitsStandInTheirPlaces) {
  EXPECT_EQ(DayOfFile("ex07010.log"), std::vector<int>{10});
  EXPECT_EQ(DayOfFile("ex070131x.log"), std::vector<int>{1});
  EXPECT_EQ(DayOfFile("ex0701.log"), std::vector<int>{1});
  EXPECT_EQ(DayOfFile("ex07010.log", " time", " 10:00:00"), std::vector<int>{}) << "month 70";
}

TEST_F(FileDate, NamesWithoutDayDigitsGiveDayZeroWhichNoPeriodHas) {
  EXPECT_EQ(DayOfFile("ex0701xx.log"), std::vector<int>{});
  EXPECT_EQ(Month().TotalHits, 0.0F);
}

TEST_F(FileDate, ComesFromTheStemAndThePath) {
  files_.AddFile("some0701where31.txt", "#Fields: c-ip cs-uri-stem time\na /x 10:00:00\n");
  mdlMonth::InitMonth();
  mdlVisit::InitVisits();
  mdlW3C::ReadLogFile("some0701where31.txt", 1, 31, 1, 2007, "some0701whe0701");
  EXPECT_EQ(DaysWithHits(), std::vector<int>{}) << "the day is what follows the stem's length";
  files_.AddFile("somewhere070131.txt", "#Fields: c-ip cs-uri-stem time\na /x 10:00:00\n");
  mdlW3C::ReadLogFile("somewhere070131.txt", 1, 31, 1, 2007, "somewhere0701");
  EXPECT_EQ(DaysWithHits(), std::vector<int>{31});
}

using MonthOutcome = ReaderTest;

TEST_F(MonthOutcome, HistoryRowHoldsTheMonthsTotals) {
  AddLines("ex070115.log",
           {"#Fields: date time c-ip cs-uri-stem sc-status sc-bytes time-taken cs(User-Agent)",
            "2007-01-15 10:00:00 10.0.0.1 /a.htm 200 1000 20 Mozilla",
            "2007-01-15 10:00:01 10.0.0.1 /b.gif 200 500 30 Mozilla",
            "2007-01-15 10:00:02 10.0.0.2 /a.htm 304 0 10 Opera",
            "2007-01-16 10:00:02 10.0.0.1 /gone 404 10 40 Mozilla"});
  Read(1, 2007);
  ASSERT_EQ(rows_.size(), 1U);
  EXPECT_EQ(rows_[0].mon, 1);
  EXPECT_EQ(rows_[0].yr, 2007);
  EXPECT_EQ(rows_[0].bytes, 1510.0);
  EXPECT_EQ(rows_[0].hits, 4.0);
  EXPECT_EQ(rows_[0].pages, 1.0);
  EXPECT_EQ(rows_[0].upages, 2.0) << "distinct URLs that succeeded";
  EXPECT_EQ(rows_[0].responseTime, 100.0);
  EXPECT_EQ(rows_[0].visitors, 2.0);
  EXPECT_EQ(rows_[0].visits, 2.0);
  EXPECT_EQ(rows_[0].files, 2.0);
}

// One visit in each of three rows of the breakdown, and a robot's: no row but that of all visits
// holds four.
TEST_F(MonthOutcome, HistoryRowCountsTheVisitsOfEveryLengthAndOfRobots) {
  AddLines(
      "ex070115.log",
      {"#Fields: date time c-ip cs-uri-stem cs(User-Agent)",
       "2007-01-15 10:00:00 10.0.0.1 /a Mozilla", "2007-01-15 10:00:00 10.0.0.2 /a Mozilla",
       "2007-01-15 10:05:00 10.0.0.2 /b Mozilla", "2007-01-15 10:05:00 10.0.0.3 /a Mozilla",
       "2007-01-15 10:30:00 10.0.0.3 /a Mozilla", "2007-01-15 10:30:00 10.0.0.4 /a Examplebot"});
  Read(1, 2007);
  ASSERT_EQ(mdlVisit::NonRobotVisitLengths()[0].Visits, 3);
  ASSERT_EQ(rows_.size(), 1U);
  EXPECT_EQ(rows_[0].visits, 4.0);
}

TEST_F(MonthOutcome, MonthWithoutLogsHasNoHits) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "a /x"});
  Read(6, 2009);
  EXPECT_EQ(Month().TotalHits, 0.0F);
  EXPECT_EQ(Month().SuccessUrls.Count(), 0);
  ASSERT_EQ(rows_.size(), 2U);
  EXPECT_EQ(rows_[1].mon, 6);
  EXPECT_EQ(rows_[1].yr, 2009);
  EXPECT_EQ(rows_[1].hits, 0.0);
  EXPECT_EQ(rows_[1].visits, 0.0);
}

TEST_F(MonthOutcome, VisitsOfTheMonthBeforeAreForgotten) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "a /x"});
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Visits, 1);
  Read(1, 2007);
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Visits, 1);
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

TEST_F(MonthOutcome, AllFilesAddIntoOneMonth) {
  AddLines("ex070115.log", {"#Fields: c-ip cs-uri-stem", "a /x"});
  AddLines("u_ex070115.log", {"#Fields: c-ip cs-uri-stem", "b /x", "b /y"});
  Read(1, 2007);
  EXPECT_EQ(Month().TotalHits, 3.0F);
  EXPECT_EQ(Month().ClientAddresses.Count(), 2);
}

TEST_F(MonthOutcome, OnlyTheDaysAskedForCount) {
  AddLines("ex070110.log", {"#Fields: c-ip cs-uri-stem", "a /x"});
  AddLines("ex070111.log", {"a /x"});
  AddLines("ex070120.log", {"a /x"});
  AddLines("ex070121.log", {"a /x"});
  Read(1, 2007, 11, 20);
  EXPECT_EQ(DaysWithHits(), (std::vector<int>{11, 20}));
}

using StatusAndQuit = ReaderTest;

TEST_F(StatusAndQuit, StatusNamesTheFileBeingRead) {
  List shown;
  State().Ui.show_status = [&shown](const std::string& text) { shown.push_back(text); };
  AddLog("ex070115.log", "");
  AddLog("U_EX070116.log", "");
  AddLog("ex070201.log", "");
  Read(1, 2007);
  EXPECT_EQ(shown,
            (List{"Reading ex070115.log", "Reading U_EX070116.log", "Reading ex070201.log"}));
}

TEST_F(StatusAndQuit, BatchRunShowsNoStatus) {
  List shown;
  State().Ui.show_status = [&shown](const std::string& text) { shown.push_back(text); };
  State().BatchMode = true;
  AddLog("ex070115.log", "");
  Read(1, 2007);
  EXPECT_EQ(shown, List{});
}

TEST_F(StatusAndQuit, PendingEventsAreProcessedOncePerFileAfterItsOpening) {
  std::vector<std::size_t> opened_at_event;
  State().Ui.process_pending_events = [&] { opened_at_event.push_back(files_.opened.size()); };
  AddLines("ex070115.log", {"#Fields: c-ip cs-uri-stem", "a /x", "a /y"});
  AddLog("ex070116.log", "");
  Read(1, 2007);
  EXPECT_EQ(opened_at_event, (std::vector<std::size_t>{1, 2}));
}

TEST_F(StatusAndQuit, WindowsStayResponsiveWhileALongFileIsRead) {
  std::vector<float> hits_at_call;
  State().Ui.stay_responsive = [&] { hits_at_call.push_back(mdlMonth::Month().TotalHits); };
  std::string log = "#Fields: c-ip cs-uri-stem\n";
  for (int line = 0; line < 60000; ++line) log += "a /x\n";
  AddLog("ex070115.log", log);
  Read(1, 2007);
  ASSERT_GT(hits_at_call.size(), 2U);
  EXPECT_GT(hits_at_call.front(), 0);
  EXPECT_LT(hits_at_call.front(), 60000);
}

TEST_F(StatusAndQuit, QuitInMidFileEndsTheReading) {
  State().Ui.stay_responsive = [] { State().Ui.quit_requested = true; };
  std::string log = "#Fields: c-ip cs-uri-stem\n";
  for (int line = 0; line < 60000; ++line) log += "a /x\n";
  AddLog("ex070115.log", log);
  Read(1, 2007);
  EXPECT_LT(mdlMonth::Month().TotalHits, 60000);
  EXPECT_TRUE(rows_.empty());
}

TEST_F(StatusAndQuit, RequestTakesEffectAtTheFirstLineOfTheFileWhereItArrives) {
  int events = 0;
  State().Ui.process_pending_events = [&events] {
    if (++events == 2) State().Ui.quit_requested = true;
  };
  AddLines("ex070114.log", {"#Fields: c-ip cs-uri-stem", "a /first"});
  AddLines("ex070115.log", {"a /second"});
  AddLines("ex070116.log", {"a /third"});
  Read(1, 2007);
  EXPECT_EQ(Opened(), (List{"ex070114.log", "ex070115.log"}));
  EXPECT_EQ(Urls(), List{"/first"});
  EXPECT_TRUE(rows_.empty()) << "no history row after a quit";
  EXPECT_EQ(mdlVisit::AllVisitLengths()[0].Visits, 0) << "open visits stay open";
}

TEST_F(StatusAndQuit, RequestInANeighbourFileEndsTheMonthToo) {
  clock_.bias_minutes = -60;
  State().Ui.process_pending_events = [] { State().Ui.quit_requested = true; };
  AddLog("ex061231.log", "");
  AddLog("u_ex061231.log", "");
  AddLog("ex070101.log", "");
  Read(1, 2007);
  EXPECT_EQ(Opened(), List{"ex061231.log"});
  EXPECT_TRUE(rows_.empty());
}

TEST_F(StatusAndQuit, RequestIsLookedAtAfterAFileOnly) {
  State().Ui.quit_requested = true;
  Read(1, 2007);
  EXPECT_EQ(rows_.size(), 1U) << "no file, no look at the flag";
}

using FileErrors = ReaderTest;

TEST_F(FileErrors, UnopenableFileIsSkippedSilently) {
  AddLines("ex070114.log", {"#Fields: c-ip cs-uri-stem", "a /lost"});
  AddLines("ex070115.log", {"#Fields: c-ip cs-uri-stem", "a /read"});
  files_.open_failures[PathOf("ex070114.log")] = 5;
  Read(1, 2007);
  EXPECT_EQ(Urls(), List{"/read"});
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_EQ(rows_.size(), 1U);
}

TEST_F(FileErrors, UnopenableFileIsNamedInTheDiagnosticLog) {
  AddLog("ex070114.log", "");
  files_.open_failures[PathOf("ex070114.log")] = 5;
  State().LogTranslations = true;
  Read(1, 2007);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "HitwickError on open of  " + PathOf("ex070114.log") + " : " +
                                      mod_systemInfo::GetErrorText(5));
}

TEST_F(FileErrors, BrokenReadKeepsTheLinesBeforeIt) {
  const std::string good = "#Fields: c-ip cs-uri-stem\na /one\na /two\n";
  AddLog("ex070114.log", good + "a /lost\na /lost\n");
  AddLog("ex070115.log", "a /next\n");
  files_.read_failures[PathOf("ex070114.log")] = {5, good.size()};
  Read(1, 2007);
  EXPECT_EQ(Urls(), (List{"/one", "/two", "/next"}));
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(FileErrors, BrokenReadDropsTheLineThatItCutShort) {
  const std::string read = "#Fields: c-ip cs-uri-stem\na /one\na /two";
  AddLog("ex070114.log", read + "-and-more\n");
  AddLog("ex070115.log", "a /next\n");
  files_.read_failures[PathOf("ex070114.log")] = {5, read.size()};
  Read(1, 2007);
  EXPECT_EQ(Urls(), (List{"/one", "/next"}));
}

TEST_F(FileErrors, BrokenReadOfAnOverlongLineEndsWithItsFile) {
  const std::string read = "#Fields: c-ip cs-uri-stem\na /one\n" + std::string(1'000'000, 'x');
  AddLog("ex070114.log", read + "\na /lost\n");
  AddLog("ex070115.log", "a /next\na /last\n");
  files_.read_failures[PathOf("ex070114.log")] = {5, read.size()};
  Read(1, 2007);
  EXPECT_EQ(Urls(), (List{"/one", "/next", "/last"}));
}

TEST_F(FileErrors, BrokenReadIsNamedInTheDiagnosticLog) {
  AddLog("ex070114.log", "#Fields: c-ip cs-uri-stem\n");
  files_.read_failures[PathOf("ex070114.log")] = {5, 10};
  State().LogTranslations = true;
  Read(1, 2007);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "HitwickError during read of  " + PathOf("ex070114.log") + " : " +
                                      mod_systemInfo::GetErrorText(5));
}

}  // namespace
