// HitwickHelper.dll: registers the daily task with the Task Scheduler. A library of its own, so
// that the program loads what only this needs when a task is added and at no other time.

#include <windows.h>

// These two after it.
#include <sddl.h>
#include <taskschd.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/daily_tasks.h"
#include "platform/task_xml.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using ComObject = std::unique_ptr<Interface, Releaser>;

struct StringFreer {
  void operator()(BSTR text) const { SysFreeString(text); }
};
using ComText = std::unique_ptr<OLECHAR, StringFreer>;

ComText NewComText(const std::string& text) {
  const std::wstring wide = ToUtf16(text);
  ComText copy(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size())));
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

VARIANT Nothing() {
  VARIANT nothing;
  VariantInit(&nothing);
  return nothing;
}

// COM for as long as one call needs it. A program with windows has it already, perhaps in the
// other threading mode, which does as well.
class ComUse {
 public:
  ComUse() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComUse() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComUse(const ComUse&) = delete;
  ComUse& operator=(const ComUse&) = delete;

 private:
  HRESULT result_;
};

HRESULT LastError() { return HRESULT_FROM_WIN32(GetLastError()); }

HRESULT ReadUser(HANDLE token, std::string* identifier) {
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<BYTE> user(size);
  if (!GetTokenInformation(token, TokenUser, user.data(), size, &size)) return LastError();
  wchar_t* text = nullptr;
  if (!ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid, &text)) {
    return LastError();
  }
  *identifier = ToUtf8(text);
  LocalFree(text);
  return S_OK;
}

// The security identifier of the user as whom this process runs.
HRESULT FindUser(std::string* identifier) {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return LastError();
  const HRESULT result = ReadUser(token, identifier);
  CloseHandle(token);
  return result;
}

WallTime Now() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute};
}

HRESULT OpenRootFolder(ComObject<ITaskFolder>* folder) {
  void* created = nullptr;
  HRESULT result = CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER,
                                    __uuidof(ITaskService), &created);
  if (FAILED(result)) return result;
  const ComObject<ITaskService> service(static_cast<ITaskService*>(created));
  result = service->Connect(Nothing(), Nothing(), Nothing(), Nothing());
  if (FAILED(result)) return result;
  ITaskFolder* root = nullptr;
  result = service->GetFolder(NewComText("\\").get(), &root);
  if (SUCCEEDED(result)) folder->reset(root);
  return result;
}

HRESULT RegisterTask(ITaskFolder* folder, const std::string& name, const std::string& definition,
                     TASK_LOGON_TYPE logon) {
  IRegisteredTask* task = nullptr;
  const HRESULT result =
      folder->RegisterTask(NewComText(name).get(), NewComText(definition).get(),
                           TASK_CREATE_OR_UPDATE, Nothing(), Nothing(), logon, Nothing(), &task);
  if (task != nullptr) task->Release();
  return result;
}

HRESULT Schedule(const DailyTask& task) {
  if (!FitsTaskScheduler(task)) return HRESULT_FROM_WIN32(ERROR_INVALID_NAME);
  std::string user;
  HRESULT result = FindUser(&user);
  if (FAILED(result)) return result;
  const ComUse com;
  ComObject<ITaskFolder> folder;
  result = OpenRootFolder(&folder);
  if (FAILED(result)) return result;
  const WallTime first_run = NextTime(Now(), task.hour, task.minute);
  // Only administrators may leave tasks that run while they are away. Anything but a plain success
  // is a refusal here: there is a success that means "registered, but not allowed to start".
  if (RegisterTask(folder.get(), task.name, TaskXml(task, user, first_run, TaskLogon::kAlways),
                   TASK_LOGON_S4U) == S_OK) {
    return S_OK;
  }
  return RegisterTask(folder.get(), task.name,
                      TaskXml(task, user, first_run, TaskLogon::kWhenLoggedOn),
                      TASK_LOGON_INTERACTIVE_TOKEN);
}

LONG ErrorCode(HRESULT result) {
  if (SUCCEEDED(result)) return ERROR_SUCCESS;
  return HRESULT_FACILITY(result) == FACILITY_WIN32 ? HRESULT_CODE(result) : result;
}

}  // namespace
}  // namespace platform

// Registers a task that starts the program in that folder with those parameters every day at that
// time; a task of the same name is replaced. Texts are UTF-8. Zero, or an error code of Windows.
extern "C" __declspec(dllexport) LONG WINAPI
    Hitwick_schedule(const char* task_name, const char* program, const char* parameters,
                     const char* folder, SHORT hour, SHORT minute) try {
  return platform::ErrorCode(
      platform::Schedule({task_name, program, parameters, folder, hour, minute}));
} catch (const std::bad_alloc&) {
  return ERROR_NOT_ENOUGH_MEMORY;
}
