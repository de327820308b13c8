#include "platform/user_folders_linux.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

#include "platform/environment.h"

namespace platform {
namespace {

bool IsAbsolute(const std::string& path) { return !path.empty() && path.front() == '/'; }

std::string HomeOfAccount() {
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> buffer(16384);
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : std::string();
}

}  // namespace

std::string UserFolder(const char* variable, const std::string& below_home) {
  const std::string folder = EnvironmentVariable(variable);
  if (IsAbsolute(folder)) return folder;
  std::string home = EnvironmentVariable("HOME");
  if (!IsAbsolute(home)) home = HomeOfAccount();
  return IsAbsolute(home) ? home + "/" + below_home : std::string();
}

int MakeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    struct stat status {};
    if (stat(part.c_str(), &status) != 0) {
      if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return errno;
    } else if (!S_ISDIR(status.st_mode)) {
      return ENOTDIR;
    }
    if (end == std::string::npos) return 0;
  }
}

}  // namespace platform
