#include "platform/task_xml.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <tuple>

namespace platform {
namespace {

std::string_view EntityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    default:
      return {};
  }
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    const std::string_view entity = EntityOf(c);
    if (entity.empty()) {
      escaped += c;
    } else {
      escaped += entity;
    }
  }
  return escaped;
}

std::string Element(std::string_view name, std::string_view text) {
  const std::string tag(name);
  return "<" + tag + ">" + Escaped(text) + "</" + tag + ">\n";
}

std::string Padded(int number, std::size_t digits) {
  const std::string text = std::to_string(number);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

// Without a zone: the local time that daylight saving moves along.
std::string Boundary(const WallTime& time) {
  return Padded(time.year, 4) + "-" + Padded(time.month, 2) + "-" + Padded(time.day, 2) + "T" +
         Padded(time.hour, 2) + ":" + Padded(time.minute, 2) + ":00";
}

WallTime DayAfter(const WallTime& time) {
  namespace chr = std::chrono;
  const chr::year_month_day day{chr::sys_days(chr::year(time.year) / time.month / time.day) +
                                chr::days(1)};
  return {static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
          static_cast<int>(static_cast<unsigned>(day.day())), time.hour, time.minute};
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < ' ' || byte == 127;
}

bool HoldsControl(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsControl);
}

// A task's name is a file's name, too.
bool IsTaskName(std::string_view name) {
  return !name.empty() && name.front() != ' ' && name.back() != ' ' && name != "." &&
         name != ".." && name.find_first_of("\\/:*?\"<>|") == std::string_view::npos &&
         !HoldsControl(name);
}

bool StaysAsItIs(std::string_view text) {
  return std::count(text.begin(), text.end(), '%') < 2 &&
         text.find("$(") == std::string_view::npos && !HoldsControl(text);
}

bool IsBetween(int number, int first, int last) { return number >= first && number <= last; }

std::string Triggers(const WallTime& first_run) {
  return "<Triggers>\n<CalendarTrigger>\n" + Element("StartBoundary", Boundary(first_run)) +
         "<ScheduleByDay>\n" + Element("DaysInterval", "1") +
         "</ScheduleByDay>\n</CalendarTrigger>\n</Triggers>\n";
}

std::string Principals(const std::string& user, TaskLogon logon) {
  return "<Principals>\n<Principal id=\"User\">\n" + Element("UserId", user) +
         Element("LogonType", logon == TaskLogon::kAlways ? "S4U" : "InteractiveToken") +
         Element("RunLevel", "LeastPrivilege") + "</Principal>\n</Principals>\n";
}

// A run that was missed is made up for, one that hangs does not keep the next day's from starting,
// and a laptop's battery is no reason to do without.
std::string Settings() {
  return "<Settings>\n" + Element("MultipleInstancesPolicy", "IgnoreNew") +
         Element("DisallowStartIfOnBatteries", "false") +
         Element("StopIfGoingOnBatteries", "false") + Element("StartWhenAvailable", "true") +
         Element("Enabled", "true") + Element("Hidden", "true") +
         Element("ExecutionTimeLimit", "PT23H") + "</Settings>\n";
}

// The Task Scheduler puts a blank between the command and its arguments.
std::string_view WithoutLeadingBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string Actions(const DailyTask& task) {
  return "<Actions Context=\"User\">\n<Exec>\n" +
         Element("Command", task.folder + "\\" + task.program) +
         Element("Arguments", WithoutLeadingBlanks(task.parameters)) +
         Element("WorkingDirectory", task.folder) + "</Exec>\n</Actions>\n";
}

}  // namespace

WallTime NextTime(const WallTime& now, int hour, int minute) {
  WallTime next = now;
  next.hour = hour;
  next.minute = minute;
  return std::tie(hour, minute) > std::tie(now.hour, now.minute) ? next : DayAfter(next);
}

bool FitsTaskScheduler(const DailyTask& task) {
  return IsTaskName(task.name) && StaysAsItIs(task.program) && StaysAsItIs(task.parameters) &&
         StaysAsItIs(task.folder) && IsBetween(task.hour, 0, 23) && IsBetween(task.minute, 0, 59);
}

std::string TaskXml(const DailyTask& task, const std::string& user, const WallTime& first_run,
                    TaskLogon logon) {
  return "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
         "<Task version=\"1.3\" "
         "xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">\n"
         "<RegistrationInfo>\n" +
         Element("Source", "Hitwick") +
         Element("Description", "Makes the pages of usage statistics from the web server's logs.") +
         "</RegistrationInfo>\n" + Triggers(first_run) + Principals(user, logon) + Settings() +
         Actions(task) + "</Task>\n";
}

}  // namespace platform
