#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>

#include "platform/child_process_linux.h"
#include "platform/service.h"
#include "platform/shell.h"

namespace platform {
namespace {

// Where no desktop runs, the opener itself becomes the browser and does not end. What goes wrong
// goes wrong before that.
constexpr std::chrono::seconds kOpenerPatience(3);

bool Exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

bool IsAddress(const std::string& path) { return path.find("://") != std::string::npos; }

// The executable's path; empty when the system does not tell.
std::string ProgramPath() {
  std::array<char, PATH_MAX> target = {};
  const ssize_t length = readlink("/proc/self/exe", target.data(), target.size());
  if (length <= 0) return "";
  return {target.data(), static_cast<std::size_t>(length)};
}

class DesktopShell : public Shell {
 public:
  bool Open(const std::string& path) override {
    if (!IsAddress(path) && !Exists(path)) return false;
    // A file name that begins with "-" is not to be read as an option.
    return StartChild({"xdg-open", path.starts_with('-') ? "./" + path : path}, kOpenerPatience);
  }

  std::string ProgramFolder() override {
    const std::string path = ProgramPath();
    return path.substr(0, path.find_last_of('/'));
  }

  std::string ProgramName() override {
    const std::string path = ProgramPath();
    return path.substr(path.find_last_of('/') + 1);
  }

  std::string HelpPage() override {
    const std::string folder = ProgramFolder();
    const std::string beside = folder + "/index.htm";
    const std::string prefix = folder.substr(0, folder.find_last_of('/'));
    const std::string shared = prefix + "/share/hitwick/index.htm";
    return !Exists(beside) && Exists(shared) ? shared : beside;
  }
};

}  // namespace

Shell& TheShell() {
  static DesktopShell shell;
  return InUse<Shell>(shell);
}

}  // namespace platform
