// The state that the whole program shares, and the settings of the site in use.
//
// State: `Run()`, one value for the process, set by start-up (app/) and, later, by the windows;
// read everywhere above platform/. The settings live in the per-user settings store, one key per
// site, and are loaded before a batch or catch-up run. The procedures of a run belong to this
// namespace too: app/run_driver.h.
#ifndef HITWICK_CONFIG_MDLCONFIGS_H_
#define HITWICK_CONFIG_MDLCONFIGS_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/event_log.h"

namespace mdlConfigs {

struct SiteSettings {
  std::string LogFormat;               // only "W3C" is processed
  std::string LogDir;                  // the site's log folder, without trailing separator
  std::string UsageDir;                // where pages, CSV files and the history are written
  std::int32_t MaxListSize = 100;      // rows of a ranked table; 0 and below list nothing
  bool UseUTC = false;                 // report in UTC instead of local time
  bool ShowUsernames = false;          // include the table of user names
  bool GenerateCSV = false;            // write CSV companions
  std::string ClientIPField = "c-ip";  // the log's field that holds the visitor's address
};

// A month that a run begins with; `number` (from 1) of `all`.
struct MonthBegun {
  int month, year, number, all;
};

// What a window, or somebody at a terminal, wants to know of a run. Without them the hooks stay
// empty.
struct Progress {
  std::function<void(const std::string&)> show_status;  // the current activity, one line
  std::function<void(const MonthBegun&)> show_month;
  // Of the logs of the month, archives as they lie there; `file` is the one being read.
  std::function<void(const std::string& file, std::uint64_t done, std::uint64_t all)>
      show_bytes_read;
  std::function<void(int done, int all)> show_months_done;
  std::function<void()> process_pending_events;  // lets the windows react
  std::function<void()> stay_responsive;         // the same, called often and in mid-work
  bool quit_requested = false;                   // the quit button was pressed
};

struct RunState {
  bool BatchMode = false;        // unattended: no box, no status label
  bool CatchUpMode = false;      // regenerate the pages of the last year
  bool LogTranslations = false;  // diagnostic entries in the event log
  bool Quiet = false;            // no progress at a terminal
  bool OnDemandMode = false;     // a day range of one month under a typed name
  std::string SiteName;          // the section of the site in use; "INI" once settings are loaded
  std::string ReportName;        // base name of an on-demand page
  SiteSettings Settings;
  Progress Ui;
};

RunState& Run();
// Back to the state of a fresh process.
void ResetRun();

inline constexpr std::string_view kDefaultSite = "INI";

// One event-log entry whose text is the program's title directly followed by `text`, which brings
// its own ": " or " : ".
void LogEntry(platform::EventLevel level, std::string_view text);
inline void LogInformation(std::string_view text) {
  LogEntry(platform::EventLevel::kInformation, text);
}
inline void LogWarning(std::string_view text) { LogEntry(platform::EventLevel::kWarning, text); }

// Shows a message box unless in batch mode. The way to a box for everything that also runs in batch
// mode; a question, and what only a window can cause, goes to `platform::TheMessageBoxes` itself.
void TellUser(std::string_view text);
// The same for a text that names a key of the registry, with a line more that says where it is
// when it is elsewhere: `place` as the settings store words it.
void TellUser(std::string_view text, const std::string& place);
// Lets the windows be painted and moved in the middle of long work; without windows it does
// nothing.
void StayResponsive();
// Shows the current activity in the configuration window's label unless in batch mode.
void ShowStatus(const std::string& text);

// The log folder that IIS uses when nobody has changed it.
std::string DefaultLogFolder();

// Loads and checks the settings of `Run().SiteName` ("INI" when empty) into `Run().Settings` and
// writes the checked ones back. Returns 0 when they are usable, 1 when not; every reason is
// logged, and shown outside batch mode, and each setting that nothing reads is a warning.
// `load_filters` is called with the site's name once the log folder has been found good.
std::int16_t LoadSiteSettings(const std::function<void(const std::string& site)>& load_filters);

// Reads all values into `Run().Settings` without any check, so that a window can show what is
// stored when `LoadSiteSettings` has stopped half-way.
void ReadSettingsUnchecked();

// Checks `Run().Settings` and stores the seven values that the configuration window shows. Returns
// 0 when saved; 1, with nothing stored, when the log folder holds no logs or the usage folder does
// not exist; 1 as well when the store refused a value (logged), the others being stored.
std::int16_t SaveSiteSettings();

}  // namespace mdlConfigs

#endif  // HITWICK_CONFIG_MDLCONFIGS_H_
