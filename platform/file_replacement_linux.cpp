#include "platform/file_replacement_linux.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

namespace platform {
namespace {

class Replacing : public OutputFile {
 public:
  Replacing(int file, std::string target, std::string temporary)
      : file_(file), target_(std::move(target)), temporary_(std::move(temporary)) {}

  ~Replacing() override {
    if (file_ >= 0) close(file_);
    if (!committed_) unlink(temporary_.c_str());
  }

  int Append(std::string_view bytes) override {
    while (error_ == 0 && !bytes.empty()) {
      const ssize_t written = write(file_, bytes.data(), bytes.size());
      if (written > 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
      } else if (written < 0 && errno != EINTR) {
        error_ = errno;
      }
    }
    return error_;
  }

  int Commit() override {
    if (error_ == 0 && fsync(file_) != 0) error_ = errno;
    if (close(std::exchange(file_, -1)) != 0 && error_ == 0) error_ = errno;
    if (error_ == 0 && std::rename(temporary_.c_str(), target_.c_str()) != 0) error_ = errno;
    committed_ = error_ == 0;
    return error_;
  }

 private:
  int file_;
  std::string target_;
  std::string temporary_;
  int error_ = 0;
  bool committed_ = false;
};

// What the link at `path` leads to; empty when there is no link.
std::string LinkTarget(const std::string& path) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  if (length <= 0) return {};
  const std::string text(target.data(), static_cast<std::size_t>(length));
  const std::size_t name = path.rfind('/') + 1;
  return text.front() == '/' ? text : path.substr(0, name) + text;
}

// Gives a new file the owner and the permissions of the old one, as far as the system allows.
void TakeOver(int file, const struct stat& old) {
  // Only root may give a file away: for others it becomes their own, in the old group if it is
  // one of theirs.
  const bool same_owner = fchown(file, old.st_uid, old.st_gid) == 0 ||
                          fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
  // Where permissions cannot be set, as on a FAT disk, the file has those of its disk anyway.
  static_cast<void>(fchmod(file, old.st_mode & (same_owner ? 07777u : 0777u)));
}

}  // namespace

std::string FollowLinks(const std::string& path) {
  constexpr int kMostLinks = 40;  // the kernel's own limit
  std::string end = path;
  for (int links = 0; links < kMostLinks; ++links) {
    std::string next = LinkTarget(end);
    if (next.empty()) return end;
    end = std::move(next);
  }
  return path;
}

std::unique_ptr<OutputFile> StartReplacement(const std::string& target,
                                             const std::string& temporary, int* error) {
  struct stat old {};
  const bool replaces = lstat(target.c_str(), &old) == 0;
  if (replaces && !S_ISREG(old.st_mode)) {
    *error = S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
    return nullptr;
  }
  // Nobody else may look into a new file before it has the old one's permissions.
  const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                        replaces ? S_IRUSR | S_IWUSR : 0666);
  if (file < 0) {
    *error = errno;
    return nullptr;
  }
  auto replacing = std::make_unique<Replacing>(file, target, temporary);
  if (replaces) TakeOver(file, old);
  *error = 0;
  return replacing;
}

}  // namespace platform
