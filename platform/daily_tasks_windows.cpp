#include <windows.h>

// These two in this order.
#include <lmcons.h>

#include <lmat.h>

#include <cstring>
#include <utility>

#include "platform/daily_tasks.h"
#include "platform/service.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

// A library for as long as one call needs it.
class Library {
 public:
  explicit Library(HMODULE module) : module_(module) {}
  ~Library() {
    if (module_ != nullptr) FreeLibrary(module_);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // An entry by its name; null, with the system's last error set, when there is none.
  template <class Function>
  Function Entry(const char* name) const {
    if (module_ == nullptr) return nullptr;
    const FARPROC address = GetProcAddress(module_, name);
    Function function = nullptr;
    static_assert(sizeof function == sizeof address);
    std::memcpy(&function, &address, sizeof function);
    return function;
  }

 private:
  HMODULE module_;
};

TaskResult LastError() { return {static_cast<std::int32_t>(GetLastError()), ""}; }

// The helper library stands beside the program and is loaded from there only.
class HelperLibrary : public DailyTasks {
 public:
  TaskResult Hitwick_schedule(const DailyTask& task) override {
    using Schedule =
        LONG(WINAPI*)(const char* task_name, const char* program, const char* parameters,
                      const char* folder, SHORT hour, SHORT minute);
    const Library helper(LoadLibraryExW(ToUtf16(task.folder + "\\HitwickHelper.dll").c_str(),
                                        nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    const auto schedule = helper.Entry<Schedule>("Hitwick_schedule");
    if (schedule == nullptr) return LastError();
    return {static_cast<std::int32_t>(schedule(task.name.c_str(), task.program.c_str(),
                                               task.parameters.c_str(), task.folder.c_str(),
                                               task.hour, task.minute)),
            ""};
  }
};

AT_INFO RecordOf(const AtJob& job, std::wstring* command) {
  return {job.JobTime, job.DaysOfMonth, job.DaysOfWeek, job.Flags, command->data()};
}

class SystemAtService : public AtService {
 public:
  std::int32_t NetScheduleJobAdd(const AtJob& job) override {
    using Add = NET_API_STATUS(WINAPI*)(const wchar_t* server, BYTE* record, DWORD* number);
    const Library network(LoadLibraryExW(L"netapi32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto add = network.Entry<Add>("NetScheduleJobAdd");
    if (add == nullptr) return -1;
    std::wstring command = ToUtf16(job.Command);
    AT_INFO record = RecordOf(job, &command);
    DWORD number = 0;
    const NET_API_STATUS status = add(nullptr, reinterpret_cast<BYTE*>(&record), &number);
    return status == 0 ? static_cast<std::int32_t>(number) : -1;
  }
};

}  // namespace

DailyTasks& TheDailyTasks() {
  static HelperLibrary helper;
  return InUse<DailyTasks>(helper);
}

AtService& TheAtService() {
  static SystemAtService system;
  return InUse<AtService>(system);
}

}  // namespace platform
