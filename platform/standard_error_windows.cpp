#include <windows.h>

#include <string>

#include "platform/standard_error.h"
#include "platform/utf16_windows.h"

namespace platform {

bool StandardErrorIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void WriteToStandardError(std::string_view bytes) {
  const HANDLE standard_error = GetStdHandle(STD_ERROR_HANDLE);
  DWORD written = 0;
  if (StandardErrorIsTerminal()) {
    const std::wstring text = ToUtf16(bytes);
    WriteConsoleW(standard_error, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  } else {
    WriteFile(standard_error, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  }
}

}  // namespace platform
