#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/descriptor_linux.h"
#include "platform/file_replacement_linux.h"
#include "platform/file_system.h"
#include "platform/names.h"
#include "platform/service.h"
#include "platform/temporary_name.h"

namespace platform {

const char kPathSeparator = '/';

bool FitsInFileName(char c) { return c != '/' && c != '\0'; }

namespace {

class DescriptorInput : public InputFile {
 public:
  explicit DescriptorInput(Descriptor file) : file_(std::move(file)) {}

  int Read(char* buffer, std::size_t size, std::size_t* got) override {
    ssize_t bytes = 0;
    do {
      bytes = read(file_.get(), buffer, size);
    } while (bytes < 0 && errno == EINTR);
    *got = bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
    return bytes < 0 ? errno : 0;
  }

 private:
  Descriptor file_;
};

// The lock of a folder is that of the folder's own inode, and goes when it is closed.
class OpenFolder : public FolderLock {
 public:
  explicit OpenFolder(Descriptor folder) : folder_(std::move(folder)) {}

 private:
  Descriptor folder_;
};

// Why an open descriptor is none that a file can be read from; 0 when it is a regular file.
int RefusalOf(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return errno;
  if (S_ISREG(status.st_mode)) return 0;
  return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
}

// True when an entry of an open folder is a folder or a link to one.
bool IsFolder(DIR* listing, const dirent& entry) {
  if (std::string_view(entry.d_name) == "." || std::string_view(entry.d_name) == "..") return false;
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status {};
  return fstatat(dirfd(listing), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

class PosixFileSystem : public FileSystem {
 public:
  bool FolderExists(const std::string& path) override {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  }

  std::vector<std::string> ListFiles(const std::string& folder, std::string_view prefix,
                                     std::string_view suffix) override {
    std::vector<std::string> names;
    DIR* listing = opendir(folder.c_str());
    if (listing == nullptr) return names;
    while (const dirent* entry = readdir(listing)) {
      struct stat status {};
      if (NameFits(entry->d_name, prefix, suffix) &&
          fstatat(dirfd(listing), entry->d_name, &status, 0) == 0 && S_ISREG(status.st_mode)) {
        names.emplace_back(entry->d_name);
      }
    }
    closedir(listing);
    SortNames(&names);
    return names;
  }

  int ListFolders(const std::string& folder, std::vector<std::string>* names) override {
    names->clear();
    DIR* listing = opendir(folder.c_str());
    if (listing == nullptr) return errno;
    errno = 0;
    while (const dirent* entry = readdir(listing)) {
      if (IsFolder(listing, *entry)) names->emplace_back(entry->d_name);
      errno = 0;
    }
    const int error = errno;
    closedir(listing);
    if (error != 0) names->clear();
    SortNames(names);
    return error;
  }

  int CreateFolder(const std::string& path) override {
    constexpr mode_t kAllTheUserAllows = 0777;
    return mkdir(path.c_str(), kAllTheUserAllows) == 0 ? 0 : errno;
  }

  std::uint64_t FileSize(const std::string& path) override {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
  }

  std::unique_ptr<InputFile> OpenForReading(const std::string& path, int* error) override {
    // Without O_NONBLOCK a pipe that nobody writes to would stop the run.
    Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    *error = file.IsOpen() ? RefusalOf(file.get()) : errno;
    if (*error != 0) return nullptr;
    posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return std::make_unique<DescriptorInput>(std::move(file));
  }

  int ReplaceFile(const std::string& path, std::string_view content) override {
    std::string target;
    if (const int error = FollowLinks(path, &target)) return error;
    constexpr int kTries = 100;
    int error = EEXIST;
    for (int number = 0; number < kTries && error == EEXIST; ++number) {
      error = PutInPlace(target, NewTemporaryName(target), content, kForAll);
    }
    return error;
  }

  void RemoveLeftOvers(const std::string& folder,
                       const std::function<bool(std::string_view)>& is_target) override {
    for (const std::string& name : ListFiles(folder, "", "")) {
      const std::string path = JoinPath(folder, name);
      if (is_target(TargetOfTemporary(name))) RemoveIfLeftOver(path);
      if (is_target(name)) RemoveBehindLink(path);
    }
  }

  std::unique_ptr<FolderLock> LockFolder(const std::string& folder,
                                         std::chrono::milliseconds patience, int* error) override {
    Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    *error = opened.IsOpen() ? TakeLock(opened.get(), patience) : errno;
    return *error == 0 ? std::make_unique<OpenFolder>(std::move(opened)) : nullptr;
  }

 private:
  static std::string NewTemporaryName(const std::string& target) {
    return TemporaryName(target, static_cast<unsigned long>(getpid()));
  }

  // What is left beside the file that a link leads to.
  void RemoveBehindLink(const std::string& path) {
    std::string target;
    if (FollowLinks(path, &target) != 0 || target == path) return;
    const std::size_t end_of_folder = target.rfind('/') + 1;
    const std::string folder = target.substr(0, end_of_folder);
    const std::string file = target.substr(end_of_folder);
    for (const std::string& name : ListFiles(folder, file + ".", ".tmp")) {
      if (TargetOfTemporary(name) == file) RemoveIfLeftOver(folder + name);
    }
  }
};

}  // namespace

FileSystem& RealFileSystem() {
  static PosixFileSystem posix;
  return posix;
}

bool MeansNotThere(int error) { return error == ENOENT; }

FileSystem& TheFileSystem() { return InUse<FileSystem>(RealFileSystem()); }

}  // namespace platform
