#include "app/frmMain.h"

#include <new>

#include "app/progress_line.h"
#include "app/run_driver.h"
#include "config/calendar.h"
#include "config/mdlConfigs.h"
#include "config/program.h"
#include "config/text.h"
#include "logread/mdlFilters.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "platform/mod_systemInfo.h"
#include "platform/standard_error.h"
#include "platform/window_system.h"
#include "stats/mdlWebPage.h"

namespace frmMain {
namespace {

using mdlConfigs::Run;

constexpr std::int16_t kFirstDay = 1;
constexpr std::int16_t kLastDay = 31;
constexpr std::string_view kSiteSwitchFormat = ": Format for site name switch is /SITE=NAME";

// The site switch had no "=": the start window is unloaded and nothing runs.
bool start_window_unloaded = false;

// The version is to be shown once the whole command line has been read.
bool version_wanted = false;

bool windows_started = false;

// Starts the windows if they are not yet there. False with the reason when none can be shown.
bool StartWindows(std::string* why_not) {
  if (!windows_started) windows_started = platform::TheWindowSystem().Start(why_not);
  return windows_started;
}

// The same; standard error says why not, followed by `consequence`.
bool StartWindowsOrTell(std::string_view consequence) {
  std::string why_not;
  if (StartWindows(&why_not)) return true;
  platform::WriteStandardError("Hitwick: " + why_not + std::string(consequence));
  return false;
}

void SelectSite() {
  if (!StartWindowsOrTell(", so the site selection cannot be shown")) return;
  platform::TheWindowSystem().SelectSite();
}

bool IsInteractive() { return !Run().BatchMode && !Run().CatchUpMode && !start_window_unloaded; }

// In a window when more of them will follow.
void ShowVersion() {
  std::string why_not;
  if (IsInteractive()) StartWindows(&why_not);
  mdlConfigs::TellUser("Hitwick version " + program::Version());
}

// The interactive run: the program lives on in the configuration window until it is closed.
int InteractiveRun() {
  if (!StartWindowsOrTell("; use /BATCH or /C with /SITE=NAME (see --help)")) {
    return kExitNotStarted;
  }
  platform::TheWindowSystem().ShowConfiguration();
  platform::TheWindowSystem().RunUntilClosed();
  return mdlConfigs::AllPagesWritten() ? kExitDone : kExitFailed;
}

calendar::Date Today() {
  const platform::DateTime now = platform::TheClock().LocalNow();
  return {now.year, now.month, now.day};
}

// Reports all days from the month of `first` to the month of `last`.
void ReportMonths(const calendar::Date& first, const calendar::Date& last) {
  const std::int16_t result = mdlConfigs::RunPeriod(
      kFirstDay, kLastDay, static_cast<std::int16_t>(first.month),
      static_cast<std::int16_t>(last.month), static_cast<std::int16_t>(first.year),
      static_cast<std::int16_t>(last.year));
  if (result == 0) mdlConfigs::WriteLast12MonthsPage();
}

bool LoadSettings() { return mdlConfigs::LoadSiteSettings(mdlFilters::LoadFilters) == 0; }

// One run covers the current month; on the first of a month the month that has just ended, too.
bool BatchRun() {
  if (!LoadSettings()) return false;
  const calendar::Date today = Today();
  ReportMonths(today.day == 1 ? calendar::AddDays(today, -1) : today, today);
  return true;
}

int ExitCode(bool settings_usable) {
  return settings_usable && mdlConfigs::AllPagesWritten() ? kExitDone : kExitFailed;
}

std::string SiteNameIn(std::string_view value) {
  if (!value.empty() && value.front() == '"') {
    value.remove_prefix(1);
    value = value.substr(0, value.find('"'));
  } else {
    value = value.substr(0, value.find('/'));
    value = value.substr(0, value.find(' '));
  }
  std::string name(value);
  std::erase_if(name, [](char c) { return c == '/' || c == '\\' || c == ';'; });
  return name;
}

void NameSite(std::string_view found) {
  const std::size_t equals = found.find('=');
  if (equals != std::string_view::npos) {
    Run().SiteName = SiteNameIn(found.substr(equals + 1));
    return;
  }
  if (Run().BatchMode) mdlConfigs::LogWarning(kSiteSwitchFormat);
  platform::WriteStandardError(std::string(program::kTitle).append(kSiteSwitchFormat));
  start_window_unloaded = true;
}

constexpr Switch kSwitches[] = {
    {.text = "/B",
     .spelling = "/BATCH",
     .help = "report the current month (on the 1st also the month before) and end",
     .apply = [](std::string_view) { Run().BatchMode = true; }},
    {.text = "/C",
     .spelling = "/C",
     .help = "catch up: report the last thirteen months and end",
     .apply = [](std::string_view) { Run().CatchUpMode = true; }},
    {.text = "/D",
     .spelling = "/D",
     .help = "diagnostic entries in the event log",
     .apply = [](std::string_view) { Run().LogTranslations = true; }},
    {.text = "/V",
     .spelling = "/V",
     .help = "show the version, unless with /BATCH",
     .apply = [](std::string_view) { version_wanted = true; }},
    {.text = "/L",
     .spelling = "/L",
     .help = "choose the site in a window",
     .apply = [](std::string_view) { SelectSite(); }},
    {.text = "/S",
     .spelling = "/SITE=NAME",
     .help = "use the settings of this site (default: INI)",
     .apply = NameSite},
    {.text = "--quiet",
     .spelling = "--quiet",
     .help = "no progress line at a terminal",
     .apply = [](std::string_view) { Run().Quiet = true; }},
    // The entry has answered this one before any other is applied.
    {.text = "--sites",
     .spelling = "--sites",
     .help = "print the configured sites, one a line, and end",
     .apply = [](std::string_view) {}},
};

// Where a switch stands in a token.
std::size_t PositionOf(const Switch& known, std::string_view token) {
  if (!known.text.starts_with("--")) return text::FindIgnoringCase(token, known.text);
  return token == known.text ? 0 : text::kNone;
}

}  // namespace

std::span<const Switch> Switches() { return kSwitches; }

void ApplySwitch(std::string_view token) {
  for (const Switch& known : kSwitches) {
    const std::size_t position = PositionOf(known, token);
    if (position != text::kNone) known.apply(token.substr(position));
  }
  mdlConfigs::LogInformation(": Configuration for site name is '" + Run().SiteName + "'");
}

void ParseCommandLine(std::string_view command_line) {
  version_wanted = false;
  std::string token;
  for (const char c : command_line) {
    if (c != ' ' && c != '\t') {
      token += c;
    } else if (!token.empty()) {
      ApplySwitch(token);
      token.clear();
    }
  }
  if (!token.empty()) ApplySwitch(token);
  if (version_wanted) ShowVersion();
}

bool CatchUp() {
  if (!Run().CatchUpMode) return true;
  if (!LoadSettings()) return false;
  const calendar::Date today = Today();
  ReportMonths({today.year - 1, today.month, 1}, today);
  return true;
}

namespace {

int UnattendedRun() {
  progress_line::Begin();
  const int exit_code = ExitCode(Run().CatchUpMode ? CatchUp() : BatchRun());
  progress_line::End();
  return exit_code;
}

// The start-up sequence up to the end of the run that it chose.
int StartUp(const std::string& command_line) {
  Run().OnDemandMode = false;
  start_window_unloaded = false;
  mdlConfigs::ResetPagesWritten();
  mdlWebPage::BuildLookupTables();
  ParseCommandLine(command_line);
  mod_systemInfo::AllowBoxes(!Run().BatchMode);
  if (start_window_unloaded) return kExitNotStarted;
  return IsInteractive() ? InteractiveRun() : UnattendedRun();
}

// A month that memory does not suffice for is the run driver's concern; this is for all the rest.
int StartUpWithinMemory(const std::string& command_line) {
  try {
    return StartUp(command_line);
  } catch (const std::bad_alloc&) {
    mdlConfigs::LogWarning(": Out of memory");
    return kExitFailed;
  }
}

}  // namespace

int Form_Load(const std::string& command_line) {
  const int exit_code = StartUpWithinMemory(command_line);
  Form_Terminate();
  const bool unattended = Run().BatchMode || Run().CatchUpMode;
  if (unattended && exit_code != kExitDone) platform::TheEventLog().TellOfFailure(exit_code);
  return exit_code;
}

void Form_Terminate() {
  if (windows_started) platform::TheWindowSystem().Stop();
  windows_started = false;
}

}  // namespace frmMain
