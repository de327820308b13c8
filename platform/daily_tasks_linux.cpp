#include <cerrno>
#include <cstdlib>

#include "platform/child_process_linux.h"
#include "platform/crontab_linux.h"
#include "platform/daily_tasks.h"
#include "platform/environment.h"
#include "platform/mod_systemInfo.h"
#include "platform/service.h"

namespace platform {
namespace {

using Variables = std::vector<std::pair<std::string, std::string>>;

// The crontab program; its messages are read, so they are asked for in English.
ChildResult RunCrontab(const std::string& argument, const std::string& input) {
  return RunChild({"crontab", argument}, input, {"LC_ALL=C", "CRONTAB_NOHEADER=Y"});
}

// What a run without windows needs to find the same settings and to give months and hours the same
// names: cron starts it with an environment of its own.
Variables VariablesInForce() {
  const char* zone = std::getenv("TZ");
  Variables variables = {{"LC_ALL", TimeLocaleName()},
                         {"TZ", zone != nullptr ? zone : ":/etc/localtime"}};
  for (const char* folder : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) {
    const std::string path = EnvironmentVariable(folder);
    if (!path.empty()) variables.emplace_back(folder, path);
  }
  return variables;
}

// What the crontab program said of its failure.
TaskResult Refusal(const ChildResult& result) {
  if (result.start_error != 0) {
    return {result.start_error, "The program crontab cannot be started: " +
                                    mod_systemInfo::GetErrorText(result.start_error)};
  }
  const std::size_t end = result.errors.find_last_not_of(" \n");
  if (end == std::string::npos) return {EIO, "The program crontab has failed without a word"};
  return {EIO, result.errors.substr(0, end + 1)};
}

bool Succeeded(const ChildResult& result) {
  return result.start_error == 0 && result.exit_status == 0;
}

// Reads the user's crontab. One that cannot be read is not an empty one: it would be lost.
TaskResult ReadCrontab(std::string* crontab) {
  const ChildResult result = RunCrontab("-l", "");
  if (!Succeeded(result) && result.errors.find("no crontab for ") == std::string::npos) {
    return Refusal(result);
  }
  *crontab = Succeeded(result) ? result.output : std::string();
  return {};
}

// Replaces the user's crontab, and looks whether it has arrived.
TaskResult WriteCrontab(const std::string& crontab) {
  const ChildResult result = RunCrontab("-", crontab);
  if (!Succeeded(result)) return Refusal(result);
  std::string stored;
  TaskResult read = ReadCrontab(&stored);
  if (read.code == 0 && stored != crontab) read = {EIO, "The crontab was not stored as a whole"};
  return read;
}

class Crontab : public DailyTasks {
 public:
  TaskResult Hitwick_schedule(const DailyTask& task) override {
    const std::string line = CrontabLine(task, VariablesInForce());
    std::string refusal = CrontabRefusal(CrontabComment(task.name));
    if (refusal.empty()) refusal = CrontabRefusal(line);
    if (!refusal.empty()) return {EINVAL, refusal};
    std::string crontab;
    const TaskResult read = ReadCrontab(&crontab);
    if (read.code != 0) return read;
    return WriteCrontab(CrontabWith(crontab, task.name, line));
  }
};

class NoAtService : public AtService {
 public:
  std::int32_t NetScheduleJobAdd(const AtJob& /*job*/) override { return -1; }
};

}  // namespace

DailyTasks& TheDailyTasks() {
  static Crontab crontab;
  return InUse<DailyTasks>(crontab);
}

AtService& TheAtService() {
  static NoAtService none;
  return InUse<AtService>(none);
}

}  // namespace platform
