// The text of a crontab: the line of a daily task, and its place among the user's own lines.
//
// No state, no access to the system. Used by the daily tasks.
#ifndef HITWICK_PLATFORM_CRONTAB_LINUX_H_
#define HITWICK_PLATFORM_CRONTAB_LINUX_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/daily_tasks.h"

namespace platform {

// One word as it must stand in a crontab so that the command shell takes it as it is: in single
// quotes, and safe from cron, which takes "%" for a line end and "\\" for an escape.
std::string CrontabWord(std::string_view text);

// The crontab line of a task, without its line end. `variables` are set for the run.
std::string CrontabLine(const DailyTask& task,
                        const std::vector<std::pair<std::string, std::string>>& variables);

// Why cron could not run a line as it stands; empty when it can. A line holds no control
// characters, and cron cuts a long command off without a word.
std::string CrontabRefusal(std::string_view line);

// The comment that stands before the line of the task `name`.
std::string CrontabComment(std::string_view name);

// `crontab` with the line of a task in place of the task's old one, else behind everything. Every
// other line stays as it is; a missing last line end is added, since cron wants one.
std::string CrontabWith(std::string_view crontab, std::string_view name, std::string_view line);

}  // namespace platform

#endif  // HITWICK_PLATFORM_CRONTAB_LINUX_H_
