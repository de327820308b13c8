#include "platform/scheduler.h"

#include <algorithm>

#include "platform/message_box.h"
#include "platform/mod_systemInfo.h"
#include "platform/names.h"
#include "platform/shell.h"

namespace scheduler {
namespace {

constexpr std::string_view kBaseName = "Hitwick";
constexpr std::string_view kDefaultSite = "INI";
constexpr std::string_view kNotATime = "Not a time of day";
constexpr std::string_view kSiteDoesNotFit = "The site's name cannot stand in a command line";
constexpr std::string_view kInstalledProgram = "\"C:\\Program Files\\Hitwick\\Hitwick.exe\"";

bool IsDefaultSite(std::string_view site) {
  return site.empty() || platform::SameName(site, kDefaultSite);
}

std::string SiteSwitch(std::string_view site) {
  return std::string(" /BATCH /SITE=\"").append(site).append("\"");
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Two digits below `limit` at `position`; -1 for anything else.
int TwoDigitsAt(std::string_view text, std::size_t position, int limit) {
  if (!IsDigit(text[position]) || !IsDigit(text[position + 1])) return -1;
  const int value = (text[position] - '0') * 10 + (text[position + 1] - '0');
  return value < limit ? value : -1;
}

std::string TwoDigits(int number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

void Show(const std::string& text) { platform::TheMessageBoxes().Show(text); }

platform::DailyTask TaskFor(std::string_view site, const TimeOfDay& time) {
  return {TaskName(site, time),
          platform::TheShell().ProgramName(),
          TaskParameters(site),
          platform::TheShell().ProgramFolder(),
          static_cast<std::int16_t>(time.hour),
          static_cast<std::int16_t>(time.minute)};
}

// Why the task was not registered; empty when it was.
std::string RefusalOf(std::string_view site, std::string_view when) {
  const std::optional<TimeOfDay> time = ParseTimeOfDay(when);
  if (!time) return std::string(kNotATime);
  if (!FitsCommandLine(site)) return std::string(kSiteDoesNotFit);
  const platform::TaskResult result =
      platform::TheDailyTasks().Hitwick_schedule(TaskFor(site, *time));
  if (result.code == 0) return {};
  return result.reason.empty() ? mod_systemInfo::GetErrorText(result.code) : result.reason;
}

// The AT service's number for the new job; -1 when there is none.
std::int32_t AtJobNumber(std::string_view site, std::string_view when) {
  const std::optional<TimeOfDay> time = ParseTimeOfDay(when);
  return time ? platform::TheAtService().NetScheduleJobAdd(AtJobOf(site, *time)) : -1;
}

}  // namespace

std::optional<TimeOfDay> ParseTimeOfDay(std::string_view text) {
  std::string padded(text);
  if (padded.size() == 4) padded.insert(0, "0");
  if (padded.size() == 5) padded.append(":00");
  if (padded.size() != 8 || padded[2] != ':' || padded[5] != ':') return std::nullopt;
  const TimeOfDay time = {TwoDigitsAt(padded, 0, 24), TwoDigitsAt(padded, 3, 60),
                          TwoDigitsAt(padded, 6, 60)};
  if (time.hour < 0 || time.minute < 0 || time.second < 0) return std::nullopt;
  return time;
}

std::string TaskName(std::string_view site, const TimeOfDay& time) {
  std::string name;
  if (!IsDefaultSite(site)) name.append(site).append("-");
  return name.append(kBaseName) + "-" + TwoDigits(time.hour) + TwoDigits(time.minute) +
         TwoDigits(time.second);
}

std::string TaskParameters(std::string_view site) {
  return IsDefaultSite(site) ? " /BATCH" : SiteSwitch(site);
}

bool FitsCommandLine(std::string_view site) {
  return std::all_of(site.begin(), site.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte > ' ' && byte != 127 && c != '"' && c != ';' && c != '/' && c != '\\';
  });
}

void AddDailyTask(const std::string& site, const std::string& when) {
  const std::string refusal = RefusalOf(site, when);
  if (refusal.empty()) {
    Show("Scheduled at " + when + "\nTo remove use Control Panel -> Scheduled Tasks");
    return;
  }
  Show("Unable to add task.\n" + refusal +
       "\n\nTime should be formatted as HH:MM:SS\nOr perhaps insufficient privilege, so as "
       "administrator, Control Panel->Add Scheduled task\n" +
       platform::TheShell().ProgramName() + " " + TaskParameters(site));
}

std::string AtCommand(std::string_view site) {
  const std::string program(kInstalledProgram);
  return program + (IsDefaultSite(site) ? " /B" : SiteSwitch(site));
}

platform::AtJob AtJobOf(std::string_view site, const TimeOfDay& time) {
  constexpr std::uint8_t kEveryDay = 127;
  constexpr std::uint8_t kPeriodically = 1;
  const int seconds = (time.hour * 60 + time.minute) * 60 + time.second;
  return {static_cast<std::uintptr_t>(seconds) * 1000, 0, kEveryDay, kPeriodically,
          AtCommand(site)};
}

void AddAtJob(const std::string& site, const std::string& when) {
  const std::int32_t job = AtJobNumber(site, when);
  if (job < 0) {
    // The last line names the default site's command whatever the site.
    Show(
        "Unable to add task.\nTime should be as HH:MM:SS\nOr insufficient privilege, so as "
        "administrator, Control Panel->Add Scheduled task\n" +
        AtCommand(""));
    return;
  }
  const std::string number = std::to_string(job);
  Show("Scheduled at " + when + ". Job ID = " + number +
       "\nTo remove, start a command prompt and run AT " + number + " /DEL");
}

}  // namespace scheduler
