#include "ui/configuration.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "platform/daily_tasks.h"
#include "platform/environment.h"
#include "tests/fakes/fake_daily_tasks.h"
#include "ui/new_usage_folder.h"
#include "ui/window_fixture.h"

namespace ui {
namespace {

using enum ConfigControl;

// A window that remembers what it was told.
class FakeView : public ConfigurationView {
 public:
  void Enable(ConfigControl control, bool enabled) override {
    if (enabled) {
      disabled.erase(control);
    } else {
      disabled.insert(control);
      ever_disabled.insert(control);
    }
  }
  bool AndView() const override { return and_view; }
  void ShowStatus(const std::string& text) override { statuses.push_back(text); }
  void ShowProgress(int done, int months) override { progress.emplace_back(done, months); }
  void ProcessEvents() override {
    ++events;
    if (on_event) on_event();
  }
  void Close() override { ++closed; }

  std::set<ConfigControl> disabled;
  std::set<ConfigControl> ever_disabled;
  bool and_view = false;
  std::vector<std::string> statuses;
  std::vector<std::pair<int, int>> progress;
  std::function<void()> on_event;
  int events = 0;
  int closed = 0;
};

const std::set<ConfigControl> kDisabledBySaving = {btnCatchUp, cmdSave, btnOnDemand, mnuPopupUsage,
                                                   btnFilter};
const std::set<ConfigControl> kDisabledByARun = {
    lstLogfileFormat, dskLogDir,     dirLogDir,         btnBrowseLogDir, dskUsageDir,
    dirUsageDir,      mnuPopupUsage, btnBrowseUsageDir, txtListSizes,    chkUTC,
    chkShowUsernames, chkCSV,        cmdSave,           btnCatchUp,      btnView,
    btnOnDemand,      btnFilter,     txtSchedWhen,      btnScheduleAdd};

class ConfigurationTest : public WindowTest {
 protected:
  static mdlConfigs::SiteSettings& Settings() { return State().Settings; }
  void Load(const std::string& site = "web1") {
    State().SiteName = site;
    window_.Form_Load();
  }
  std::string IndexPage() const { return Page("index.htm"); }

  FakeView view_;
  Configuration window_{view_};
  fakes::FakeDailyTasks tasks_;

 private:
  platform::Replacement<platform::DailyTasks> use_tasks_{tasks_};
};

using LoadingTest = ConfigurationTest;
using FieldsTest = ConfigurationTest;
using SavingTest = ConfigurationTest;
using CatchUpTest = ConfigurationTest;
using QuitTest = ConfigurationTest;

TEST_F(LoadingTest, TheFrameNamesTheSiteIfThereIsOne) {
  EXPECT_EQ(FrameCaption(""), "Configuration");
  EXPECT_EQ(FrameCaption("web1"), "Configuration (web1)");
  Load("web1");
  EXPECT_EQ(window_.frame_caption(), "Configuration (web1)");
}

// The caption is set before the settings give the site without a name its own.
TEST_F(LoadingTest, TheDefaultSiteIsNotNamedInTheFrame) {
  Load("");
  EXPECT_EQ(window_.frame_caption(), "Configuration");
  EXPECT_EQ(State().SiteName, "INI");
}

TEST_F(LoadingTest, W3CIsTheOnlyFormat) {
  EXPECT_EQ(LogFormats(), List{"W3C"});
  EXPECT_EQ(LogFormatIndex("W3C"), 0);
  EXPECT_EQ(LogFormatIndex("w3c"), -1);
  EXPECT_EQ(LogFormatIndex("NCSA"), -1);
}

TEST_F(LoadingTest, ShowsWhatIsStored) {
  store_.Put("web1", "MaxListSize", "25");
  store_.Put("web1", "UseUTC", "True");
  store_.Put("web1", "GenerateCSV", "True");
  Load();
  EXPECT_EQ(Settings().MaxListSize, 25);
  EXPECT_TRUE(Settings().UseUTC);
  EXPECT_FALSE(Settings().ShowUsernames);
  EXPECT_TRUE(Settings().GenerateCSV);
  EXPECT_EQ(window_.dirLogDir().path(), logs_);
  EXPECT_EQ(window_.dirUsageDir().path(), usage_);
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(LoadingTest, TakesTheListsNormalisedPaths) {
  files_.AddFolder(usage_ + platform::kPathSeparator);
  store_.Put("web1", "UsageDir", usage_ + platform::kPathSeparator);
  Load();
  EXPECT_EQ(Settings().UsageDir, usage_);
}

TEST_F(LoadingTest, AFailedCheckIsToldAndTheWindowOpensAllTheSame) {
  store_.Put("web1", "UsageDir", Folder("gone"));
  Load();
  EXPECT_EQ(boxes_.shown.size(), 1U);
  EXPECT_EQ(window_.dirUsageDir().path(), Folder("gone"));
  EXPECT_EQ(Settings().UsageDir, Folder("gone"));
  EXPECT_EQ(view_.closed, 0);
  EXPECT_TRUE(view_.disabled.empty());
}

// A check that fails ends the loading, but what is stored behind it must not be lost by the save
// that follows once the failure is mended.
TEST_F(LoadingTest, WhatStandsBehindAFailedCheckIsShownAsStored) {
  store_.Put("web1", "IISLogDir", Folder("gone"));
  store_.Put("web1", "MaxListSize", "25");
  store_.Put("web1", "ShowUsernames", "True");
  Load();
  EXPECT_EQ(boxes_.shown.size(), 1U);
  EXPECT_EQ(Settings().LogDir, Folder("gone"));
  EXPECT_EQ(Settings().UsageDir, usage_);
  EXPECT_EQ(Settings().MaxListSize, 25);
  EXPECT_TRUE(Settings().ShowUsernames);
}

TEST_F(LoadingTest, AnUnknownFormatIsShownAsNoneAndCanBeMended) {
  store_.Put("web1", "IISLogFormat", "NCSA");
  Load();
  EXPECT_EQ(boxes_.shown, List{"The only log file format supported is W3C"});
  EXPECT_EQ(LogFormatIndex(Settings().LogFormat), -1);
  EXPECT_EQ(Settings().LogDir, logs_);
  window_.lstLogfileFormat_Click(-1);
  EXPECT_EQ(Settings().LogFormat, "NCSA");
  window_.lstLogfileFormat_Click(0);
  EXPECT_EQ(Settings().LogFormat, "W3C");
}

TEST_F(FieldsTest, ListSizesFrom1To29999AreKept) {
  Load();
  for (const auto& [text, size] : std::map<std::string, int>{
           {"1", 1}, {"29999", 29999}, {"+7", 7}, {"50 rows", 50}, {"29999.4", 29999}}) {
    EXPECT_EQ(window_.txtListSizes_Change(text), "") << text;
    EXPECT_EQ(Settings().MaxListSize, size) << text;
  }
}

TEST_F(FieldsTest, OtherListSizesGoBackTo100) {
  Load();
  for (const char* text : {"0", "30000", "word", "", "-5", "99999999999", "0.4", "29999.6"}) {
    Settings().MaxListSize = 7;
    EXPECT_EQ(window_.txtListSizes_Change(text), "100") << text;
    EXPECT_EQ(Settings().MaxListSize, 100) << text;
  }
}

TEST_F(FieldsTest, BoxesSetTheirFlags) {
  Load();
  window_.chkUTC_Click(true);
  window_.chkShowUsernames_Click(true);
  window_.chkCSV_Click(true);
  EXPECT_TRUE(Settings().UseUTC && Settings().ShowUsernames && Settings().GenerateCSV);
  window_.chkShowUsernames_Click(false);
  EXPECT_TRUE(Settings().UseUTC && !Settings().ShowUsernames && Settings().GenerateCSV);
}

TEST_F(FieldsTest, FoldersFollowTheirLists) {
  files_.AddFolder(platform::JoinPath(logs_, "W3SVC1"));
  files_.AddFolder(platform::JoinPath(usage_, "stats"));
  Load();
  EXPECT_TRUE(window_.dirLogDir_GoIn(2));
  EXPECT_EQ(Settings().LogDir, platform::JoinPath(logs_, "W3SVC1"));
  EXPECT_EQ(Settings().UsageDir, usage_);
  EXPECT_TRUE(window_.dirUsageDir_GoIn(2));
  EXPECT_EQ(Settings().UsageDir, platform::JoinPath(usage_, "stats"));
  EXPECT_TRUE(window_.dirUsageDir_GoUp());
  EXPECT_EQ(Settings().UsageDir, usage_);
  EXPECT_TRUE(window_.dirLogDir_GoUp());
  EXPECT_EQ(Settings().LogDir, logs_);
}

TEST_F(FieldsTest, AFolderThatCannotBeReadLeavesTheField) {
  files_.AddFolder(platform::JoinPath(logs_, "locked"));
  files_.list_failures[platform::JoinPath(logs_, "locked")] = 13;
  Load();
  EXPECT_FALSE(window_.dirLogDir_GoIn(2));
  EXPECT_EQ(Settings().LogDir, logs_);
}

TEST_F(FieldsTest, ADriveOrAChosenFolderMovesTheList) {
  Load();
  window_.ShowLogDir(root_);
  EXPECT_EQ(Settings().LogDir, root_);
  window_.ShowUsageDir(logs_ + platform::kPathSeparator);
  EXPECT_EQ(Settings().UsageDir, logs_);
}

TEST_F(FieldsTest, ANewUsageFolderBecomesTheChosenOne) {
  Load();
  window_.ShowUsageDir(btnCreateNewUsageFolder_Click(window_.dirUsageDir().path(), "New").path);
  EXPECT_EQ(Settings().UsageDir, platform::JoinPath(usage_, "New"));
  EXPECT_TRUE(window_.dirUsageDir_GoUp());
  EXPECT_EQ(window_.dirUsageDir().entries().back().name, "New");
}

TEST_F(SavingTest, SaveStoresAndCloses) {
  Load();
  window_.txtListSizes_Change("42");
  window_.cmdSave_Click();
  EXPECT_EQ(store_.Get("web1", "MaxListSize"), "42");
  EXPECT_EQ(view_.closed, 1);
  EXPECT_EQ(view_.ever_disabled, kDisabledBySaving);
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(SavingTest, AFailedSaveLeavesEveryButtonUsable) {
  Load();
  Settings().UsageDir = Folder("gone");
  window_.cmdSave_Click();
  EXPECT_EQ(view_.closed, 0);
  EXPECT_EQ(view_.ever_disabled, kDisabledBySaving);
  EXPECT_TRUE(view_.disabled.empty());
  EXPECT_EQ(boxes_.shown,
            List{Folder("gone") + " must be a writeable pre-existing directory. Please create this "
                                  "directory and try again."});
}

TEST_F(CatchUpTest, AFailedSaveRunsNothing) {
  Load();
  Settings().LogDir = usage_;
  window_.btnCatchUp_Click();
  EXPECT_EQ(view_.closed, 0);
  EXPECT_TRUE(view_.disabled.empty());
  EXPECT_FALSE(State().CatchUpMode);
  EXPECT_TRUE(files_.committed.empty());
  EXPECT_TRUE(view_.progress.empty());
}

TEST_F(CatchUpTest, ReportsThirteenMonthsAndCloses) {
  Load();
  window_.btnCatchUp_Click();
  EXPECT_TRUE(State().CatchUpMode);
  EXPECT_EQ(files_.committed.size(), 15U) << "thirteen pages, history and index";
  EXPECT_EQ(files_.committed.back(), IndexPage());
  EXPECT_EQ(view_.closed, 1);
  EXPECT_FALSE(window_.running());
  EXPECT_TRUE(shell_.asked.empty()) << "nobody asked to see it";
}

TEST_F(CatchUpTest, ShowsWhatItIsDoing) {
  Load();
  window_.btnCatchUp_Click();
  const std::string page = Page(platform::MonthAbbreviation(1) + ".htm");
  EXPECT_EQ(view_.statuses.front(), "Formatting " + page);
  EXPECT_EQ(view_.statuses[1], "Finished report " + page);
  EXPECT_EQ(view_.statuses.back(), "Finished report " + page);
  ASSERT_GE(view_.progress.size(), 14U);
  for (int done = 0; done <= 13; ++done) {
    EXPECT_EQ(view_.progress[static_cast<std::size_t>(done)], std::make_pair(done, 13));
  }
  EXPECT_GE(view_.events, 13);
}

TEST_F(CatchUpTest, DisablesWhatWouldDisturbTheRun) {
  Load();
  std::set<ConfigControl> during;
  view_.on_event = [&] { during = view_.disabled; };
  window_.btnCatchUp_Click();
  EXPECT_EQ(during, kDisabledByARun);
}

TEST_F(CatchUpTest, OpensTheIndexWhenAsked) {
  Load();
  view_.and_view = true;
  window_.btnCatchUp_Click();
  EXPECT_EQ(shell_.asked, List{IndexPage()});
  EXPECT_EQ(view_.closed, 1);
}

TEST_F(CatchUpTest, AnIndexThatCouldNotBeWrittenIsNotOpened) {
  Load();
  files_.AddFile(IndexPage(), "old");
  files_.commit_failures[IndexPage()] = 5;
  view_.and_view = true;
  window_.btnCatchUp_Click();
  EXPECT_TRUE(shell_.asked.empty());
  EXPECT_EQ(view_.closed, 1);
}

TEST_F(CatchUpTest, SettingsThatFailAfterTheSaveKeepTheWindowOpen) {
  Load();
  view_.and_view = true;
  store_.Fail({fakes::FakeSettingsStore::Operation::kSetValue, 5});
  store_.Put("web1", "IISLogFormat", "NCSA");
  window_.btnCatchUp_Click();
  EXPECT_EQ(view_.closed, 0);
  EXPECT_TRUE(view_.disabled.empty());
  EXPECT_FALSE(window_.running());
  EXPECT_TRUE(shell_.asked.empty());
}

TEST_F(QuitTest, ClosesAtOnceWhenNothingRuns) {
  Load();
  window_.txtListSizes_Change("42");
  window_.cmdQuit_Click();
  EXPECT_EQ(view_.closed, 1);
  EXPECT_NE(store_.Get("web1", "MaxListSize"), "42");
}

TEST_F(QuitTest, DuringARunItStopsAtTheNextFileAndCloses) {
  Load();
  view_.and_view = true;
  view_.on_event = [this] {
    if (view_.events == 3) window_.cmdQuit_Click();
    EXPECT_EQ(view_.closed, 0) << "not while the run is on";
  };
  window_.btnCatchUp_Click();
  EXPECT_EQ(view_.events, 3);
  EXPECT_EQ(view_.closed, 1);
  EXPECT_TRUE(shell_.asked.empty());
}

TEST_F(QuitTest, DuringARunStartedElsewhereTheWindowClosesAtItsEnd) {
  Load();
  window_.BeginRun(1);
  EXPECT_EQ(view_.disabled, kDisabledByARun);
  EXPECT_TRUE(window_.running());
  window_.cmdQuit_Click();
  EXPECT_EQ(view_.closed, 0);
  window_.EndRun();
  EXPECT_EQ(view_.closed, 1);
}

TEST_F(ConfigurationTest, ARunStartedElsewhereGivesTheControlsBack) {
  Load();
  window_.BeginRun(1);
  window_.EndRun();
  EXPECT_TRUE(view_.disabled.empty());
  EXPECT_EQ(view_.closed, 0);
  EXPECT_EQ(view_.progress, (std::vector<std::pair<int, int>>{{0, 1}, {0, 0}}));
}

TEST_F(ConfigurationTest, ViewOpensTheIndexPage) {
  Load();
  window_.btnView_Click();
  EXPECT_EQ(shell_.asked, List{IndexPage()});
  shell_.opens = false;
  window_.btnView_Click();
  EXPECT_EQ(boxes_.shown, List{"Cannot locate file '" + IndexPage() + "'"});
}

TEST_F(ConfigurationTest, HelpOpensTheHelpPage) {
  Load();
  shell_.opens = false;
  window_.btnHelp_Click();
  EXPECT_EQ(shell_.asked, List{shell_.help_page});
  EXPECT_EQ(boxes_.shown, List{"Cannot locate help file '" + shell_.help_page + "'"});
}

TEST_F(ConfigurationTest, ScheduleAddRegistersTheSiteInUse) {
  Load();
  window_.btnScheduleAdd_Click("02:30");
  ASSERT_EQ(tasks_.scheduled.size(), 1U);
  EXPECT_EQ(tasks_.scheduled.front().name, "web1-Hitwick-023000");
}

TEST_F(ConfigurationTest, EventsInMidWorkAreProcessedNowAndThen) {
  Load();
  const auto begin = std::chrono::steady_clock::now();
  int calls = 0;
  while (view_.events < 3) {
    State().Ui.stay_responsive();
    ++calls;
  }
  EXPECT_GT(calls, 3);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100));
}

TEST_F(ConfigurationTest, AClosedWindowHearsNothingMore) {
  {
    FakeView view;
    const Configuration window(view);
  }
  EXPECT_FALSE(State().Ui.show_status);
  EXPECT_FALSE(State().Ui.process_pending_events);
  EXPECT_FALSE(State().Ui.stay_responsive);
}

}  // namespace
}  // namespace ui
