#include "app/run_driver.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/run_fixture.h"

namespace {

using mdlConfigs::WriteLast12MonthsPage;
using mdlConfigs::WriteMonthReport;
using platform::EventLevel;

class DriverTest : public RunTest {
 protected:
  DriverTest() { UseLoadedSettings(); }

  static int RunMonths(int first_month, int first_year, int last_month, int last_year) {
    return mdlConfigs::RunPeriod(1, 31, Short(first_month), Short(last_month), Short(first_year),
                                 Short(last_year));
  }
  // Some days of January 2026.
  static int RunDays(int first_day, int last_day) {
    return mdlConfigs::RunPeriod(Short(first_day), Short(last_day), 1, 1, 2026, 2026);
  }
  static std::int16_t Short(int number) { return static_cast<std::int16_t>(number); }
  void AddLog(const std::string& name, const std::string& lines) {
    files_.AddFile(platform::JoinPath("logs", name), "#Fields: c-ip cs-uri-stem\n" + lines);
  }
  static std::string FailureEntry(const std::string& path, int error) {
    return "HitwickError generating usage report " + path + " : " +
           mod_systemInfo::GetErrorText(error);
  }
};

using RunPeriodTest = DriverTest;
using MonthReport = DriverTest;
using Last12Months = DriverTest;
using FailingPages = DriverTest;

TEST_F(RunPeriodTest, OneMonth) {
  EXPECT_EQ(RunMonths(1, 2026, 1, 2026), 0);
  EXPECT_EQ(log_.Texts(), MonthEntries({1}));
  for (const auto& entry : log_.entries) EXPECT_EQ(entry.level, EventLevel::kInformation);
}

TEST_F(RunPeriodTest, WalksOverTheYearsEnd) {
  RunMonths(11, 2025, 2, 2026);
  EXPECT_EQ(log_.Texts(), MonthEntries({11, 12, 1, 2}));
}

TEST_F(RunPeriodTest, SameMonthOfTwoYearsMakesThirteen) {
  RunMonths(4, 2025, 4, 2026);
  EXPECT_EQ(log_.Texts(), MonthEntries({4, 5, 6, 7, 8, 9, 10, 11, 12, 1, 2, 3, 4}));
}

TEST_F(RunPeriodTest, ReadsTheLogsOfEveryMonth) {
  AddLog("ex251215.log", "a /december\n");
  AddLog("ex260115.log", "a /january\na /january\n");
  RunMonths(12, 2025, 1, 2026);
  EXPECT_EQ(mdlMonth::Month().TotalHits, 2.0F) << "the last month stays in memory";
  EXPECT_NE(files_.Content(PageOfMonth(12)).find("/december"), std::string::npos);
  EXPECT_NE(files_.Content(PageOfMonth(1)).find("/january"), std::string::npos);
  EXPECT_EQ(files_.Content(PageOfMonth(1)).find("/december"), std::string::npos);
}

TEST_F(RunPeriodTest, DayRangeHoldsInEveryMonth) {
  for (const char* name : {"ex260104.log", "ex260105.log", "ex260110.log", "ex260111.log"}) {
    AddLog(name, "a /x\n");
  }
  RunDays(5, 10);
  EXPECT_EQ(mdlMonth::Month().TotalHits, 2.0F);
}

TEST_F(RunPeriodTest, HistoryIsReadBeforeAndUpdatedAfter) {
  files_.AddFile(UsagePath("History.txt"), "11,2025,1000,7,3,2,50,4,5,6\r\n");
  AddLog("ex260115.log", "a /x\n");
  RunMonths(1, 2026, 1, 2026);
  const std::string history = files_.Content(UsagePath("History.txt"));
  EXPECT_NE(history.find("11,2025,1000,7,3,2,50,4,5,6\r\n"), std::string::npos);
  EXPECT_EQ(history.rfind("1,2026,0,1,", 0), 0U) << history;
}

TEST_F(RunPeriodTest, OtherFormatsReadAndWriteNoMonth) {
  State().Settings.LogFormat = "w3c";
  AddLog("ex260115.log", "a /x\n");
  EXPECT_EQ(RunMonths(12, 2025, 1, 2026), 0);
  EXPECT_EQ(log_.Texts(), MonthEntries({}));
  EXPECT_FALSE(files_.Exists(PageOfMonth(1)));
  EXPECT_TRUE(files_.Exists(UsagePath("History.txt")));
}

TEST_F(RunPeriodTest, WritesNoIndexItself) {
  RunMonths(1, 2026, 1, 2026);
  EXPECT_FALSE(files_.Exists(UsagePath("index.htm")));
}

TEST_F(RunPeriodTest, LetsTheWindowsReactBetweenTheMonths) {
  int events = 0;
  State().Ui.process_pending_events = [&events] { ++events; };
  RunMonths(11, 2025, 2, 2026);
  EXPECT_EQ(events, 3) << "no logs, so no events from files";
}

TEST_F(RunPeriodTest, TellsHowManyMonthsAreDone) {
  std::vector<std::pair<int, int>> shown;
  State().Ui.show_months_done = [&shown](int done, int all) { shown.emplace_back(done, all); };
  RunMonths(11, 2025, 1, 2026);
  EXPECT_EQ(shown, (std::vector<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
}

TEST_F(RunPeriodTest, QuittingBetweenMonthsKeepsWhatIsDone) {
  AddLog("ex251115.log", "a /november\n");
  int events = 0;
  State().Ui.process_pending_events = [&events] { State().Ui.quit_requested = ++events == 2; };
  RunMonths(11, 2025, 2, 2026);
  EXPECT_EQ(files_.committed, (List{PageOfMonth(11), UsagePath("History.txt")}));
}

TEST_F(RunPeriodTest, QuittingWithinAMonthMakesNoPageOfHalfAMonth) {
  AddLog("ex251115.log", "a /november\n");
  AddLog("ex251215.log", "a /december\n");
  AddLog("ex251216.log", "a /december\n");
  State().Ui.process_pending_events = [this] {
    if (files_.opened.size() == 3) State().Ui.quit_requested = true;
  };
  RunMonths(11, 2025, 2, 2026);
  EXPECT_EQ(files_.committed, (List{PageOfMonth(11), UsagePath("History.txt")}));
  const std::string history = files_.Content(UsagePath("History.txt"));
  State().Ui = {};
  RunMonths(11, 2025, 11, 2025);
  EXPECT_EQ(history, files_.Content(UsagePath("History.txt"))) << "no row of the second month";
}

TEST_F(RunPeriodTest, OnDemandLeavesTheHistoryAlone) {
  State().OnDemandMode = true;
  State().ReportName = "first week";
  AddLog("ex260103.log", "a /x\n");
  EXPECT_EQ(RunDays(1, 7), 0);
  EXPECT_EQ(log_.Texts(), (List{"Hitwick: Logfiles will be read from logs",
                                "Hitwick: month report created : " + UsagePath("first week.htm")}));
  EXPECT_EQ(files_.committed, List{UsagePath("first week.htm")});
}

TEST_F(MonthReport, StandsUnderTheMonthsAbbreviatedName) {
  EXPECT_EQ(WriteMonthReport(1, 31, 9, 2025), 0);
  EXPECT_EQ(files_.committed, List{PageOfMonth(9)});
  EXPECT_EQ(log_.Texts(), List{"Hitwick: month report created : " + PageOfMonth(9)});
}

TEST_F(MonthReport, WrittenPagesAreRemembered) {
  WriteMonthReport(1, 31, 9, 2025);
  EXPECT_TRUE(mdlConfigs::AllPagesWritten());
}

TEST_F(MonthReport, ReplacesThePageOfTheYearBefore) {
  files_.AddFile(PageOfMonth(9), "old");
  WriteMonthReport(1, 31, 9, 2025);
  EXPECT_NE(files_.Content(PageOfMonth(9)), "old");
}

TEST_F(MonthReport, StatusFollowsTheWriting) {
  CollectStatus();
  WriteMonthReport(1, 31, 9, 2025);
  EXPECT_EQ(statuses_, (List{"Formatting " + PageOfMonth(9), "Finished report " + PageOfMonth(9)}));
}

TEST_F(MonthReport, BatchRunShowsNoStatus) {
  CollectStatus();
  State().BatchMode = true;
  WriteMonthReport(1, 31, 9, 2025);
  EXPECT_TRUE(statuses_.empty());
}

TEST_F(Last12Months, IsTheIndexOfTheUsageFolder) {
  EXPECT_EQ(WriteLast12MonthsPage(), 0);
  EXPECT_EQ(files_.committed, List{UsagePath("index.htm")});
  ASSERT_EQ(log_.Texts(), List{"Hitwick: Usage reports will be created in usage"});
  EXPECT_EQ(log_.entries[0].level, EventLevel::kInformation);
}

TEST_F(Last12Months, OnDemandOnlyTheFolderIsNamed) {
  State().OnDemandMode = true;
  EXPECT_EQ(WriteLast12MonthsPage(), 0);
  EXPECT_TRUE(files_.committed.empty());
  EXPECT_EQ(log_.Texts(), List{"Hitwick: Usage reports will be created in usage"});
}

TEST_F(FailingPages, MonthPageThatCannotBeCreated) {
  CollectStatus();
  files_.create_failures[PageOfMonth(9)] = 5;
  EXPECT_EQ(WriteMonthReport(1, 31, 9, 2025), 1);
  ASSERT_EQ(log_.Texts(), (List{"Hitwick: month report created : " + PageOfMonth(9),
                                FailureEntry(PageOfMonth(9), 5)}));
  EXPECT_EQ(log_.entries[1].level, EventLevel::kWarning);
  EXPECT_EQ(statuses_, List{"Formatting " + PageOfMonth(9)});
  EXPECT_FALSE(mdlConfigs::AllPagesWritten());
  WriteMonthReport(1, 31, 10, 2025);
  EXPECT_FALSE(mdlConfigs::AllPagesWritten()) << "until it is reset";
}

TEST_F(FailingPages, MonthPageThatCannotBeWritten) {
  files_.append_failures[PageOfMonth(9)] = {5, 100};
  EXPECT_EQ(WriteMonthReport(1, 31, 9, 2025), 1);
  EXPECT_TRUE(log_.ContainsWarning(FailureEntry(PageOfMonth(9), 5)));
}

TEST_F(FailingPages, MonthPageThatCannotBePutInPlace) {
  files_.AddFile(PageOfMonth(9), "old");
  files_.commit_failures[PageOfMonth(9)] = 5;
  EXPECT_EQ(WriteMonthReport(1, 31, 9, 2025), 1);
  EXPECT_TRUE(log_.ContainsWarning(FailureEntry(PageOfMonth(9), 5)));
  EXPECT_EQ(files_.Content(PageOfMonth(9)), "old");
}

TEST_F(FailingPages, RunGoesOnWithTheNextMonth) {
  files_.create_failures[PageOfMonth(12)] = 5;
  EXPECT_EQ(RunMonths(11, 2025, 1, 2026), 0);
  EXPECT_EQ(log_.Texts(), (List{"Hitwick: Logfiles will be read from logs",
                                "Hitwick: month report created : " + PageOfMonth(11),
                                "Hitwick: month report created : " + PageOfMonth(12),
                                FailureEntry(PageOfMonth(12), 5),
                                "Hitwick: month report created : " + PageOfMonth(1)}));
  EXPECT_TRUE(files_.Exists(PageOfMonth(1)));
  EXPECT_TRUE(files_.Exists(UsagePath("History.txt")));
}

TEST_F(FailingPages, HistoryThatCannotBeWrittenCounts) {
  files_.create_failures[UsagePath("History.txt")] = 5;
  EXPECT_EQ(RunMonths(1, 2026, 1, 2026), 0);
  EXPECT_FALSE(mdlConfigs::AllPagesWritten());
}

TEST_F(FailingPages, AnnualCsvThatCannotBeWrittenCounts) {
  State().Settings.GenerateCSV = true;
  files_.create_failures[UsagePath("Annual.csv")] = 5;
  RunMonths(1, 2026, 1, 2026);
  EXPECT_FALSE(mdlConfigs::AllPagesWritten());
}

TEST_F(RunPeriodTest, LeftOversOfKilledRunsAreRemovedFirst) {
  const std::string mark = ".4711-0123456789abcdef.tmp";
  const List own = {"History.txt",
                    "History.old",
                    "Annual.csv",
                    "index.htm",
                    platform::MonthAbbreviation(7) + ".htm",
                    platform::MonthAbbreviation(1) + "-Summary.csv"};
  for (const std::string& name : own) files_.AddFile(UsagePath(name + mark), "half");
  files_.AddFile(UsagePath("other.htm" + mark), "half");
  files_.AddFile(UsagePath("mine.htm" + mark), "half");
  RunMonths(1, 2026, 1, 2026);
  EXPECT_EQ(files_.ListFiles("usage", "", ".tmp"), (List{"mine.htm" + mark, "other.htm" + mark}));
  State().OnDemandMode = true;
  State().ReportName = "mine";
  RunMonths(1, 2026, 1, 2026);
  EXPECT_EQ(files_.ListFiles("usage", "", ".tmp"), List{"other.htm" + mark});
}

TEST_F(Last12Months, ShowsTheRowsThatOtherRunsSaved) {
  RunMonths(1, 2026, 1, 2026);
  files_.AddFile(UsagePath("History.txt"), "11,2025,1000,4321,3,2,50,4,5,6\r\n");
  EXPECT_EQ(WriteLast12MonthsPage(), 0);
  EXPECT_NE(files_.Content(UsagePath("index.htm")).find("<td>4321</td>"), std::string::npos);
  EXPECT_TRUE(files_.locked.empty());
}

TEST_F(FailingPages, IndexThatCannotBeCreated) {
  files_.create_failures[UsagePath("index.htm")] = 5;
  EXPECT_EQ(WriteLast12MonthsPage(), 1);
  EXPECT_EQ(log_.Texts(), (List{"Hitwick: Usage reports will be created in usage",
                                FailureEntry(UsagePath("index.htm"), 5)}));
  EXPECT_EQ(log_.entries[1].level, EventLevel::kWarning);
}

}  // namespace
