// What the Task Scheduler of Windows is told about a daily task: XML of its schema, version 1.3.
//
// No state, nothing of the system. Used by the helper library (`helper_library_windows.cpp`).
#ifndef HITWICK_PLATFORM_TASK_XML_H_
#define HITWICK_PLATFORM_TASK_XML_H_

#include <string>

#include "platform/daily_tasks.h"

namespace platform {

// When the task may run.
enum class TaskLogon {
  kAlways,        // whether or not the user is logged on; without a password, so without network
  kWhenLoggedOn,  // while the user is logged on
};

// What the clock on the wall shows.
struct WallTime {
  int year = 0;
  int month = 0;  // 1..12
  int day = 0;    // 1..31
  int hour = 0;
  int minute = 0;
  bool operator==(const WallTime&) const = default;
};

// The next time, later than `now`, at which the clock shows that hour and minute. A first run in
// the past would count as missed and be made up for at once.
WallTime NextTime(const WallTime& now, int hour, int minute);

// True when the Task Scheduler takes the task's name and hands program, parameters and folder on
// as they are. It would replace "%NAME%" and "$(NAME)", and XML has no control characters.
bool FitsTaskScheduler(const DailyTask& task);

// The definition (UTF-8; its first line promises the UTF-16 in which it has to be handed over).
// `user` is the security identifier of the user as whom the program runs.
std::string TaskXml(const DailyTask& task, const std::string& user, const WallTime& first_run,
                    TaskLogon logon);

}  // namespace platform

#endif  // HITWICK_PLATFORM_TASK_XML_H_
