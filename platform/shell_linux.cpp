#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

#include "platform/service.h"
#include "platform/shell.h"

namespace platform {
namespace {

// Runs a program with one argument, without a command shell in between, and waits for its end.
// True when it could be started and reported success.
bool RunToSuccess(std::string program, std::string argument) {
  std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
  pid_t child = 0;
  if (posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return false;
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class DesktopShell : public Shell {
 public:
  bool Open(const std::string& path) override {
    // A file name that begins with "-" is not to be read as an option.
    return RunToSuccess("xdg-open", path.starts_with('-') ? "./" + path : path);
  }

  std::string ProgramFolder() override {
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlink("/proc/self/exe", target.data(), target.size());
    if (length <= 0) return "";
    const std::string path(target.data(), static_cast<std::size_t>(length));
    return path.substr(0, path.find_last_of('/'));
  }
};

}  // namespace

Shell& TheShell() {
  static DesktopShell shell;
  return InUse<Shell>(shell);
}

}  // namespace platform
