// The daily task: registers the program to run in batch mode every day at a time of day, for one
// site.
//
// No state. Two ways lead to the system: the daily tasks (`daily_tasks.h`), which the
// configuration window's add button uses, and the older AT service, which no button uses. Both
// tell the user in message boxes what came of it and write nothing to the event log.
#ifndef HITWICK_PLATFORM_SCHEDULER_H_
#define HITWICK_PLATFORM_SCHEDULER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/daily_tasks.h"

namespace scheduler {

struct TimeOfDay {
  int hour = 0;    // 0..23
  int minute = 0;  // 0..59
  int second = 0;  // 0..59
  bool operator==(const TimeOfDay&) const = default;
};

// "H:MM", "HH:MM" or "HH:MM:SS"; nothing for any other text.
std::optional<TimeOfDay> ParseTimeOfDay(std::string_view text);

// The task's name and the parameters of the program, for a site ("INI" in any letter case, or no
// name, is the default site).
std::string TaskName(std::string_view site, const TimeOfDay& time);
std::string TaskParameters(std::string_view site);

// True when "/SITE=" and the quoted name reach the program as that very name: the command line is
// split at blanks and tabs, and the switch loses quotes, slashes and semicolons.
bool FitsCommandLine(std::string_view site);

// Registers the daily task of a site at the time typed as `when`, and tells the user.
void AddDailyTask(const std::string& site, const std::string& when);

// The command line that the AT service is given. It always names the program's usual folder.
std::string AtCommand(std::string_view site);
platform::AtJob AtJobOf(std::string_view site, const TimeOfDay& time);

// Registers the same run with the AT service, and tells the user.
void AddAtJob(const std::string& site, const std::string& when);

}  // namespace scheduler

#endif  // HITWICK_PLATFORM_SCHEDULER_H_
