#include "platform/event_log.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>

#include "platform/descriptor_linux.h"
#include "platform/file_replacement_linux.h"
#include "platform/one_line_linux.h"
#include "platform/service.h"
#include "platform/settings_store.h"
#include "platform/standard_error.h"
#include "platform/user_folders_linux.h"

namespace platform {
namespace {

// Now, on the wall clock, with the zone's present offset: 2026-01-31T02:00:00+01:00.
std::string Timestamp() {
  tzset();
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const long offset_minutes = local.tm_gmtoff / 60;
  const long distance = offset_minutes < 0 ? -offset_minutes : offset_minutes;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d%c%02ld:%02ld",
                local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                local.tm_sec, offset_minutes < 0 ? '-' : '+', distance / 60, distance % 60);
  return text.data();
}

class EventLogFile : public EventLog {
 public:
  void Write(EventLevel level, std::string_view text) override {
    const bool warning = level == EventLevel::kWarning;
    const std::string line = OnOneLine(text);
    if (warning) last_warning_ = line;
    const bool stored =
        Store(Timestamp() + (warning ? " warning " : " information ") + line + "\n");
    if (!stored || StandardErrorIsTerminal()) WriteStandardError(line);
  }

  void TellOfFailure(int exit_code) override {
    if (StandardErrorIsTerminal()) return;
    const std::string reason = !last_warning_.empty() ? last_warning_
                                                      : std::string(kSettingsApplication) +
                                                            ": The run ended with exit code " +
                                                            std::to_string(exit_code);
    const std::string path = Path();
    WriteStandardError(path.empty() ? reason : reason + " (event log: " + path + ")");
  }

 private:
  static constexpr off_t kMostBytes = 10'000'000;

  static std::string Folder() {
    const std::string state_folder = UserFolder("XDG_STATE_HOME", ".local/state");
    return state_folder.empty() ? std::string() : state_folder + "/hitwick";
  }
  static std::string Path() {
    const std::string folder = Folder();
    return folder.empty() ? folder : folder + "/events.log";
  }

  // A line is written in one call, so that those of several processes do not mix.
  bool Store(const std::string& line) {
    if (!Open()) return false;
    MakeRoom(line.size());
    return file_.IsOpen() && WriteAll(file_.get(), line) == 0;
  }

  // Opens the file that the environment names now, unless it is the one that is open already:
  // another process may have moved that one away.
  bool Open() {
    const std::string folder = Folder();
    std::string path;
    if (folder.empty() || FollowLinks(Path(), &path) != 0) return false;
    if (path == path_ && IsStillAt(path)) return true;
    file_.Close();
    path_ = path;
    if (MakeFolders(folder) != 0) return false;
    file_ = Descriptor(
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, kForTheUser));
    return file_.IsOpen();
  }

  bool IsStillAt(const std::string& path) const {
    struct stat ours {};
    struct stat there {};
    return file_.IsOpen() && fstat(file_.get(), &ours) == 0 && stat(path.c_str(), &there) == 0 &&
           ours.st_dev == there.st_dev && ours.st_ino == there.st_ino;
  }

  bool IsFull(std::size_t more) const {
    struct stat status {};
    return fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           status.st_size + static_cast<off_t>(more) > kMostBytes;
  }

  // Moves a file that is full out of the way. Only the holder of the file's own lock does, and
  // only while the name is still this file's: two processes would else move the full file and
  // then the new one over it. An entry that is under way in another process ends up in the moved
  // file; where the move fails the file just grows.
  void MakeRoom(std::size_t more) {
    if (!IsFull(more)) return;
    if (flock(file_.get(), LOCK_EX | LOCK_NB) == 0) {
      if (IsStillAt(path_)) std::rename(path_.c_str(), (path_ + ".1").c_str());
      flock(file_.get(), LOCK_UN);
    }
    Open();
  }

  Descriptor file_;
  std::string path_;  // of the file that is open, links followed
  std::string last_warning_;
};

}  // namespace

EventLog& TheEventLog() {
  static EventLogFile file;
  return InUse<EventLog>(file);
}

}  // namespace platform
