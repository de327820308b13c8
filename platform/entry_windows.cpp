#include <windows.h>

#include <shellapi.h>

#include <cstdio>

#include "platform/entry.h"
#include "platform/utf16_windows.h"

namespace {

bool IsUsable(DWORD standard_handle) {
  const HANDLE handle = GetStdHandle(standard_handle);
  return handle != nullptr && handle != INVALID_HANDLE_VALUE &&
         GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

// A program with windows gets no console of its own. Started from one, its words belong there,
// unless they were sent to a file or a pipe, which it is given in any case.
void JoinConsoleOfParent() {
  const bool output_redirected = IsUsable(STD_OUTPUT_HANDLE);
  const bool errors_redirected = IsUsable(STD_ERROR_HANDLE);
  if (output_redirected && errors_redirected) return;
  if (!AttachConsole(ATTACH_PARENT_PROCESS)) return;
  if (!output_redirected) std::freopen("CONOUT$", "w", stdout);
  if (!errors_redirected && std::freopen("CONOUT$", "w", stderr) != nullptr) {
    std::setvbuf(stderr, nullptr, _IONBF, 0);
  }
}

std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(platform::ToUtf8(words[i]));
  LocalFree(words);
  return arguments;
}

// The command line as it was typed, behind the program's name and the blanks that follow it. The
// name ends at the first blank outside quotation marks.
std::string TextAfterProgramName() {
  const std::wstring_view line = GetCommandLineW();
  bool quoted = false;
  std::size_t end = 0;
  for (; end < line.size(); ++end) {
    if (line[end] == L'"') quoted = !quoted;
    if (!quoted && (line[end] == L' ' || line[end] == L'\t')) break;
  }
  const std::size_t text = line.find_first_not_of(L" \t", end);
  return text == std::wstring_view::npos ? "" : platform::ToUtf8(line.substr(text));
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, char*, int) {
  JoinConsoleOfParent();
  return ProgramMain(Arguments(), TextAfterProgramName());
}
