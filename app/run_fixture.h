// What the tests of start-up and run driver share: one site in memory, a fixed clock, and every
// service recorded. Test code only.
#ifndef HITWICK_APP_RUN_FIXTURE_H_
#define HITWICK_APP_RUN_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/run_driver.h"
#include "config/mdlConfigs.h"
#include "logread/mdlFilters.h"
#include "logread/mdlW3C.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "platform/service.h"
#include "platform/window_system.h"
#include "report/page_frame.h"
#include "stats/mdlDNS.h"
#include "stats/mdlMonth.h"
#include "tests/fakes/fake_clock.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_host_names.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/fake_window_system.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/recording_message_boxes.h"

class RunTest : public testing::Test {
 protected:
  using List = std::vector<std::string>;

  RunTest() {
    ResetModules();
    files_.AddFile(platform::JoinPath("logs", "ex050115.log"), "");
    files_.AddFolder("usage");
    for (const char* site : {"INI", "web1"}) {
      store_.Put(site, "IISLogDir", "logs");
      store_.Put(site, "UsageDir", "usage");
      store_.PutKey(std::string(site) + "\\Filters");
    }
    SetToday(2026, 1, 31);
  }
  ~RunTest() override { ResetModules(); }

  static mdlConfigs::RunState& State() { return mdlConfigs::Run(); }

  void SetToday(int year, int month, int day) {
    clock_.utc = clock_.local = {year, month, day, 2, 0, 0};
  }
  // Settings as if they had been loaded.
  static void UseLoadedSettings() {
    State().SiteName = "web1";
    State().Settings = {
        .LogFormat = "W3C", .LogDir = "logs", .UsageDir = "usage", .MaxListSize = 10};
  }
  void CollectStatus() {
    State().Ui.show_status = [this](const std::string& text) { statuses_.push_back(text); };
  }

  static std::string UsagePath(const std::string& name) {
    return platform::JoinPath("usage", name);
  }
  static std::string PageOfMonth(int month) {
    return UsagePath(platform::MonthAbbreviation(month) + ".htm");
  }
  // The entries that a run over these months writes, without those of its start.
  static List MonthEntries(const std::vector<int>& months) {
    List entries = {"Hitwick: Logfiles will be read from logs"};
    for (const int month : months) {
      entries.push_back("Hitwick: month report created : " + PageOfMonth(month));
    }
    return entries;
  }
  static List WithIndexEntry(List entries) {
    entries.push_back("Hitwick: Usage reports will be created in usage");
    return entries;
  }
  static List Joined(List first, const List& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
  }

  fakes::FakeFileSystem files_;
  fakes::FakeClock clock_;
  fakes::FakeHostNames names_;
  fakes::FakeSettingsStore store_;
  fakes::RecordingEventLog log_;
  fakes::RecordingMessageBoxes boxes_;
  fakes::FakeWindowSystem windows_;
  List statuses_;

 private:
  static void ResetModules() {
    mdlConfigs::ResetRun();
    mdlConfigs::ResetPagesWritten();
    mdlFilters::Reset();
    mdlW3C::Reset();
    report::ForgetHostName();
    mdlDNS::Reset();
    mdlMonth::Month().RobotsTxtAgents.Clear();
  }

  platform::Replacement<platform::FileSystem> file_replacement_{files_};
  platform::Replacement<platform::Clock> clock_replacement_{clock_};
  platform::Replacement<platform::HostNames> name_replacement_{names_};
  platform::Replacement<platform::SettingsStore> store_replacement_{store_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
  platform::Replacement<platform::MessageBoxes> box_replacement_{boxes_};
  platform::Replacement<platform::WindowSystem> window_replacement_{windows_};
};

#endif  // HITWICK_APP_RUN_FIXTURE_H_
