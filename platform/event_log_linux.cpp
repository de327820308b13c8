#include "platform/event_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>

#include "platform/service.h"
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

// The text with its line breaks written as `\n`.
std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') {
      line += "\\n";
    } else if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
      line += text[i];
    }
  }
  return line;
}

// Entries may quote a log; its control bytes must not reach the user's terminal.
std::string Printable(std::string text) {
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) c = '?';
  }
  return text;
}

// Writes a whole line in one call, so that lines of several processes do not mix.
bool WriteLine(int file, const std::string& line) {
  ssize_t written = 0;
  do {
    written = write(file, line.data(), line.size());
  } while (written < 0 && errno == EINTR);
  return written == static_cast<ssize_t>(line.size());
}

class EventLogFile : public EventLog {
 public:
  ~EventLogFile() override { Close(); }

  void Write(EventLevel level, std::string_view text) override {
    const std::string line = OnOneLine(text);
    const char* level_name = level == EventLevel::kWarning ? " warning " : " information ";
    const bool stored = Open() && WriteLine(file_, Timestamp() + level_name + line + "\n");
    if (!stored || isatty(STDERR_FILENO) != 0) {
      WriteLine(STDERR_FILENO, Printable(line) + "\n");
    }
  }

 private:
  // Opens the file that the environment names now, unless it is the one that is open already.
  bool Open() {
    const std::string state_folder = UserFolder("XDG_STATE_HOME", ".local/state");
    if (state_folder.empty()) return false;
    const std::string folder = state_folder + "/hitwick";
    if (file_ >= 0 && folder == folder_) return true;
    Close();
    if (MakeFolders(folder) != 0) return false;
    file_ = open((folder + "/events.log").c_str(),
                 O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0644);
    folder_ = folder;
    return file_ >= 0;
  }

  void Close() {
    if (file_ >= 0) close(file_);
    file_ = -1;
  }

  int file_ = -1;
  std::string folder_;
};

}  // namespace

EventLog& TheEventLog() {
  static EventLogFile file;
  return InUse<EventLog>(file);
}

}  // namespace platform
