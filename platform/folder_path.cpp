#include "platform/folder_path.h"

#include "platform/file_system.h"

namespace platform {

std::vector<std::string> FolderChain(const std::string& path) {
  std::vector<std::string> chain = {path.substr(0, RootLength(path))};
  if (chain.front().size() == path.size()) return chain;
  // A root that ends with a separator has none behind it.
  std::size_t end = chain.front().size();
  for (;;) {
    end = path.find(kPathSeparator, end + 1);
    chain.push_back(path.substr(0, end));
    if (end == std::string::npos) return chain;
  }
}

std::string FolderName(const std::string& path) {
  if (RootLength(path) == path.size()) return path;
  return path.substr(path.rfind(kPathSeparator) + 1);
}

std::string FolderInside(const std::string& folder, std::string_view name) {
  if (!folder.empty() && folder.back() == kPathSeparator) return std::string(folder).append(name);
  return JoinPath(folder, name);
}

}  // namespace platform
