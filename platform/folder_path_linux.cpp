#include "platform/folder_path.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace platform {
namespace {

// A text of the C library's making.
struct Freed {
  void operator()(char* text) const { free(text); }
};
using CText = std::unique_ptr<char, Freed>;

std::string TextOf(const CText& text) { return text != nullptr ? text.get() : std::string(); }

// The names of a path, without empty ones and "."; ".." takes the name before it away.
std::vector<std::string_view> Names(std::string_view path) {
  std::vector<std::string_view> names;
  while (!path.empty()) {
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    if (name.empty() || name == ".") continue;
    if (name != "..") {
      names.push_back(name);
    } else if (!names.empty()) {
      names.pop_back();
    }
  }
  return names;
}

bool HasParentName(std::string_view path) {
  const std::string enclosed = "/" + std::string(path) + "/";
  return enclosed.find("/../") != std::string::npos;
}

}  // namespace

std::string NormalisedFolder(const std::string& path) {
  std::string absolute = path;
  if (!path.starts_with('/')) absolute = TextOf(CText(getcwd(nullptr, 0))) + "/" + path;
  if (HasParentName(absolute)) {
    // Behind a link, ".." leads elsewhere than the text says.
    const std::string resolved = TextOf(CText(realpath(absolute.c_str(), nullptr)));
    if (!resolved.empty()) return resolved;
  }
  std::string normalised;
  for (const std::string_view name : Names(absolute)) normalised.append("/").append(name);
  return normalised.empty() ? "/" : normalised;
}

std::size_t RootLength(std::string_view path) { return path.starts_with('/') ? 1 : 0; }

std::vector<std::string> DriveRoots() { return {}; }

}  // namespace platform
