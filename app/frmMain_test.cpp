#include "app/frmMain.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "app/run_fixture.h"
#include "config/program.h"

namespace {

using frmMain::ApplySwitch;
using frmMain::Form_Load;
using frmMain::ParseCommandLine;
using platform::EventLevel;

class Switches : public RunTest {
 protected:
  // The site that one token names.
  std::string SiteOf(const std::string& token) {
    State().SiteName = "before";
    ApplySwitch(token);
    return State().SiteName;
  }
  static std::string SiteEntry(const std::string& site) {
    return "Hitwick: Configuration for site name is '" + site + "'";
  }
};

using CommandLine = Switches;
using StartUp = Switches;
using CatchUpRun = Switches;

const char kFormatEntry[] = "Hitwick: Format for site name switch is /SITE=NAME";

TEST_F(Switches, BatchAnywhereInTheToken) {
  for (const char* token : {"/B", "/BATCH", "/b", "x/Bx", "/bogus", "/D/B"}) {
    State().BatchMode = false;
    ApplySwitch(token);
    EXPECT_TRUE(State().BatchMode) << token;
  }
  for (const char* token : {"B", "BATCH", "-B", "\\B", "/ B"}) {
    State().BatchMode = false;
    ApplySwitch(token);
    EXPECT_FALSE(State().BatchMode) << token;
  }
}

TEST_F(Switches, CatchUpAndDiagnosticsAnywhereInTheToken) {
  ApplySwitch("x/catchup");
  EXPECT_TRUE(State().CatchUpMode);
  EXPECT_FALSE(State().LogTranslations);
  ApplySwitch("/Debug");
  EXPECT_TRUE(State().LogTranslations);
  EXPECT_FALSE(State().BatchMode);
}

TEST_F(Switches, OneTokenMayHoldThemAll) {
  ApplySwitch("/B/C/D/S=web1");
  EXPECT_TRUE(State().BatchMode && State().CatchUpMode && State().LogTranslations);
  EXPECT_EQ(State().SiteName, "web1");
}

TEST_F(Switches, VersionIsShownInABox) {
  ParseCommandLine("x/vx /C /V");
  EXPECT_EQ(boxes_.shown,
            List{"Hitwick version " + std::to_string(program::kMajor) + "." +
                 std::to_string(program::kMinor) + "." + std::to_string(program::kRevision)});
  ParseCommandLine("/C");
  EXPECT_EQ(boxes_.shown.size(), 1U) << "each line asks anew";
}

TEST_F(Switches, VersionWaitsForTheEndOfTheCommandLine) {
  ApplySwitch("/V");
  EXPECT_TRUE(boxes_.shown.empty());
  windows_.user_selects = [this] { EXPECT_TRUE(boxes_.shown.empty()); };
  ParseCommandLine("/V /L");
  EXPECT_EQ(windows_.calls, (List{"Start", "SelectSite"}));
  EXPECT_EQ(boxes_.shown.size(), 1U);
  frmMain::Form_Terminate();
}

TEST_F(Switches, BatchModeShowsNoVersionWhereverItIsSet) {
  for (const char* line : {"/B/V", "/B /V", "/V /B", "/V /D /SITE=web1/B"}) {
    State().BatchMode = false;
    ParseCommandLine(line);
    EXPECT_TRUE(boxes_.shown.empty()) << line;
  }
}

TEST_F(Switches, SiteNameFollowsTheEqualsSign) {
  EXPECT_EQ(SiteOf("/SITE=web1"), "web1");
  EXPECT_EQ(SiteOf("/site=Web1"), "Web1");
  EXPECT_EQ(SiteOf("/S=web1"), "web1");
  EXPECT_EQ(SiteOf("x/Sx=web1"), "web1");
  EXPECT_EQ(SiteOf("/SITE=a=b"), "a=b");
  EXPECT_EQ(SiteOf("a=b/SITE=c"), "c") << "the first one after the switch";
  EXPECT_EQ(SiteOf("/SITE="), "");
}

TEST_F(Switches, OtherTokensLeaveTheSiteAlone) {
  EXPECT_EQ(SiteOf("SITE=web1"), "before");
  EXPECT_EQ(SiteOf("/B=web1"), "before");
}

TEST_F(Switches, SiteNameEndsAtASlashOrBlank) {
  EXPECT_EQ(SiteOf("/SITE=web1/B"), "web1");
  EXPECT_TRUE(State().BatchMode);
  EXPECT_EQ(SiteOf("/SITE=my site"), "my");
  EXPECT_EQ(SiteOf("/SITE=/web1"), "");
  EXPECT_EQ(SiteOf("/SITE=a\"b"), "a\"b");
}

TEST_F(Switches, QuotedSiteNameEndsAtTheNextQuote) {
  EXPECT_EQ(SiteOf("/SITE=\"web1\""), "web1");
  EXPECT_EQ(SiteOf("/SITE=\"web1\"rest"), "web1");
  EXPECT_EQ(SiteOf("/SITE=\"web1"), "web1");
  EXPECT_EQ(SiteOf("/SITE=\"My Site\""), "My Site");
  EXPECT_EQ(SiteOf("/SITE=\"\""), "");
  EXPECT_EQ(SiteOf("/SITE=\""), "");
  EXPECT_EQ(SiteOf("/SITE=\"a/x/y\""), "axy") << "slashes inside quotes are removed only";
}

TEST_F(Switches, SeparatorsAreRemovedFromTheSiteName) {
  EXPECT_EQ(SiteOf("/site=a;b\\c"), "abc");
  EXPECT_EQ(SiteOf("/site=\\;"), "");
  EXPECT_EQ(SiteOf("/site=..\\..\\x"), "....x");
}

TEST_F(Switches, EveryTokenIsFollowedByTheSiteInUse) {
  ApplySwitch("anything");
  ApplySwitch("/SITE=web1");
  ApplySwitch("/D");
  ASSERT_EQ(log_.Texts(), (List{SiteEntry(""), SiteEntry("web1"), SiteEntry("web1")}));
  EXPECT_EQ(log_.entries[0].level, EventLevel::kInformation);
}

TEST_F(Switches, SiteSwitchWithoutAnEqualsSignIsReportedInBatchMode) {
  ApplySwitch("/BATCH");
  ApplySwitch("/SITE");
  ASSERT_EQ(log_.Texts(), (List{SiteEntry(""), kFormatEntry, SiteEntry("")}));
  EXPECT_EQ(log_.entries[1].level, EventLevel::kWarning);
}

TEST_F(Switches, SiteSwitchWithoutAnEqualsSignIsNotReportedOtherwise) {
  ApplySwitch("/SITE");
  EXPECT_EQ(log_.Texts(), List{SiteEntry("")});
}

TEST_F(Switches, EqualsSignBeforeTheSwitchDoesNotCount) {
  ApplySwitch("/B=x/SITE");
  EXPECT_EQ(State().SiteName, "");
  EXPECT_EQ(log_.Texts(), (List{kFormatEntry, SiteEntry("")}));
}

TEST_F(CommandLine, BlanksAndTabsSeparateTokens) {
  ParseCommandLine("  /BATCH\t /D  /SITE=web1 ");
  EXPECT_TRUE(State().BatchMode);
  EXPECT_TRUE(State().LogTranslations);
  EXPECT_EQ(State().SiteName, "web1");
  EXPECT_EQ(log_.Texts(), (List{SiteEntry(""), SiteEntry(""), SiteEntry("web1")}));
}

TEST_F(CommandLine, NoTokensNoEntries) {
  ParseCommandLine("");
  ParseCommandLine(" \t  ");
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(CommandLine, LastTokenNeedsNoBlankAfterIt) {
  ParseCommandLine("/B");
  EXPECT_TRUE(State().BatchMode);
  EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(CommandLine, LineEndsAreOrdinaryCharacters) {
  ParseCommandLine("a\nb\rc");
  EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(CommandLine, QuotationMarksDoNotGroup) {
  ParseCommandLine("/SITE=\"My Site\"");
  EXPECT_EQ(State().SiteName, "My");
  EXPECT_EQ(log_.Texts(), (List{SiteEntry("My"), SiteEntry("My")}));
}

TEST_F(CommandLine, AsTheScheduledTaskWritesIt) {
  ParseCommandLine(" /BATCH /SITE=\"web1\"");
  EXPECT_TRUE(State().BatchMode);
  EXPECT_EQ(State().SiteName, "web1");
}

TEST_F(StartUp, BatchRunReportsTheCurrentMonth) {
  EXPECT_EQ(Form_Load("/BATCH /SITE=web1"), frmMain::kExitDone);
  EXPECT_EQ(log_.Texts(),
            Joined({SiteEntry(""), SiteEntry("web1"), "Hitwick: operating on site 'web1'"},
                   WithIndexEntry(MonthEntries({1}))));
  EXPECT_TRUE(files_.Exists(PageOfMonth(1)));
  EXPECT_TRUE(files_.Exists(UsagePath("index.htm")));
  EXPECT_TRUE(files_.Exists(UsagePath("History.txt")));
}

TEST_F(StartUp, BatchRunWithoutASiteUsesIni) {
  EXPECT_EQ(Form_Load("/B"), frmMain::kExitDone);
  EXPECT_EQ(log_.Texts(), Joined({SiteEntry(""), "Hitwick: operating on site 'INI'"},
                                 WithIndexEntry(MonthEntries({1}))));
}

TEST_F(StartUp, BatchRunOnTheFirstReportsTheMonthThatHasEndedToo) {
  SetToday(2026, 3, 1);
  Form_Load("/B /SITE=web1");
  EXPECT_EQ(log_.Texts(),
            Joined({SiteEntry(""), SiteEntry("web1"), "Hitwick: operating on site 'web1'"},
                   WithIndexEntry(MonthEntries({2, 3}))));
}

TEST_F(StartUp, BatchRunOnNewYearsDayReachesBackToDecember) {
  SetToday(2026, 1, 1);
  Form_Load("/B");
  EXPECT_EQ(log_.Texts(), Joined({SiteEntry(""), "Hitwick: operating on site 'INI'"},
                                 WithIndexEntry(MonthEntries({12, 1}))));
}

TEST_F(StartUp, BatchRunOnTheSecondReportsTheCurrentMonthOnly) {
  SetToday(2026, 3, 2);
  Form_Load("/B");
  EXPECT_EQ(log_.Texts(), Joined({SiteEntry(""), "Hitwick: operating on site 'INI'"},
                                 WithIndexEntry(MonthEntries({3}))));
}

TEST_F(StartUp, BatchRunCountsAllDaysOfTheMonth) {
  SetToday(2026, 1, 10);
  const std::string fields = "#Fields: c-ip cs-uri-stem\n";
  files_.AddFile(platform::JoinPath("logs", "ex260101.log"), fields + "a /first\n");
  files_.AddFile(platform::JoinPath("logs", "ex260131.log"), fields + "a /last\n");
  Form_Load("/B");
  EXPECT_EQ(mdlMonth::Month().TotalHits, 2.0F);
}

TEST_F(StartUp, PresentDateIsTheLocalOne) {
  clock_.utc = {2026, 4, 1, 3, 0, 0};
  clock_.local = {2026, 3, 31, 22, 0, 0};
  Form_Load("/B");
  EXPECT_EQ(log_.Texts(), Joined({SiteEntry(""), "Hitwick: operating on site 'INI'"},
                                 WithIndexEntry(MonthEntries({3}))));
}

TEST_F(StartUp, BatchRunShowsNoBoxAndNoStatus) {
  CollectStatus();
  Form_Load("/B");
  EXPECT_TRUE(statuses_.empty());
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(StartUp, UnusableSettingsEndTheRunWithoutAReport) {
  store_.Put("web1", "UsageDir", "missing");
  EXPECT_EQ(Form_Load("/B /SITE=web1"), frmMain::kExitFailed);
  EXPECT_EQ(log_.CountWith("Logfiles will be read"), 0);
  EXPECT_EQ(log_.CountWith("Usage reports will be created"), 0);
  EXPECT_TRUE(files_.committed.empty());
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(StartUp, SitesFiltersAreLoaded) {
  store_.Put("web1\\Filters\\NoBots", "includes", "False");
  store_.Put("web1\\Filters\\NoBots", "field", "cs(User-Agent)");
  store_.Put("web1\\Filters\\NoBots", "pattern", "*bot*");
  Form_Load("/B /SITE=web1");
  ASSERT_EQ(mdlFilters::Rules().size(), 1U);
  EXPECT_EQ(mdlFilters::Rules()[0].name, "NoBots");
}

TEST_F(StartUp, SettingThatNothingReadsIsReportedOnceARun) {
  store_.has_lines = true;
  store_.Put("web1", "IISLogdirs", "x");
  Form_Load("/C /SITE=web1");
  EXPECT_EQ(log_.CountWith("Line 3 sets 'IISLogdirs', which nothing reads"), 1);
  EXPECT_EQ(log_.CountWith("which nothing reads"), 1);
}

TEST_F(StartUp, EverySettingThatIsWrittenIsKnown) {
  UseLoadedSettings();
  mdlConfigs::SaveSiteSettings();
  mdlFilters::SetFilter("NoBots", false, "cs(User-Agent)", "*bot*");
  mdlFilters::SaveFilters("web1");
  store_.has_lines = true;
  Form_Load("/B /SITE=web1");
  EXPECT_EQ(mdlFilters::Rules().size(), 1U);
  EXPECT_EQ(log_.CountWith("which nothing reads"), 0);
}

TEST_F(StartUp, MalformedSiteSwitchEndsTheProgramAfterTheWholeLine) {
  EXPECT_EQ(Form_Load("/B /SITE /D"), frmMain::kExitNotStarted);
  EXPECT_TRUE(State().LogTranslations);
  EXPECT_EQ(log_.Texts(), (List{SiteEntry(""), kFormatEntry, SiteEntry(""), SiteEntry("")}));
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(StartUp, MalformedSiteSwitchEndsACatchUpRunToo) {
  EXPECT_EQ(Form_Load("/C /SITE"), frmMain::kExitNotStarted);
  EXPECT_EQ(log_.Texts(), (List{SiteEntry(""), SiteEntry("")}));
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(StartUp, WithoutASwitchForARunTheConfigurationIsShown) {
  EXPECT_EQ(Form_Load("/SITE=web1"), frmMain::kExitDone);
  EXPECT_EQ(windows_.calls, (List{"Start", "ShowConfiguration", "RunUntilClosed", "Stop"}));
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(StartUp, PageThatAWindowCouldNotWriteShowsInTheExitCode) {
  windows_.user_acts = [this] {
    UseLoadedSettings();
    files_.create_failures[UsagePath("index.htm")] = 5;
    mdlConfigs::WriteLast12MonthsPage();
  };
  EXPECT_EQ(Form_Load(""), frmMain::kExitFailed);
}

TEST_F(StartUp, WithoutADisplayNothingStartsAndTheReasonIsTold) {
  windows_.can_start = false;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Form_Load(""), frmMain::kExitNotStarted);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Hitwick: there is no display; use /BATCH or /C with /SITE=NAME (see --help)\n");
  EXPECT_EQ(windows_.calls, List{"Start"});
}

TEST_F(StartUp, UnattendedRunsNeverStartTheWindows) {
  Form_Load("/BATCH /SITE=web1");
  Form_Load("/C /SITE=web1");
  Form_Load("/BATCH /SITE");
  EXPECT_TRUE(windows_.calls.empty());
}

TEST_F(StartUp, SiteIsSelectedWhileTheCommandLineIsRead) {
  windows_.user_selects = [this] {
    EXPECT_EQ(State().SiteName, "web1");
    EXPECT_FALSE(State().LogTranslations) << "the next token has not been read";
    State().SiteName = "chosen";
  };
  EXPECT_EQ(Form_Load("/SITE=web1 /L /D"), frmMain::kExitDone);
  EXPECT_EQ(windows_.calls,
            (List{"Start", "SelectSite", "ShowConfiguration", "RunUntilClosed", "Stop"}));
  EXPECT_EQ(log_.Texts(), (List{SiteEntry("web1"), SiteEntry("chosen"), SiteEntry("chosen")}));
}

TEST_F(StartUp, SelectedSiteIsTheOneOfABatchRun) {
  windows_.user_selects = [this] { State().SiteName = "web1"; };
  EXPECT_EQ(Form_Load("/L /BATCH"), frmMain::kExitDone);
  EXPECT_EQ(windows_.calls, (List{"Start", "SelectSite", "Stop"}));
  EXPECT_EQ(log_.CountWith("operating on site 'web1'"), 1);
}

TEST_F(StartUp, VersionOfAnInteractiveRunIsShownInAWindow) {
  Form_Load("/V /SITE=web1");
  EXPECT_EQ(windows_.calls, (List{"Start", "ShowConfiguration", "RunUntilClosed", "Stop"}));
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

TEST_F(StartUp, VersionOfACatchUpRunStartsNoWindows) {
  Form_Load("/V /C /SITE=web1");
  EXPECT_TRUE(windows_.calls.empty());
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

TEST_F(StartUp, VersionNeedsNoDisplay) {
  windows_.can_start = false;
  EXPECT_EQ(Form_Load("/V"), frmMain::kExitNotStarted);
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

TEST_F(StartUp, SelectionThatCannotBeShownIsTold) {
  windows_.can_start = false;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Form_Load("/BATCH /L /SITE=web1"), frmMain::kExitDone);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Hitwick: there is no display, so the site selection cannot be shown\n");
}

TEST_F(StartUp, ClearsTheOnDemandMode) {
  State().OnDemandMode = true;
  Form_Load("/B");
  EXPECT_FALSE(State().OnDemandMode);
  EXPECT_TRUE(files_.Exists(PageOfMonth(1)));
}

TEST_F(StartUp, BuildsTheClassificationTables) {
  files_.AddFile(platform::JoinPath("logs", "ex260115.log"),
                 "#Fields: c-ip cs-uri-stem sc-status\na /x 404\n");
  Form_Load("/B");
  EXPECT_NE(files_.Content(PageOfMonth(1)).find("Not Found - 404"), std::string::npos);
}

TEST_F(CatchUpRun, ReportsThirteenMonths) {
  EXPECT_EQ(Form_Load("/C"), frmMain::kExitDone);
  EXPECT_EQ(log_.Texts(),
            Joined({SiteEntry(""), "Hitwick: operating on site 'INI'"},
                   WithIndexEntry(MonthEntries({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1}))));
  EXPECT_TRUE(files_.Exists(UsagePath("index.htm")));
}

TEST_F(CatchUpRun, WinsOverABatchRun) {
  SetToday(2026, 6, 15);
  Form_Load("/B /C");
  EXPECT_EQ(log_.Texts(),
            Joined({SiteEntry(""), SiteEntry(""), "Hitwick: operating on site 'INI'"},
                   WithIndexEntry(MonthEntries({6, 7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}))));
}

TEST_F(CatchUpRun, UnusableSettingsEndIt) {
  store_.Put("INI", "IISLogDir", "empty");
  EXPECT_EQ(Form_Load("/C /B"), frmMain::kExitFailed);
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(CatchUpRun, FromTheWindowNeedsTheMode) {
  State().SiteName = "web1";
  frmMain::CatchUp();
  EXPECT_TRUE(log_.entries.empty());
  State().CatchUpMode = true;
  EXPECT_TRUE(frmMain::CatchUp());
  EXPECT_EQ(log_.Texts(),
            Joined({"Hitwick: operating on site 'web1'"},
                   WithIndexEntry(MonthEntries({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1}))));
  EXPECT_TRUE(State().CatchUpMode);
}

TEST_F(CatchUpRun, FromTheWindowWithUnusableSettings) {
  State().SiteName = "web1";
  State().CatchUpMode = true;
  store_.Put("web1", "UsageDir", "missing");
  EXPECT_FALSE(frmMain::CatchUp());
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(StartUp, PageThatCannotBeWrittenShowsInTheExitCode) {
  files_.create_failures[PageOfMonth(1)] = 5;
  EXPECT_EQ(Form_Load("/B"), frmMain::kExitFailed);
  EXPECT_TRUE(files_.Exists(UsagePath("index.htm"))) << "the run goes on";
  EXPECT_EQ(log_.failures, std::vector<int>{frmMain::kExitFailed});
}

TEST_F(StartUp, HistoryThatCannotBeReadShowsInTheExitCode) {
  files_.AddFile(UsagePath("History.txt"), "11,2025,1000,7,3,2,50,4,5,6\r\n");
  files_.open_failures[UsagePath("History.txt")] = 13;
  EXPECT_EQ(Form_Load("/B"), frmMain::kExitFailed);
  EXPECT_TRUE(files_.Exists(PageOfMonth(1)));
  EXPECT_TRUE(files_.Exists(UsagePath("index.htm")));
}

TEST_F(StartUp, RunsThatNobodyWatchesSayThatTheyFailed) {
  Form_Load("/B");
  EXPECT_TRUE(log_.failures.empty());
  Form_Load("");
  EXPECT_TRUE(log_.failures.empty()) << "somebody is there";
  store_.Put("INI", "UsageDir", "missing");
  State() = {};
  Form_Load("/C");
  Form_Load("/B /SITE");
  EXPECT_EQ(log_.failures, (std::vector<int>{frmMain::kExitFailed, frmMain::kExitNotStarted}));
}

}  // namespace
