#include "platform/folder_path.h"

#include <windows.h>

#include <algorithm>

#include "platform/absolute_path_windows.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

// The end of the name that begins at `start`: its separator, or the end of the path.
std::size_t NameEnd(std::string_view path, std::size_t start) {
  return std::min(path.find('\\', start), path.size());
}

}  // namespace

std::size_t RootLength(std::string_view path) {
  if (path.starts_with("\\\\")) {  // a share: server and name
    const std::size_t server_end = NameEnd(path, 2);
    return server_end == path.size() ? server_end : NameEnd(path, server_end + 1);
  }
  if (path.size() >= 2 && path[1] == ':') return std::min<std::size_t>(path.size(), 3);
  return path.starts_with('\\') ? 1 : 0;
}

std::string NormalisedFolder(const std::string& path) {
  std::string absolute = ToUtf8(AbsolutePath(ToUtf16(path.empty() ? "." : path)));
  while (absolute.size() > RootLength(absolute) && absolute.back() == '\\') absolute.pop_back();
  return absolute;
}

std::vector<std::string> DriveRoots() {
  std::vector<std::string> roots;
  const DWORD drives = GetLogicalDrives();
  for (int drive = 0; drive < 26; ++drive) {
    if ((drives >> drive & 1) == 0) continue;
    roots.push_back(std::string(1, static_cast<char>('A' + drive)) + ":\\");
  }
  return roots;
}

}  // namespace platform
