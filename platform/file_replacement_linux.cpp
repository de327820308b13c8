#include "platform/file_replacement_linux.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

#include "platform/descriptor_linux.h"

namespace platform {
namespace {

// A file under its temporary name. The lock on it tells other processes that somebody is building
// it; the kernel takes the lock away with the process.
class Temporary {
 public:
  explicit Temporary(std::string path) : path_(std::move(path)) {}
  ~Temporary() {
    if (file_.IsOpen() && !moved_) unlink(path_.c_str());
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;

  int file() const { return file_.get(); }

  int Create(mode_t permissions) {
    constexpr int kOnlyNew = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    file_ = Descriptor(open(path_.c_str(), kOnlyNew, permissions));
    if (!file_.IsOpen()) return errno;
    return IsOurs() ? 0 : EEXIST;
  }

  int MoveTo(const std::string& target) {
    moved_ = std::rename(path_.c_str(), target.c_str()) == 0;
    return moved_ ? 0 : errno;
  }

 private:
  // False when another process took the new file for a left-over before it was locked. A file
  // system that knows no locks loses no left-overs either.
  bool IsOurs() const {
    if (flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    struct stat status {};
    return fstat(file_.get(), &status) == 0 && status.st_nlink > 0;
  }

  std::string path_;
  Descriptor file_;
  bool moved_ = false;
};

// What the link at `path` leads to; empty when there is no link. An error code.
int ReadLink(const std::string& path, std::string* target) {
  target->clear();
  // Owner and text are asked of one and the same link, whatever is put in its place meanwhile.
  const Descriptor link(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!link.IsOpen() || fstat(link.get(), &status) != 0 || !S_ISLNK(status.st_mode)) return 0;
  if (status.st_uid != geteuid() && status.st_uid != 0) return kForeignLinkError;
  std::array<char, PATH_MAX> buffer{};
  const ssize_t length = readlinkat(link.get(), "", buffer.data(), buffer.size());
  if (length <= 0) return length == 0 ? EINVAL : errno;
  const std::string text(buffer.data(), static_cast<std::size_t>(length));
  *target = text.front() == '/' ? text : path.substr(0, path.rfind('/') + 1) + text;
  return 0;
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

// Brings a new name to the disk. A folder that may not be read, and one on a file system that
// syncs no folders, is left to the system.
int SyncFolderOf(const std::string& path) {
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  const Descriptor opened(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened.IsOpen() || fsync(opened.get()) == 0 || errno == EINVAL) return 0;
  return errno;
}

}  // namespace

int FollowLinks(const std::string& path, std::string* target) {
  constexpr int kMostLinks = 40;  // the kernel's own limit
  *target = path;
  for (int links = 0; links < kMostLinks; ++links) {
    std::string next;
    const int error = ReadLink(*target, &next);
    if (error != 0 || next.empty()) return error;
    *target = std::move(next);
  }
  return ELOOP;
}

int PutInPlace(const std::string& target, const std::string& temporary, std::string_view content,
               mode_t if_new) {
  struct stat old {};
  const bool replaces = lstat(target.c_str(), &old) == 0;
  if (replaces && !S_ISREG(old.st_mode)) return S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
  Temporary file(temporary);
  // Nobody else may look into a new file before it has the old one's permissions.
  int error = file.Create(replaces ? kForTheUser : if_new);
  if (error != 0) return error;
  if (replaces) TakeOver(file.file(), old);
  error = WriteAll(file.file(), content);
  if (error == 0 && fsync(file.file()) != 0) error = errno;
  if (error == 0) error = file.MoveTo(target);
  return error != 0 ? error : SyncFolderOf(target);
}

void RemoveIfLeftOver(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  if (flock(file.get(), LOCK_SH | LOCK_NB) == 0) unlink(path.c_str());
}

}  // namespace platform
