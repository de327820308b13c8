#include "platform/child_process_linux.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

namespace platform {
namespace {

// A file in memory that a child reads or writes: a pipe would need both its ends served at once.
class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("hitwick", MFD_CLOEXEC)) {}
  ~MemoryFile() {
    if (file_ >= 0) close(file_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const { return file_; }

  // Fills the file and goes back to its start; an errno code.
  int Fill(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = write(file_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) return errno;
      if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return lseek(file_, 0, SEEK_SET) == 0 ? 0 : errno;
  }

  std::string Content() {
    std::string content;
    std::array<char, 4096> buffer;
    if (lseek(file_, 0, SEEK_SET) != 0) return content;
    ssize_t got = 0;
    while ((got = read(file_, buffer.data(), buffer.size())) > 0) {
      content.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return content;
  }

 private:
  int file_;
};

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  void Use(const MemoryFile& file, int as) {
    posix_spawn_file_actions_adddup2(&actions_, file.descriptor(), as);
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

// A session of its own, in which the signals that this program ignores act as usual.
class SessionAttributes {
 public:
  SessionAttributes() {
    posix_spawnattr_init(&attributes_);
    sigset_t ignored_here;
    sigemptyset(&ignored_here);
    sigaddset(&ignored_here, SIGPIPE);
    sigaddset(&ignored_here, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes_, &ignored_here);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  }
  ~SessionAttributes() { posix_spawnattr_destroy(&attributes_); }
  SessionAttributes(const SessionAttributes&) = delete;
  SessionAttributes& operator=(const SessionAttributes&) = delete;
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

// The list of pointers that a new program takes; it lives as long as `texts`.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// This program's environment with `variables` in place of its own of the same names.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> all = variables;
  for (char** own = environ; *own != nullptr; ++own) {
    const std::string_view entry = *own;
    const std::string_view start = entry.substr(0, entry.find('=') + 1);
    const bool replaced =
        std::any_of(variables.begin(), variables.end(),
                    [start](const std::string& variable) { return variable.starts_with(start); });
    if (!replaced) all.emplace_back(entry);
  }
  return all;
}

// The status of a child that has ended (or been waited for in vain).
int ExitStatus(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

int WaitForEnd(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return ExitStatus(status);
}

std::vector<pid_t>& LeftRunning() {
  static std::vector<pid_t> children;
  return children;
}

// Ends the record of those that have ended since.
void ForgetEnded() {
  std::erase_if(LeftRunning(), [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
}

bool SucceededOrAtWork(pid_t child, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kPause(10);
  const auto end = std::chrono::steady_clock::now() + patience;
  int status = 0;
  for (;;) {
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child) return ExitStatus(status) == 0;
    if (ended < 0 && errno != EINTR) return false;
    if (std::chrono::steady_clock::now() >= end) break;
    std::this_thread::sleep_for(kPause);
  }
  LeftRunning().push_back(child);
  return true;
}

}  // namespace

ChildResult RunChild(const std::vector<std::string>& arguments, const std::string& input,
                     const std::vector<std::string>& variables) {
  MemoryFile in;
  MemoryFile out;
  MemoryFile err;
  ChildResult result;
  if ((result.start_error = in.Fill(input)) != 0) return result;
  FileActions files;
  files.Use(in, STDIN_FILENO);
  files.Use(out, STDOUT_FILENO);
  files.Use(err, STDERR_FILENO);
  std::vector<std::string> words = arguments;
  std::vector<std::string> environment = EnvironmentWith(variables);
  pid_t child = 0;
  result.start_error = posix_spawnp(&child, words.front().c_str(), files.get(), nullptr,
                                    Pointers(words).data(), Pointers(environment).data());
  if (result.start_error != 0) return result;
  result.exit_status = WaitForEnd(child);
  result.output = out.Content();
  result.errors = err.Content();
  return result;
}

bool StartChild(const std::vector<std::string>& arguments, std::chrono::milliseconds patience) {
  ForgetEnded();
  std::vector<std::string> words = arguments;
  const SessionAttributes session;
  pid_t child = 0;
  if (posix_spawnp(&child, words.front().c_str(), nullptr, session.get(), Pointers(words).data(),
                   environ) != 0) {
    return false;
  }
  return SucceededOrAtWork(child, patience);
}

}  // namespace platform
