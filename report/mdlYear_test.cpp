#include "report/mdlYear.h"

#include <chrono>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/mod_systemInfo.h"
#include "report/report_fixture_test.h"

namespace {

using page_text::Contains;
using page_text::CountOf;
using stats::HistoryRow;

// Today is 15 March 2026.
class History : public ReportTest {
 protected:
  History() { mdlYear::LoadHistory(); }

  void Load(std::string_view content) {
    files_.AddFile(UsagePath("History.txt"), content);
    mdlYear::LoadHistory();
  }
  // The months whose slots are filled.
  static std::vector<int> Filled() {
    std::vector<int> months;
    for (int month = 1; month <= 12; ++month) {
      if (mdlYear::HistorySlot(month).yr != 0) months.push_back(month);
    }
    return months;
  }
  static HistoryRow Row(int month, int year) {
    return {static_cast<std::int16_t>(month),
            static_cast<std::int16_t>(year),
            1000,
            10,
            5,
            4,
            200,
            3,
            2,
            6};
  }
  static std::string SavingError(int error) {
    return "HitwickError saving past results " + UsagePath("History.txt") + " : " +
           mod_systemInfo::GetErrorText(error);
  }
  static std::string Page() {
    std::string page;
    mdlYear::WriteLast12Months(page);
    return page;
  }
};

using Months = std::vector<int>;
using List = std::vector<std::string>;

TEST_F(History, WindowIsThisYearAndTheLaterMonthsOfLastYear) {
  for (int month = 1; month <= 12; ++month) mdlYear::AddHistoryRow(Row(month, 2025));
  EXPECT_EQ(Filled(), (Months{4, 5, 6, 7, 8, 9, 10, 11, 12}));
  for (int month = 1; month <= 3; ++month) mdlYear::AddHistoryRow(Row(month, 2026));
  EXPECT_EQ(Filled().size(), 12u);
  EXPECT_EQ(mdlYear::HistorySlot(3).yr, 2026);
  EXPECT_EQ(mdlYear::HistorySlot(4).yr, 2025);
}

TEST_F(History, RowsOfOtherYearsAreDropped) {
  mdlYear::AddHistoryRow(Row(5, 2024));
  mdlYear::AddHistoryRow(Row(5, 2027));
  mdlYear::AddHistoryRow(Row(0, 2026));
  mdlYear::AddHistoryRow(Row(13, 2026));
  EXPECT_EQ(Filled(), Months{});
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(History, ALaterMonthOfThisYearIsKept) {
  mdlYear::AddHistoryRow(Row(12, 2026));
  EXPECT_EQ(Filled(), Months{12});
}

TEST_F(History, ARowReplacesTheOneOfItsMonth) {
  mdlYear::AddHistoryRow(Row(3, 2026));
  HistoryRow row = Row(3, 2026);
  row.hits = 77;
  mdlYear::AddHistoryRow(row);
  EXPECT_EQ(mdlYear::HistorySlot(3).hits, 77);
}

TEST_F(History, LoadReadsTheTenFieldsInOrder) {
  Load("2,2026,1500.5,20,7,6,350,4,5,9\r\n");
  const HistoryRow& row = mdlYear::HistorySlot(2);
  EXPECT_EQ(row.mon, 2);
  EXPECT_EQ(row.yr, 2026);
  EXPECT_EQ(row.bytes, 1500.5);
  EXPECT_EQ(row.hits, 20);
  EXPECT_EQ(row.pages, 7);
  EXPECT_EQ(row.upages, 6);
  EXPECT_EQ(row.responseTime, 350);
  EXPECT_EQ(row.visitors, 4);
  EXPECT_EQ(row.visits, 5);
  EXPECT_EQ(row.files, 9);
}

TEST_F(History, LoadTakesBlanksExponentsSignsAndBareLineFeeds) {
  Load(" 2 ,\t2026 , 1.5E+10,+2,3,4,5e2,6,7,8\n1,2026,1,2,3,4,5,6,7,8");
  EXPECT_EQ(Filled(), (Months{1, 2}));
  EXPECT_EQ(mdlYear::HistorySlot(2).bytes, 1.5e10);
  EXPECT_EQ(mdlYear::HistorySlot(2).hits, 2);
  EXPECT_EQ(mdlYear::HistorySlot(2).responseTime, 500);
}

TEST_F(History, LoadForgetsWhatWasThere) {
  mdlYear::AddHistoryRow(Row(3, 2026));
  Load("2,2026,1,1,1,1,1,1,1,1\r\n");
  EXPECT_EQ(Filled(), Months{2});
}

TEST_F(History, MissingFileLeavesAllSlotsEmptyWithoutAWord) {
  mdlYear::AddHistoryRow(Row(3, 2026));
  mdlYear::LoadHistory();
  EXPECT_EQ(Filled(), Months{});
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(History, LoadDropsRowsOutsideTheWindowAndGoesOn) {
  Load("5,2024,1,1,1,1,1,1,1,1\r\n4,0,0,0,0,0,0,0,0,0\r\n2,2026,1,1,1,1,1,1,1,1\r\n");
  EXPECT_EQ(Filled(), Months{2});
}

TEST_F(History, LoadEndsAtTheFirstLineThatIsNoRow) {
  const std::string good = "2,2026,1,1,1,1,1,1,1,1\r\n";
  const std::string after = "3,2026,1,1,1,1,1,1,1,1\r\n";
  for (const char* bad :
       {"1,2026,1,1,1,1,1,1,1", "", "1,2026,1,1,1,1,1,1,1,", "1,2026,x,1,1,1,1,1,1,1",
        "1,2026,1,1,1,1,1,1,1,1x", "0,2026,1,1,1,1,1,1,1,1", "13,2026,1,1,1,1,1,1,1,1",
        "1,40000,1,1,1,1,1,1,1,1", "1,2026,inf,1,1,1,1,1,1,1", "1,2026,nan,1,1,1,1,1,1,1",
        "1,2026,1e999,1,1,1,1,1,1,1", "1,2026,-nan,1,1,1,1,1,1,1", "1,2026,-1,1,1,1,1,1,1,1",
        "1,2026,1,1,1,1,1,1,1,-0.5", "1,2026,1,1,1,1,1,1000000000000001,1,1",
        "1,-2026,1,1,1,1,1,1,1,1"}) {
    Load(good + bad + "\r\n" + after);
    EXPECT_EQ(Filled(), Months{2}) << bad;
  }
}

TEST_F(History, TheLargestFigureAndZeroWithAMinusAreRead) {
  Load("2,2026,1e15,-0,1000000000000000,1,1,1,1,1\r\n");
  EXPECT_EQ(mdlYear::HistorySlot(2).bytes, 1e15);
  mdlYear::SaveHistory();
  EXPECT_TRUE(Contains(files_.Content(UsagePath("History.txt")),
                       "2,2026,1000000000000000,0,1000000000000000,1,"));
}

TEST_F(History, AMonthBeyondTheLargestFigureIsKeptAtIt) {
  HistoryRow row = Row(2, 2026);
  row.bytes = 3e15;
  mdlYear::AddHistoryRow(row);
  mdlYear::SaveHistory();
  mdlYear::LoadHistory();
  EXPECT_EQ(mdlYear::HistorySlot(2).bytes, 1e15);
}

TEST_F(History, LoadKeepsTheWholeLinesBeforeAReadError) {
  files_.read_failures[UsagePath("History.txt")] = {5, 48};
  Load("1,2026,1,1,1,1,1,1,1,1\r\n2,2026,1,1,1,1,1,1,1,123456\r\n");
  EXPECT_EQ(Filled(), Months{1});
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(History, SaveWritesTwelveLinesWithTheSlotsNumbers) {
  HistoryRow row = Row(2, 2026);
  row.bytes = 123456789012345;
  row.responseTime = 0.5;
  mdlYear::AddHistoryRow(row);
  mdlYear::SaveHistory();
  EXPECT_EQ(files_.Content(UsagePath("History.txt")),
            "1,0,0,0,0,0,0,0,0,0\r\n"
            "2,2026,123456789012345,10,5,4,0.5,3,2,6\r\n"
            "3,0,0,0,0,0,0,0,0,0\r\n4,0,0,0,0,0,0,0,0,0\r\n5,0,0,0,0,0,0,0,0,0\r\n"
            "6,0,0,0,0,0,0,0,0,0\r\n7,0,0,0,0,0,0,0,0,0\r\n8,0,0,0,0,0,0,0,0,0\r\n"
            "9,0,0,0,0,0,0,0,0,0\r\n10,0,0,0,0,0,0,0,0,0\r\n11,0,0,0,0,0,0,0,0,0\r\n"
            "12,0,0,0,0,0,0,0,0,0\r\n");
  EXPECT_FALSE(files_.Exists(UsagePath("Annual.csv")));
}

TEST_F(History, AnnualCsvIsTheHistoryUnderAHeader) {
  Settings().GenerateCSV = true;
  mdlYear::AddHistoryRow(Row(3, 2026));
  mdlYear::SaveHistory();
  EXPECT_EQ(files_.Content(UsagePath("Annual.csv")),
            "mon, yr, bytes, hits, pages, upages, responseTime, visitors, visits, files\r\n" +
                files_.Content(UsagePath("History.txt")));
}

TEST_F(History, OldAnnualCsvStaysWithoutCsvOutput) {
  files_.AddFile(UsagePath("Annual.csv"), "old");
  mdlYear::SaveHistory();
  EXPECT_EQ(files_.Content(UsagePath("Annual.csv")), "old");
}

TEST_F(History, SaveAndLoadGiveTheSameSlots) {
  HistoryRow row = Row(7, 2025);
  row.bytes = 1.0 / 3;
  row.hits = 16777217;
  mdlYear::AddHistoryRow(row);
  mdlYear::SaveHistory();
  mdlYear::LoadHistory();
  EXPECT_EQ(Filled(), Months{7});
  EXPECT_EQ(mdlYear::HistorySlot(7).bytes, 1.0 / 3);
  EXPECT_EQ(mdlYear::HistorySlot(7).hits, 16777217);
}

TEST_F(History, FailedSaveIsLoggedAndLeavesTheOldFiles) {
  Settings().GenerateCSV = true;
  const std::string old = "2,2026,1,1,1,1,1,1,1,1\r\n";
  files_.AddFile(UsagePath("History.txt"), old);
  files_.AddFile(UsagePath("Annual.csv"), "old too");
  for (auto* failures : {&files_.create_failures, &files_.commit_failures}) {
    log_.Clear();
    (*failures)[UsagePath("History.txt")] = 13;
    EXPECT_EQ(mdlYear::SaveHistory(), 1);
    failures->clear();
    EXPECT_EQ(log_.Texts(), List{SavingError(13)});
    EXPECT_TRUE(log_.ContainsWarning(SavingError(13)));
    EXPECT_EQ(files_.Content(UsagePath("History.txt")), old);
    EXPECT_EQ(files_.Content(UsagePath("Annual.csv")), "old too");
  }
}

TEST_F(History, FailedAnnualCsvKeepsTheNewHistoryAndNamesIt) {
  Settings().GenerateCSV = true;
  files_.create_failures[UsagePath("Annual.csv")] = 13;
  EXPECT_EQ(mdlYear::SaveHistory(), 1);
  EXPECT_TRUE(Contains(files_.Content(UsagePath("History.txt")), "1,0,0,"));
  EXPECT_TRUE(log_.ContainsWarning(SavingError(13)));
}

TEST_F(History, AFileThatCannotBeReadIsNeverReplaced) {
  Settings().GenerateCSV = true;
  const std::string old = "2,2026,1,1,1,1,1,1,1,1\r\n1,2026,1,1,1,1,1,1,1,1\r\n";
  const auto run = [&] {
    log_.Clear();
    mdlYear::LoadHistory();
    mdlYear::AddHistoryRow(Row(3, 2026));
    return mdlYear::SaveHistory();
  };
  files_.AddFile(UsagePath("History.txt"), old);
  files_.open_failures[UsagePath("History.txt")] = 13;
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(log_.Texts(), List{SavingError(13)});
  files_.open_failures.clear();
  files_.read_failures[UsagePath("History.txt")] = {5, 30};
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(log_.Texts(), List{SavingError(5)});
  EXPECT_EQ(Filled(), (Months{2, 3})) << "what could be read is shown";
  EXPECT_EQ(files_.Content(UsagePath("History.txt")), old);
  EXPECT_TRUE(files_.committed.empty()) << "no Annual.csv either";
}

TEST_F(History, AReadingErrorThatHasPassedLosesNothing) {
  files_.open_failures[UsagePath("History.txt")] = 13;
  Load("2,2026,1,1,1,1,1,1,1,1\r\n");
  mdlYear::AddHistoryRow(Row(3, 2026));
  files_.open_failures.clear();
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_EQ(Filled(), (Months{2, 3}));
}

TEST_F(History, AFileWithABrokenLineIsKeptBeforeItIsReplaced) {
  const std::string broken = "2,2026,1,1,1,1,1,1,1,1\r\nnonsense\r\n1,2026,1,1,1,1,1,1,1,1\r\n";
  Load(broken);
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_FALSE(files_.Exists(UsagePath("History.old")));
  mdlYear::AddHistoryRow(Row(3, 2026));
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_EQ(files_.Content(UsagePath("History.old")), broken);
  EXPECT_EQ(Filled(), (Months{2, 3}));
  ASSERT_EQ(log_.entries.size(), 1u);
  EXPECT_TRUE(log_.ContainsWarning(
      "Hitwick: Line 2 of " + UsagePath("History.txt") +
      " is no row of the history; it and the lines below it are dropped. The file as it was is "
      "kept as " +
      UsagePath("History.old")));
}

TEST_F(History, TheKeptFileIsNotReplacedByALaterOne) {
  files_.AddFile(UsagePath("History.old"), "the first");
  Load("nonsense\r\n");
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_EQ(files_.Content(UsagePath("History.old")), "the first");
  EXPECT_TRUE(
      log_.ContainsWarning("Hitwick: Line 1 of " + UsagePath("History.txt") +
                           " is no row of the history; it and the lines below it are dropped. " +
                           UsagePath("History.old") + " is there already and stays as it is"));
}

TEST_F(History, ABrokenFileThatCannotBeKeptIsNotReplaced) {
  files_.create_failures[UsagePath("History.old")] = 28;
  Load("nonsense\r\n");
  EXPECT_EQ(mdlYear::SaveHistory(), 1);
  EXPECT_EQ(log_.Texts(), List{SavingError(28)});
  EXPECT_EQ(files_.Content(UsagePath("History.txt")), "nonsense\r\n");
}

TEST_F(History, BlankLinesAtTheEndAreNothingToKeep) {
  Load("2,2026,1,1,1,1,1,1,1,1\r\n\r\n  \r\n");
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_FALSE(files_.Exists(UsagePath("History.old")));
}

// Two runs on one usage folder: what the other one saved meanwhile stays, but for the months that
// this one has reported.
TEST_F(History, RowsSavedByAnotherRunMeanwhileAreKept) {
  Settings().GenerateCSV = true;
  Load("1,2026,1,1,1,1,1,1,1,1\r\n2,2026,2,2,2,2,2,2,2,2\r\n");
  mdlYear::AddHistoryRow(Row(3, 2026));
  files_.on_lock = [this] {
    files_.AddFile(UsagePath("History.txt"),
                   "1,2026,9,9,9,9,9,9,9,9\r\n3,2026,8,8,8,8,8,8,8,8\r\n"
                   "12,2025,7,7,7,7,7,7,7,7\r\n");
  };
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_EQ(Filled(), (Months{1, 3, 12})) << "and what the other run dropped is gone";
  const std::string saved = files_.Content(UsagePath("History.txt"));
  EXPECT_TRUE(Contains(saved, "1,2026,9,9,"));
  EXPECT_TRUE(Contains(saved, "3,2026,1000,10,"));
  EXPECT_TRUE(Contains(saved, "12,2025,7,7,"));
  EXPECT_TRUE(Contains(files_.Content(UsagePath("Annual.csv")), "12,2025,7,7,"));
  EXPECT_TRUE(files_.locked.empty());
}

// A catch-up that began in February meets the nightly run of March.
TEST_F(History, ALaterYearsRowSavedMeanwhileIsKept) {
  clock_.local = {2026, 2, 28, 23, 59, 0};
  mdlYear::LoadHistory();
  for (const int month : {3, 4}) mdlYear::AddHistoryRow(Row(month, 2025));
  clock_.local = {2026, 3, 1, 0, 1, 0};
  files_.on_lock = [this] {
    files_.AddFile(UsagePath("History.txt"), "3,2026,8,8,8,8,8,8,8,8\r\n");
  };
  EXPECT_EQ(mdlYear::SaveHistory(), 0);
  EXPECT_EQ(mdlYear::HistorySlot(3).yr, 2026);
  EXPECT_EQ(mdlYear::HistorySlot(4).yr, 2025);
}

TEST_F(History, ALaterYearsRowThatWasThereBeforeIsReplaced) {
  Load("6,2026,8,8,8,8,8,8,8,8\r\n");
  mdlYear::AddHistoryRow(Row(6, 2025));
  mdlYear::SaveHistory();
  EXPECT_EQ(mdlYear::HistorySlot(6).yr, 2025);
}

TEST_F(History, ASaveWithoutTheLockFails) {
  files_.locked.insert("usage");
  mdlYear::AddHistoryRow(Row(3, 2026));
  EXPECT_EQ(mdlYear::SaveHistory(), 1);
  EXPECT_EQ(files_.waited, std::chrono::seconds(30));
  EXPECT_EQ(log_.Texts(), List{SavingError(platform::kLockBusyError)});
  EXPECT_TRUE(files_.committed.empty());
  EXPECT_EQ(mdlYear::HoldHistory(), nullptr);
  EXPECT_EQ(log_.entries.size(), 1u) << "nobody waits again";
}

TEST_F(History, ThePageShowsWhatTheFileHoldsWhenItIsWritten) {
  EXPECT_EQ(mdlYear::HoldHistory(), nullptr) << "nothing saved yet";
  mdlYear::AddHistoryRow(Row(3, 2026));
  mdlYear::SaveHistory();
  files_.on_lock = [this] {
    files_.AddFile(UsagePath("History.txt"), "12,2025,7,7,7,7,7,7,7,7\r\n");
  };
  const auto held = mdlYear::HoldHistory();
  EXPECT_NE(held, nullptr);
  EXPECT_EQ(files_.locked.size(), 1u);
  EXPECT_EQ(Filled(), Months{12});
}

TEST_F(History, APageWithoutTheLockShowsTheRowsSaved) {
  mdlYear::AddHistoryRow(Row(3, 2026));
  mdlYear::SaveHistory();
  files_.locked.insert("usage");
  EXPECT_EQ(mdlYear::HoldHistory(), nullptr);
  EXPECT_EQ(log_.CountWith("Other runs may have changed the history"), 1);
  EXPECT_EQ(Filled(), Months{3});
}

std::string YearBar(int height, const std::string& colour) {
  return "<td  style=\"vertical-align:bottom; height:300px\"><div style=\"height:" +
         std::to_string(height) + "; background-color:" + colour +
         "; font-size:0pt; width:100%\"><br></div>\r\n";
}

// The frame of the page around the chart's bars, the scales and the rows of the table.
std::string ExpectedYearPage(const std::string& bars, const std::string& legend,
                             const std::string& rows, const std::string& link) {
  std::string labels;
  for (const char* month :
       {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"}) {
    labels += "<td colspan=5><tt><b>" + std::string(month) + "</b></tt></td>\r\n";
  }
  return "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">\r\n"
         "<html><head><title>Usage statistics for reporter - last 12 months</title>\r\n"
         "<META HTTP-EQUIV=\"Refresh\" CONTENT=\"21600\">\r\n"
         "<META HTTP-EQUIV=\"Expires\" CONTENT=\"Mon, 16 Mar 2026 09:30:30 GMT\">\r\n"
         "<meta http-equiv=\"content-type\" content=\"text/html;charset=utf-8\"></head>\r\n"
         "<BODY BGCOLOR=silver TEXT=\"#000000\" LINK=\"#0000FF\" VLINK=\"#FF0000\">\r\n"
         "<H2>Usage Statistics for reporter (shop)</H2>\r\n"
         "<SMALL><STRONG>Summary Period: Last 12 Months<BR>Generated 15-" +
         platform::MonthAbbreviation(3) +
         "-2026 10:20<BR></STRONG></SMALL>\r\n<HR><center>\r\n"
         "<table width=\"90%\" border=1 rules=groups frame=box cellpadding=0>\r\n"
         "<caption><b>Usage summary for reporter</b>" +
         link +
         "</caption>\r\n"
         "<tfoot>\r\n<tr align=left><td></td>\r\n" +
         labels +
         "</tr>\r\n</tfoot>\r\n<tbody>\r\n"
         "<tr><td style=\"width:1px; border-left:1px solid black\"><br></td><!-- Axis-->\r\n" +
         bars +
         "</tbody>\r\n</table>\r\n"
         "<table width=\"90%\"><tr><td>100%=</td>\r\n" +
         legend +
         "</tr></table>\r\n"
         "<table border=1 rules=all width=\"90%\">\r\n"
         "<caption><b>By month summary</b></caption>\r\n"
         "<thead>\r\n"
         "<tr><th></th><th colspan=4>Daily average</th><th colspan=7>Monthly totals</th></tr>\r\n"
         "<tr><th>Month</th><th bgcolor=green>Hits</th><th bgcolor=blue>Files</th>"
         "<th bgcolor=lightblue>Pages</th><th bgcolor=red>KBytes</th>"
         "<th bgcolor=orange>Distinct Visitors</th><th bgcolor=yellow>Visits</th>"
         "<th bgcolor=green>Hits</th><th bgcolor=blue>Files</th>"
         "<th bgcolor=lightblue>Unique Pages</th><th bgcolor=red>KBytes</th>"
         "<th bgcolor=pink>mS</th></tr>\r\n"
         "</thead><tbody>\r\n" +
         rows +
         "  </tbody></table>\r\n"
         "</center><hr><small>Generated by <a href=\"https://hitwick.example/\">Hitwick</a> "
         "(0.1.0) </small>\r\n</body></html>\r\n";
}

// February: 2,000,500 bytes, 280 hits, 56 pages, 30 distinct pages, 42,000 ms, 20 visitors,
// 25 visits, 140 files in 28 days. March: 15 days so far, 100 hits without a response time.
TEST_F(History, WholePageOfTwoMonths) {
  mdlConfigs::Run().SiteName = "shop";
  mdlYear::AddHistoryRow({2, 2026, 2000500, 280, 56, 30, 42000, 20, 25, 140});
  mdlYear::AddHistoryRow({3, 2026, 22500, 100, 30, 12, 0, 3, 7, 75});
  std::string bars;
  for (int month = 1; month <= 12; ++month) {
    // Full scales: 300 hits, 3,000,000 bytes, 30 visitors, 300 ms.
    bars += YearBar(month == 2 ? 280 : month == 3 ? 100 : 0, "green");
    bars += YearBar(month == 2 ? 200 : month == 3 ? 2 : 0, "red");  // 200.05, 2.25
    bars += YearBar(month == 2 ? 200 : month == 3 ? 30 : 0, "orange");
    bars += YearBar(month == 2 ? 150 : 0, "pink");
    bars += "<td style=\"width:1px\"><br></td><!-- separator -->\r\n";
  }
  const std::string legend =
      "<td><font color=green>300 Hits</font></td>\r\n"
      "<td><font color=red>3000000 Bytes</font></td>\r\n"
      "<td><font color=orange>30 Visitors</font></td>\r\n"
      "<td><font color=salmon>300 mS Ave Response</font></td>\r\n";
  const std::string feb = platform::MonthAbbreviation(2);
  const std::string mar = platform::MonthAbbreviation(3);
  const std::string rows =
      "<tr align=right><td><a href=" + feb + ".htm>" + feb +
      " 2026</a></td><td>10</td><td>5</td><td>2</td><td>71</td><td>20</td><td>25</td><td>280</td>"
      "<td>140</td><td>30</td><td>2000</td><td>150</td></tr>\r\n"
      "<tr align=right><td><a href=" +
      mar + ".htm>" + mar +
      " 2026</a></td><td>7</td><td>5</td><td>2</td><td>2</td><td>3</td><td>7</td><td>100</td>"
      "<td>75</td><td>12</td><td>22</td><td>0</td></tr>\r\n";
  EXPECT_EQ(Page(), ExpectedYearPage(bars, legend, rows, ""));
  Settings().GenerateCSV = true;
  EXPECT_EQ(Page(), ExpectedYearPage(bars, legend, rows,
                                     " <small><a href=\"Annual.csv\">(Download)</a></small>"));
}

TEST_F(History, EmptyYearHasScalesOfOneAndNoRows) {
  const std::string page = Page();
  EXPECT_EQ(CountOf(page, "<div style=\"height:0;"), 48u);
  EXPECT_TRUE(Contains(page, "<td><font color=green>1 Hits</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=red>1 Bytes</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=orange>1 Visitors</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=salmon>1 mS Ave Response</font></td>"));
  EXPECT_FALSE(Contains(page, "<tr align=right>"));
}

TEST_F(History, DefaultSiteHasNoLabel) {
  mdlConfigs::Run().SiteName = "ini";
  EXPECT_TRUE(Contains(Page(), "<H2>Usage Statistics for reporter</H2>"));
}

// The yearly page names no zone, whatever the setting, and shows the local clock.
TEST_F(History, GeneratedShowsTheLocalClockInUtcModeToo) {
  Settings().UseUTC = true;
  const std::string page = Page();
  EXPECT_TRUE(Contains(page, "-2026 10:20<BR></STRONG>"));
  EXPECT_FALSE(Contains(page, "UTC"));
}

TEST_F(History, LeapYearFebruaryAveragesOverTwentyNineDays) {
  clock_.local = {2024, 3, 15, 10, 20, 30};
  mdlYear::AddHistoryRow({2, 2024, 0, 290, 0, 0, 0, 0, 0, 0});
  EXPECT_TRUE(Contains(Page(), " 2024</a></td><td>10</td>"));
}

TEST_F(History, MonthWithoutHitsHasNoResponseTime) {
  mdlYear::AddHistoryRow({2, 2026, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_TRUE(Contains(Page(), "<td>0</td></tr>\r\n  </tbody>"));
}

}  // namespace
