#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_replacement_linux.h"
#include "platform/file_system.h"
#include "platform/names.h"
#include "platform/service.h"

namespace platform {

const char kPathSeparator = '/';

bool FitsInFileName(char c) { return c != '/' && c != '\0'; }

namespace {

class DescriptorInput : public InputFile {
 public:
  explicit DescriptorInput(int file) : file_(file) {}
  ~DescriptorInput() override { close(file_); }

  int Read(char* buffer, std::size_t size, std::size_t* got) override {
    ssize_t bytes = 0;
    do {
      bytes = read(file_, buffer, size);
    } while (bytes < 0 && errno == EINTR);
    *got = bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
    return bytes < 0 ? errno : 0;
  }

 private:
  int file_;
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

  std::unique_ptr<InputFile> OpenForReading(const std::string& path, int* error) override {
    // Without O_NONBLOCK a pipe that nobody writes to would stop the run.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    *error = file < 0 ? errno : RefusalOf(file);
    if (file >= 0 && *error != 0) close(file);
    if (*error != 0) return nullptr;
    posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
    return std::make_unique<DescriptorInput>(file);
  }

  std::unique_ptr<OutputFile> CreateOutput(const std::string& path, int* error) override {
    const std::string target = FollowLinks(path);
    const std::string stem = target + "." + std::to_string(getpid());
    std::string temporary = stem + ".tmp";
    // A process of the same number may have been killed and left its file behind.
    constexpr int kMostLeftOvers = 100;
    for (int number = 1;; ++number) {
      std::unique_ptr<OutputFile> output = StartReplacement(target, temporary, error);
      if (*error != EEXIST || number > kMostLeftOvers) return output;
      temporary = stem + "-" + std::to_string(number) + ".tmp";
    }
  }
};

}  // namespace

FileSystem& RealFileSystem() {
  static PosixFileSystem posix;
  return posix;
}

FileSystem& TheFileSystem() { return InUse<FileSystem>(RealFileSystem()); }

}  // namespace platform
