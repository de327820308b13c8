#include <windows.h>

#include <string>

#include "platform/standard_error.h"
#include "platform/utf16_windows.h"

namespace platform {

bool StandardErrorIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void WriteStandardError(std::string_view text) {
  const HANDLE standard_error = GetStdHandle(STD_ERROR_HANDLE);
  DWORD written = 0;
  if (StandardErrorIsTerminal()) {
    const std::wstring line = ToUtf16(text) + L"\r\n";
    WriteConsoleW(standard_error, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  } else {
    const std::string line = std::string(text) + "\n";
    WriteFile(standard_error, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  }
}

}  // namespace platform
