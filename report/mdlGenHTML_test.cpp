#include "report/mdlGenHTML.h"

#include <string>
#include <vector>

#include "report/report_fixture_test.h"

namespace {

using page_text::Cells;
using page_text::Contains;
using page_text::CountOf;
using page_text::RankedRows;
using page_text::TableLines;

// Today is 15 March 2026.
class MonthPageText : public ReportTest {
 protected:
  static void AddTimes(int count, const stats::LogRecord& record) {
    for (int i = 0; i < count; ++i) Add(record);
  }
  static void AddReferrer(int count, std::string_view referrer) {
    stats::LogRecord record = Fetch("/");
    record.referrer = referrer;
    AddTimes(count, record);
  }
  static std::vector<std::string> Column(const std::vector<Cells>& rows, std::size_t column) {
    std::vector<std::string> cells;
    for (const Cells& row : rows) cells.push_back(row.at(column));
    return cells;
  }
};

using Strings = std::vector<std::string>;

TEST_F(MonthPageText, EmptyMonthIsAPageOfZeros) {
  const std::string page = JanuaryPage();
  EXPECT_EQ(CountOf(page, "<div style=\"height:0;"), 31u * 4 + 24 * 3);
  EXPECT_TRUE(Contains(page, "<td><font color=green>1 Hits</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=red>1 KBytes</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=salmon>1 mS</font></td>"));
  EXPECT_TRUE(Contains(page, "<td><font color=green>0.0 Hits/hour</font></td>"));  // 1 / 31
  EXPECT_TRUE(Contains(page, "Busiest single hour hits [max on 0:00-0:59 on 1-"));
  EXPECT_TRUE(Contains(page, "Hits per Day [max on 1-"));
  EXPECT_TRUE(Contains(page, "<td>Robots</td><td align=right>0 (0&nbsp;%)</td>"));
  EXPECT_FALSE(Contains(page, "nan"));
  EXPECT_FALSE(Contains(page, "inf"));
  EXPECT_FALSE(Contains(page, ">-"));
}

TEST_F(MonthPageText, EveryLineEndsWithCarriageReturnAndLineFeed) {
  Add(Fetch("/"));
  const std::string page = JanuaryPage();
  EXPECT_EQ(CountOf(page, "\n"), CountOf(page, "\r\n"));
  EXPECT_EQ(page.substr(page.size() - 2), "\r\n");
}

TEST_F(MonthPageText, DayThirtyOneIsDrawnAndListedInShortMonths) {
  ASSERT_TRUE(Write("Feb", {1, 31, 2, 2025}).ok);
  EXPECT_EQ(CountOf(page_, "</b></tt></td>"), 31u + 24);
  EXPECT_TRUE(Contains(page_, "<tr align=right><td>31</td><td>0</td><td>0%</td>"));
}

// 29 February 2025 is no date; it takes the colour of Saturday, 1 March.
TEST_F(MonthPageText, WeekendColourOfADayThatTheMonthLacks) {
  ASSERT_TRUE(Write("Feb", {1, 31, 2, 2025}).ok);
  EXPECT_TRUE(Contains(page_, "<b><font color=\"blue\">29</font></b>"));
  EXPECT_TRUE(Contains(page_, "<b><font color=\"blue\">30</font></b>"));
  EXPECT_TRUE(Contains(page_, "<b>31</b>"));
  EXPECT_TRUE(Contains(page_, "<b>&nbsp;<font color=\"blue\">1</font></b>"));
}

TEST_F(MonthPageText, CurrentMonthAveragesOverTheDaysSoFar) {
  AddTimes(30, Fetch("/"));
  ASSERT_TRUE(Write("Mar", {1, 31, 3, 2026}).ok);
  EXPECT_TRUE(Contains(page_, ">Total Hits</td><td align=right>2</td><td align=right>30</td>"));
}

TEST_F(MonthPageText, UtcModeShowsTheUtcClock) {
  Settings().UseUTC = true;
  EXPECT_TRUE(Contains(JanuaryPage(), "-2026 09:20 (UTC)<BR></STRONG></SMALL><HR><center>"));
}

TEST_F(MonthPageText, DefaultSiteInAnyCaseHasNoLabel) {
  for (const char* site : {"INI", "ini", "Ini"}) {
    mdlConfigs::Run().SiteName = site;
    EXPECT_TRUE(Contains(JanuaryPage(), " Usage Statistics for reporter</H2>"));
  }
}

TEST_F(MonthPageText, HostNameIsAskedForOncePerRun) {
  JanuaryPage();
  resolver_.local_name = "renamed";
  EXPECT_TRUE(Contains(JanuaryPage(), "<title>Usage statistics for reporter - "));
}

TEST_F(MonthPageText, WithoutFiltersThereIsNoFilterTable) {
  EXPECT_FALSE(Contains(JanuaryPage(), "name=filters"));
}

TEST_F(MonthPageText, UserNamesNeedTheirSetting) {
  Add(Fetch("/"));
  EXPECT_FALSE(Contains(JanuaryPage(), "name=usernames"));
  Settings().ShowUsernames = true;
  EXPECT_EQ(RankedRows(JanuaryPage(), "name=usernames"),
            (std::vector<Cells>{{"1", "1", "1", "Anonymous"}}));
}

TEST_F(MonthPageText, HourTwentyFourCountsInTheTotalsAlone) {
  stats::LogRecord record = Fetch("/");
  record.hour = 24;
  AddTimes(5, record);
  const std::string page = JanuaryPage();
  EXPECT_TRUE(Contains(page, "Total Hits</td><td align=right>0</td><td align=right>5</td>"));
  EXPECT_TRUE(Contains(page,
                       "Hits per Hour <small>(timeslot averaged over month)</small></td>"
                       "<td align=right>0.0</td>"));
  EXPECT_TRUE(Contains(page, "<tr align=right><td>23</td><td>0.0</td><td>0%</td>"));
  EXPECT_FALSE(Contains(page, "<tr align=right><td>24</td><td>0.0</td>"));
}

TEST_F(MonthPageText, TiesOfDaysGoToTheFirstAndOfHoursToTheLast) {
  for (const int day : {4, 9}) {
    stats::LogRecord record = Fetch("/");
    record.day = static_cast<std::int16_t>(day);
    record.hour = static_cast<std::int16_t>(day + 1);
    Add(record);
  }
  const std::string page = JanuaryPage();
  EXPECT_TRUE(Contains(page, "Busiest single hour hits [max on 10:00-10:59 on 9-"));
  EXPECT_TRUE(Contains(page, "Hits per Day [max on 4-"));
}

TEST_F(MonthPageText, ReturnCodesAndMethodsAreListedWhateverTheListSize) {
  Settings().MaxListSize = 1;
  Settings().GenerateCSV = true;
  for (const char* status : {"200", "404", "999", "20"}) {
    stats::LogRecord record = Fetch("/");
    record.status = status;
    record.method = std::string_view(status).substr(1);
    Add(record);
  }
  const std::string page = JanuaryPage();
  EXPECT_TRUE(Contains(page, "<tr><td>OK - 200</td><td align=right>1</td>"));
  EXPECT_TRUE(Contains(page, "<tr><td>Not Found - 404</td><td align=right>1</td>"));
  EXPECT_TRUE(Contains(page, "<tr><td>999</td><td align=right>1</td>"));
  EXPECT_TRUE(Contains(page, "<tr><td>20</td><td align=right>1</td>"));
  EXPECT_TRUE(Contains(page, "<tr><td>99</td><td align=right>1</td>"));
  EXPECT_TRUE(Contains(Csv("Summary"), "\"404\",\"Not Found\",1,1\r\n\"999\",\"\",1,1\r\n"));
}

TEST_F(MonthPageText, ReferringSitesAreCutAtThePathAndTalliedFromAllReferrers) {
  Settings().MaxListSize = 2;
  AddReferrer(3, "http://one.example/a");
  AddReferrer(2, "-");
  AddReferrer(2, "https://two.example/x/y");
  AddReferrer(2, "https://two.example");
  const std::vector<Cells> rows = RankedRows(JanuaryPage(), "Top referring sites");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0], (Cells{"1", "4", "44&nbsp;%", "https://two.example"}));
  EXPECT_EQ(rows[1], (Cells{"2", "3", "33&nbsp;%", "http://one.example"}));
}

// Cut at the first "/" after the first character.
TEST_F(MonthPageText, ReferringSitesWithoutScheme) {
  AddReferrer(5, "/local/page");
  AddReferrer(4, "host/page");
  AddReferrer(3, "//cdn/page");
  AddReferrer(2, "bare");
  AddReferrer(1, "/");
  EXPECT_EQ(Column(RankedRows(JanuaryPage(), "Top referring sites"), 3),
            (Strings{"/local", "/", "host", "bare"}));
}

// "//cdn/page" and "/" give the same site. It has no more hits than "host", but two referrers.
TEST_F(MonthPageText, ReferringSitesOfEqualHitsKeepTheOrderByCount) {
  AddReferrer(4, "host/page");
  AddReferrer(3, "//cdn/page");
  AddReferrer(1, "/");
  EXPECT_EQ(Column(RankedRows(JanuaryPage(), "Top referring sites"), 3), (Strings{"/", "host"}));
}

TEST_F(MonthPageText, OnlyListedAddressesAreLookedUpAndNamedInRowOrder) {
  mdlConfigs::Run().LogTranslations = true;
  for (const int count : {2, 5, 1, 3}) {
    const std::string address = "192.0.2." + std::to_string(count);
    stats::LogRecord record = Fetch("/");
    record.clientAddress = address;
    AddTimes(count, record);
  }
  Settings().MaxListSize = 3;
  JanuaryPage();
  EXPECT_EQ(resolver_.Asked(), (Strings{"192.0.2.2", "192.0.2.3", "192.0.2.5"}));
  EXPECT_EQ(log_.Texts(), (Strings{"Hitwick : Translated IP '192.0.2.5' to ''",
                                   "Hitwick : Translated IP '192.0.2.3' to ''",
                                   "Hitwick : Translated IP '192.0.2.2' to ''"}));
}

TEST_F(MonthPageText, ResolverGetsANewChanceWithEveryRun) {
  for (const int last : {1, 2, 3, 4}) {
    const std::string address = "192.0.2." + std::to_string(last);
    stats::LogRecord record = Fetch("/");
    record.clientAddress = address;
    Add(record);
    resolver_.timing_out.insert(address);
  }
  EXPECT_EQ(Column(RankedRows(JanuaryPage(), "name=readers"), 6), (Strings{"", "", "", ""}));
  resolver_.timing_out.clear();
  resolver_.names["192.0.2.4"] = "four.example.org";
  EXPECT_EQ(Column(RankedRows(JanuaryPage(), "name=readers"), 6), (Strings{"", "", "", ""}));
  mdlDNS::BeginRun();
  EXPECT_EQ(Column(RankedRows(JanuaryPage(), "name=readers"), 6),
            (Strings{"", "", "", "four.example.org"}));
}

TEST_F(MonthPageText, RobotMarksAreDecidedWhenThePageIsWritten) {
  stats::LogRecord record = Fetch("/");
  record.userAgent = "quiet";
  Add(record);
  record.uriStem = "/robots.txt";
  Add(record);
  Add(Fetch("/"));
  const std::string page = JanuaryPage();
  EXPECT_EQ(RankedRows(page, "name=browsers")[0],
            (Cells{"1", "2", "67&nbsp;%", "2", "67&nbsp;%", "quiet", "ROBOT"}));
  EXPECT_TRUE(Contains(page, "<tr><td>Robots</td><td align=right>2 (67&nbsp;%)</td>"));
}

TEST_F(MonthPageText, RobotTrafficCountsAgentsThatAreNotListed) {
  Settings().MaxListSize = 1;
  AddTimes(3, Fetch("/"));
  stats::LogRecord record = Fetch("/");
  record.userAgent = "a spider";
  Add(record);
  EXPECT_TRUE(Contains(JanuaryPage(),
                       "<tr><td>Robots</td><td align=right>1 (25&nbsp;%)</td><td align=right>1 "
                       "(25&nbsp;%)</td></tr>\r\n<tr><td>Others</td><td align=right>3 "
                       "(75&nbsp;%)</td><td align=right>3 (75&nbsp;%)</td></tr>\r\n"));
}

// Firefox has fewer agents but more hits.
TEST_F(MonthPageText, BrowsersRankByHits) {
  for (const char* agent : {"Opera a Linux", "Opera b Linux"}) {
    stats::LogRecord record = Fetch("/");
    record.userAgent = agent;
    Add(record);
  }
  AddTimes(3, Fetch("/"));
  const std::vector<std::string> lines = TableLines(JanuaryPage(), "Browsers and operating");
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[1], "<tr><td>Firefox</td><td align=right>60&nbsp;%</td><td></td>");
  EXPECT_EQ(lines[2], "<td>Unknown</td><td align=right>60&nbsp;%</td></tr>");
  EXPECT_EQ(lines[3], "<tr><td>Opera</td><td align=right>40&nbsp;%</td><td></td>");
  EXPECT_EQ(lines[4], "<td>Linux</td><td align=right>40&nbsp;%</td></tr>");
}

TEST_F(MonthPageText, SearchWordsStandAsTheyWereExtracted) {
  stats::LogRecord record = Fetch("/");
  record.searchKeywords = "cheap flights&#033; & more";
  Add(record);
  EXPECT_EQ(RankedRows(JanuaryPage(), "name=queries"),
            (std::vector<Cells>{{"1", "1", "cheap flights&#033; & more"}}));
}

TEST_F(MonthPageText, ScriptLinksAreShownAsText) {
  AddTimes(2, Fetch("javascript:alert(1)"));
  AddReferrer(1, "data:text/html,x");
  const std::string page = JanuaryPage();
  EXPECT_EQ(RankedRows(page, "name=urls")[0][5], "javascript:alert(1)");
  EXPECT_EQ(RankedRows(page, "Top referrers")[1][3], "data:text/html,x");
  EXPECT_FALSE(Contains(page, "href=\"javascript"));
  EXPECT_FALSE(Contains(page, "href=\"data"));
}

TEST_F(MonthPageText, BrokenLinksArePlainText) {
  stats::LogRecord record = Fetch("/gone+away");
  record.status = "404";
  record.referrer = "http://a.example/x";
  Add(record);
  const std::string page = JanuaryPage();
  EXPECT_EQ(RankedRows(page, "Broken links in"), (std::vector<Cells>{{"1", "1", "/gone+away"}}));
  EXPECT_EQ(RankedRows(page, "Broken referrer references"),
            (std::vector<Cells>{{"1", "1", "http://a.example/x"}}));
}

TEST_F(MonthPageText, QuotesAreDoubledInTheCsvFilesOnly) {
  Settings().GenerateCSV = true;
  Add(Fetch("/say\"hi\""));
  JanuaryPage();
  EXPECT_TRUE(Contains(Csv("URLbyHits"), "1,1,100,1,100,\"/say\"\"hi\"\"\"\r\n"));
}

TEST_F(MonthPageText, WithoutCsvOutputOldFilesStayAndNothingIsLinked) {
  files_.AddFile(UsagePath("Jan-Summary.csv"), "old");
  EXPECT_FALSE(Contains(JanuaryPage(), "(Download)"));
  EXPECT_EQ(Csv("Summary"), "old");
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(MonthPageText, EachCsvFileIsLinkedOnce) {
  Settings().GenerateCSV = true;
  const std::string page = JanuaryPage();
  EXPECT_EQ(CountOf(page, "(Download)"), 18u);
  for (const auto& [path, content] : files_.files) {
    const std::string name = path.substr(path.rfind(platform::kPathSeparator) + 1);
    EXPECT_EQ(CountOf(page, " <small><a href=\"" + name + "\">(Download)</a></small>"), 1u) << name;
  }
}

TEST_F(MonthPageText, LinksToCsvFilesArePercentEncoded) {
  Settings().GenerateCSV = true;
  Write("f\xC3\xA9vr. 50% & <b>", {1, 31, 1, 2026});
  EXPECT_TRUE(files_.Exists(UsagePath("f\xC3\xA9vr. 50% & <b>-Summary.csv")));
  EXPECT_TRUE(Contains(
      page_, "<a href=\"f%C3%A9vr.%2050%25%20%26%20%3Cb%3E-Summary.csv\">(Download)</a></small>"));
}

TEST_F(MonthPageText, SummaryCsvThatCannotBeCreatedLeavesHeadAndSummary) {
  Settings().GenerateCSV = true;
  files_.folders.clear();
  const mdlGenHTML::WriteResult result = Write("Jan", {1, 31, 1, 2026});
  EXPECT_FALSE(result.ok);
  EXPECT_FALSE(result.error.empty());
  const std::string last = "</table><hr><p>\r\n";
  ASSERT_GT(page_.size(), last.size());
  EXPECT_EQ(page_.substr(page_.size() - last.size()), last);
  EXPECT_FALSE(Contains(page_, "name=daily>"));
}

TEST_F(MonthPageText, ListSizeOfZeroOrLessListsNothing) {
  AddTimes(3, Fetch("/"));
  mdlVisit::CloseAllVisits();
  for (const int size : {0, -1, -2147483647 - 1}) {
    Settings().MaxListSize = size;
    const std::string page = JanuaryPage();
    for (const char* caption :
         {"name=urls", " by Kbytes", "Top pages", "Slowest", "name=FileTypes", "Top file type for",
          "name=readers", "name=countries", "Entry/Exit", "Top referrers", "Top referring",
          "Broken links in", "Broken referrer", "name=browsers"}) {
      EXPECT_TRUE(RankedRows(page, caption).empty()) << caption;
    }
    EXPECT_EQ(TableLines(page, "Browsers and operating").size(), 1u);
    EXPECT_TRUE(resolver_.asked.empty());
    EXPECT_TRUE(Contains(page, "<td>Unaccounted</td><td align=right>100&nbsp;%</td>"));
    EXPECT_TRUE(Contains(page, "<td>OK - 200</td>"));
  }
}

}  // namespace
