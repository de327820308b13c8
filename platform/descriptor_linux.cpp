#include "platform/descriptor_linux.h"

#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <thread>

#include "platform/file_system.h"

namespace platform {

void Descriptor::Close() {
  if (IsOpen()) close(std::exchange(number_, -1));
}

int WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (written < 0 && errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int TakeLock(int file, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kLongestPause{10};
  std::chrono::milliseconds pause{1};
  // The pauses are counted: a clock may be set, or stand still, while we wait.
  for (std::chrono::milliseconds waited{0};; waited += pause) {
    if (flock(file, LOCK_EX | LOCK_NB) == 0) return 0;
    if (errno != EWOULDBLOCK && errno != EINTR) return errno;
    if (waited >= patience) return kLockBusyError;
    pause = std::min(2 * pause, kLongestPause);
    std::this_thread::sleep_for(pause);
  }
}

}  // namespace platform
