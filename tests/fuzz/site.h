// A site in memory on which a fuzz target runs: every service of the system is a fake, and only
// what an input has used is put back. Test code only.
//
// The first part of an input are options, one letter each; what the others are is up to the target.
#ifndef HITWICK_TESTS_FUZZ_SITE_H_
#define HITWICK_TESTS_FUZZ_SITE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/calendar.h"
#include "config/mdlConfigs.h"
#include "logread/mdlFilters.h"
#include "logread/mdlTZ.h"
#include "logread/mdlW3C.h"
#include "platform/file_system.h"
#include "platform/host_names.h"
#include "platform/service.h"
#include "stats/mdlDNS.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "tests/fakes/fake_clock.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/fake_window_system.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/recording_message_boxes.h"
#include "tests/fuzz/expect.h"
#include "tests/fuzz/parts.h"
#include "tests/reference/literal_month.h"

namespace fuzz {

inline bool HasOption(std::string_view options, char letter) {
  return options.find(letter) != std::string_view::npos;
}

// The options 'e', 'k', 'w', 'm' choose a zone, nothing is UTC.
inline std::int16_t BiasOf(std::string_view options) {
  if (HasOption(options, 'e')) return -60;
  if (HasOption(options, 'k')) return -330;
  if (HasOption(options, 'w')) return 480;
  if (HasOption(options, 'm')) return 570;
  return 0;
}

// A resolver that does not start: lookups would start threads, and are tested elsewhere.
class NoHostNames : public platform::HostNames {
 public:
  bool Start() override { return false; }
  void Stop() override {}
  platform::LookupResult NameOf(const std::string&, std::string*, std::string*) override {
    return platform::LookupResult::kNotAddress;
  }
  bool LocalNameBuffer(std::string* buffer) override {
    *buffer = "reporter";
    return true;
  }
};

class Site {
 public:
  Site() {
    clock.utc = clock.local = {2026, 1, 31, 12, 0, 0};
    mdlConfigs::ResetRun();
    mdlFilters::Reset();
    mdlW3C::Reset();
    mdlMonth::Month().RobotsTxtAgents.Clear();
    files.AddFolder("logs");
    files.AddFolder("usage");
  }

  // Names of log files in the order in which January 2026 is read from them.
  static std::vector<std::string> LogNames(bool east) {
    if (east) return {"u_ex251231.log", "ex260110.log", "u_ex260115.log"};
    return {"ex260110.log", "u_ex260109.log", "u_ex260201.log"};
  }

  // Adds the parts from `first` on as log files.
  void AddLogs(const std::vector<std::string_view>& parts, std::size_t first) {
    east_ = clock.bias_minutes < 0;
    const std::vector<std::string> logs = LogNames(east_);
    for (std::size_t i = first; i < parts.size() && i - first < logs.size(); ++i) {
      files.AddFile(platform::JoinPath("logs", logs[i - first]), parts[i]);
    }
  }

  // The month that the log files make, read literally; `slots` as the visits had them before.
  reference::LiteralMonth ReadLiterally(int slots) const {
    reference::LiteralMonth::Period period;
    if (!mdlConfigs::Run().Settings.UseUTC) {
      period.offset_hours = clock.bias_minutes / 60;
      period.offset_minutes = clock.bias_minutes % 60;
    }
    const bool east = period.offset_hours < 0 || period.offset_minutes < 0;
    reference::LiteralMonth month(period, slots);
    // A log of the day before or after is read only where the zone asks for it.
    for (const std::string& name : LogNames(east_)) {
      const std::string path = platform::JoinPath("logs", name);
      const std::string digits = name.substr(name.size() - 10, 6);
      const bool in_month = digits.substr(2, 2) == "01";
      if (!files.Exists(path) || (!in_month && east != (digits == "251231"))) continue;
      const calendar::Date date = {2000 + std::stoi(digits.substr(0, 2)),
                                   std::stoi(digits.substr(2, 2)), std::stoi(digits.substr(4, 2))};
      month.ReadFile(files.Content(path), date);
    }
    month.visits.CloseAllVisits();
    return month;
  }

  // Of diagnostic runs: every dropped line that had a reason to tell has told it.
  void CheckReasons(const reference::LiteralMonth& month) const {
    const auto told = [this](std::string_view part) {
      return static_cast<std::size_t>(log.CountWith(part));
    };
    ExpectEqual(told("Error processing field "), month.Count(reference::Fate::kFailed),
                "failed lines are told");
    ExpectEqual(told(": Skipping log record because of filter rule"),
                month.Count(reference::Fate::kFiltered), "filtered lines are told");
    ExpectEqual(told("Error adding hit "), month.failed_hits, "failed hits are told");
  }

  fakes::FakeFileSystem files;
  fakes::FakeClock clock;
  NoHostNames names;
  fakes::FakeSettingsStore store;
  fakes::RecordingEventLog log;
  fakes::RecordingMessageBoxes boxes;
  fakes::FakeWindowSystem windows;

 private:
  bool east_ = false;

  platform::Replacement<platform::FileSystem> file_replacement_{files};
  platform::Replacement<platform::Clock> clock_replacement_{clock};
  platform::Replacement<platform::HostNames> name_replacement_{names};
  platform::Replacement<platform::SettingsStore> store_replacement_{store};
  platform::Replacement<platform::EventLog> log_replacement_{log};
  platform::Replacement<platform::MessageBoxes> box_replacement_{boxes};
  platform::Replacement<platform::WindowSystem> window_replacement_{windows};
};

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_SITE_H_
