#include "platform/shell.h"

#include <windows.h>

#include <shellapi.h>

#include "platform/service.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

std::wstring ProgramPath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

class WindowsShell : public Shell {
 public:
  bool Open(const std::string& path) override {
    constexpr INT_PTR kLeastSuccess = 32;
    const HINSTANCE result = ShellExecuteA(nullptr, "open", path.c_str(), "0", "0", SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) >= kLeastSuccess;
  }

  std::string ProgramFolder() override {
    const std::wstring path = ProgramPath();
    const std::size_t separator = path.find_last_of(L'\\');
    return separator == std::wstring::npos ? "" : ToUtf8(path.substr(0, separator));
  }

  std::string ProgramName() override {
    const std::wstring path = ProgramPath();
    return ToUtf8(path.substr(path.find_last_of(L'\\') + 1));
  }

  std::string HelpPage() override { return ProgramFolder() + "\\index.htm"; }
};

}  // namespace

Shell& TheShell() {
  static WindowsShell shell;
  return InUse<Shell>(shell);
}

}  // namespace platform
