#include "platform/absolute_path_windows.h"

#include <windows.h>

namespace platform {

std::wstring AbsolutePath(const std::wstring& path) {
  std::wstring absolute(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  absolute.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(absolute.size()),
                                   absolute.data(), nullptr));
  return absolute;
}

}  // namespace platform
