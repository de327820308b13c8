// The system's list of tasks that run every day.
//
// Windows: `Hitwick_schedule` of the program's helper library, which is loaded when a task is
// added. Linux: the user's crontab, one line a task behind a comment that holds the task's name.
// Called by `scheduler` alone.
#ifndef HITWICK_PLATFORM_DAILY_TASKS_H_
#define HITWICK_PLATFORM_DAILY_TASKS_H_

#include <cstdint>
#include <string>

namespace platform {

struct DailyTask {
  std::string name;
  std::string program;      // the executable's name, without its folder
  std::string parameters;   // as they follow the program's name, with a blank in front
  std::string folder;       // the executable's folder
  std::int16_t hour = 0;    // 0..23
  std::int16_t minute = 0;  // 0..59
};

struct TaskResult {
  std::int32_t code = 0;  // 0: the task is registered; else an error code of the system
  std::string reason;     // why not, when the code's own text does not say it
};

class DailyTasks {
 public:
  virtual ~DailyTasks() = default;
  // Registers a task; a task of the same name is replaced.
  virtual TaskResult Hitwick_schedule(const DailyTask& task) = 0;
};

DailyTasks& TheDailyTasks();

// A job record of the AT service.
struct AtJob {
  std::uintptr_t JobTime = 0;     // milliseconds after midnight
  std::uint32_t DaysOfMonth = 0;  // bit mask
  std::uint8_t DaysOfWeek = 0;    // bit mask, bit 0 is Monday
  std::uint8_t Flags = 0;         // 1: run periodically
  std::string Command;            // handed over as wide characters
};

class AtService {
 public:
  virtual ~AtService() = default;
  // Adds a job on the local computer; its number, or -1 when it could not be added (on Linux
  // always: there is no such service).
  virtual std::int32_t NetScheduleJobAdd(const AtJob& job) = 0;
};

AtService& TheAtService();

}  // namespace platform

#endif  // HITWICK_PLATFORM_DAILY_TASKS_H_
