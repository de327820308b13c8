#include "platform/settings_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <map>
#include <utility>

#include "platform/descriptor_linux.h"
#include "platform/event_log.h"
#include "platform/file_replacement_linux.h"
#include "platform/names.h"
#include "platform/service.h"
#include "platform/settings_file_linux.h"
#include "platform/user_folders_linux.h"

namespace platform {
namespace {

using Result = SettingsStore::Result;

constexpr Result kInvalidHandle = 6;
constexpr Result kLockViolation = 33;
constexpr Result kDiskFull = 112;
constexpr Result kRegistryIoFailed = 1016;
constexpr std::size_t kLongestValueName = 254;

// The registry's code for an errno code.
Result ResultOf(int error) {
  switch (error) {
    case 0:
      return kStoreSuccess;
    case EACCES:
    case EPERM:
    case EROFS:
    case kForeignLinkError:
      return kStoreAccessDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return kDiskFull;
    case kLockBusyError:
      return kLockViolation;
    default:
      return kRegistryIoFailed;
  }
}

// What tells one state of a file from the next without reading it.
struct FileStamp {
  bool exists = false;
  dev_t device = 0;
  ino_t number = 0;
  off_t size = 0;
  timespec modified = {};
  timespec changed = {};
};

bool SameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool SameStamp(const FileStamp& a, const FileStamp& b) {
  return a.exists == b.exists && a.device == b.device && a.number == b.number && a.size == b.size &&
         SameTime(a.modified, b.modified) && SameTime(a.changed, b.changed);
}

FileStamp StampOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {.exists = true,
          .device = status.st_dev,
          .number = status.st_ino,
          .size = status.st_size,
          .modified = status.st_mtim,
          .changed = status.st_ctim};
}

// The right to change the settings, held against other processes. The lock file stays where it
// is: removing it would let two processes hold two of them.
class WriteLock {
 public:
  explicit WriteLock(const std::string& path)
      : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kForTheUser)),
        error_(file_.IsOpen() ? TakeLock(file_.get(), kLockPatience) : errno) {}

  int error() const { return error_; }

 private:
  Descriptor file_;
  int error_;
};

// Replaces the file at `target`. The caller holds the lock, so a temporary file that stands there
// was left by a process that was killed.
int Save(const std::string& target, const std::string& content) {
  const std::string temporary = target + ".tmp";
  unlink(temporary.c_str());
  return PutInPlace(target, temporary, content, kForTheUser);
}

void Warn(const std::string& text) {
  TheEventLog().Write(EventLevel::kWarning, std::string(kSettingsApplication) + ": " + text);
}

// Turns a path below the user's root into one below the settings branch (the branch itself: the
// empty path). kStoreNotFound when it lies elsewhere.
Result BelowBranch(std::string_view path, std::string* below) {
  below->clear();
  if (SameName(path, kSettingsBranch)) return kStoreSuccess;
  const std::string prefix = std::string(kSettingsBranch) + "\\";
  if (!SameName(path.substr(0, prefix.size()), prefix)) return kStoreNotFound;
  *below = path.substr(prefix.size());
  return SettingsFile::IsValidPath(*below) ? kStoreSuccess : kStoreInvalidParameter;
}

class SettingsIni : public SettingsStore {
 public:
  Result OpenKey(const std::string& path, Key* key) override {
    *key = 0;
    std::string below;
    if (const Result result = BelowBranch(path, &below)) return result;
    if (const Result result = Load()) return result;
    if (!Exists(below)) return kStoreNotFound;
    *key = Opened(below);
    return kStoreSuccess;
  }

  Result CreateKey(const std::string& path, Key* key) override {
    *key = 0;
    std::string below;
    if (BelowBranch(path, &below) != kStoreSuccess) return kStoreInvalidParameter;
    const Result result = Change([&](SettingsFile* file, bool* changed) {
      *changed = below.empty() ? !stamp_.exists : file->CreateKey(below);
      return kStoreSuccess;
    });
    if (result == kStoreSuccess) *key = Opened(below);
    return result;
  }

  void CloseKey(Key key) override { open_.erase(key); }

  std::string PlaceOf(const std::string& path) override {
    std::string below;
    return BelowBranch(path, &below) != kStoreNotFound ? PlaceBelowBranch(below) : std::string();
  }

  std::string PlaceOf(Key key) override {
    const auto open = open_.find(key);
    return open != open_.end() ? PlaceBelowBranch(open->second) : std::string();
  }

  Result QueryInfo(Key key, std::uint32_t* subkeys, std::uint32_t* values) override {
    std::string path;
    if (const Result result = LoadKey(key, &path)) return result;
    *subkeys = static_cast<std::uint32_t>(file_.SubkeyCount(path));
    *values = static_cast<std::uint32_t>(file_.ValueCount(path));
    return kStoreSuccess;
  }

  Result EnumKey(Key key, std::uint32_t index, std::string* name) override {
    std::string path;
    if (const Result result = LoadKey(key, &path)) return result;
    if (index >= file_.SubkeyCount(path)) return kStoreNoMoreItems;
    *name = file_.Subkey(path, index);
    return kStoreSuccess;
  }

  Result EnumValue(Key key, std::uint32_t index, std::size_t data_capacity, std::string* name,
                   std::string* data) override {
    std::string path;
    if (const Result result = LoadKey(key, &path)) return result;
    if (index >= file_.ValueCount(path)) return kStoreNoMoreItems;
    SettingsFile::Value value = file_.ValueAt(path, index);
    if (value.name.size() > kLongestValueName || value.text.size() >= data_capacity) {
      return kStoreMoreData;
    }
    *name = std::move(value.name);
    *data = std::move(value.text);
    data->push_back('\0');
    return kStoreSuccess;
  }

  std::string PlaceOfValue(Key key, const std::string& name) override {
    std::string path;
    if (LoadKey(key, &path) != kStoreSuccess) return {};
    for (std::size_t i = 0; i < file_.ValueCount(path); ++i) {
      const SettingsFile::Value value = file_.ValueAt(path, i);
      if (SameName(value.name, name)) return PlaceOfLine(value.line);
    }
    return {};
  }

  Result SetValue(Key key, const std::string& name, std::string_view text) override {
    if (!SettingsFile::IsValidValueName(name) || text.find('\0') != std::string_view::npos) {
      return kStoreInvalidParameter;
    }
    return ChangeKey(key, [&](SettingsFile* file, const std::string& path, bool* changed) {
      *changed = file->SetValue(path, name, text);
      return kStoreSuccess;
    });
  }

  Result DeleteValue(Key key, const std::string& name) override {
    return ChangeKey(key, [&](SettingsFile* file, const std::string& path, bool* changed) {
      *changed = file->DeleteValue(path, name);
      return *changed ? kStoreSuccess : kStoreNotFound;
    });
  }

  Result DeleteKey(Key parent, const std::string& name) override {
    if (!SettingsFile::IsValidPath(name)) return kStoreInvalidParameter;
    return ChangeKey(parent, [&](SettingsFile* file, const std::string& path, bool* changed) {
      const std::string doomed = path.empty() ? name : path + "\\" + name;
      if (!file->HasKey(doomed)) return kStoreNotFound;
      if (file->SubkeyCount(doomed) > 0) return kStoreAccessDenied;
      *changed = file->DeleteKey(doomed);
      return kStoreSuccess;
    });
  }

 private:
  // An edit of the file in memory; sets whether it changed anything.
  using Edit = std::function<Result(SettingsFile* file, bool* changed)>;
  using KeyEdit = std::function<Result(SettingsFile* file, const std::string& path, bool* changed)>;

  Key Opened(const std::string& path) {
    open_[++last_key_] = path;
    return last_key_;
  }

  static std::string PlaceBelowBranch(const std::string& path) {
    return "On this system that is " + (path.empty() ? "" : "section [" + path + "] of ") +
           FilePath();
  }

  // Empty when the user has no folder for it.
  static std::string FilePath() {
    const std::string config_folder = UserFolder("XDG_CONFIG_HOME", ".config");
    return config_folder.empty() ? std::string() : config_folder + "/hitwick/settings.ini";
  }

  // The branch exists as soon as its file does.
  bool Exists(const std::string& path) const { return stamp_.exists && file_.HasKey(path); }

  // Brings `file_` up to date with the file, which is read again when it is another one than last
  // time. A missing file is an empty one.
  Result Load() {
    const std::string path = FilePath();
    if (path.empty()) return kRegistryIoFailed;
    const FileStamp stamp = StampOf(path);
    if (loaded_ && path == path_ && SameStamp(stamp, stamp_)) return kStoreSuccess;
    return Read(path, stamp);
  }

  // The stamp was taken before: should the file be replaced meanwhile, the next call notices.
  Result Read(const std::string& path, const FileStamp& stamp) {
    loaded_ = false;
    std::string content;
    const int error = ReadWholeFile(RealFileSystem(), path, &content);
    if (error != 0 && error != ENOENT && error != ENOTDIR) return ResultOf(error);
    file_ = SettingsFile(content);
    path_ = path;
    stamp_ = stamp;
    stamp_.exists = error == 0;
    loaded_ = true;
    ReportBrokenLines();
    return kStoreSuccess;
  }

  // Loads the file and gives the path of an open key that still exists.
  Result LoadKey(Key key, std::string* path) {
    const auto open = open_.find(key);
    if (open == open_.end()) return kInvalidHandle;
    if (const Result result = Load()) return result;
    if (!Exists(open->second)) return kStoreNotFound;
    *path = open->second;
    return kStoreSuccess;
  }

  Result ChangeKey(Key key, const KeyEdit& edit) {
    const auto open = open_.find(key);
    if (open == open_.end()) return kInvalidHandle;
    const std::string path = open->second;
    return Change([&](SettingsFile* file, bool* changed) {
      return Exists(path) ? edit(file, path, changed) : kStoreNotFound;
    });
  }

  // Carries out an edit. It is tried on what the file holds now; only if that changes something
  // the lock is taken and the edit repeated on what the file holds then.
  Result Change(const Edit& edit) {
    bool changed = false;
    SettingsFile edited;
    if (const Result result = TryEdit(edit, &edited, &changed); result != 0 || !changed) {
      return result;
    }
    std::string target;
    if (const int error = FollowLinks(path_, &target)) return ResultOf(error);
    if (const int error = MakeFolders(target.substr(0, target.rfind('/')))) {
      return ResultOf(error);
    }
    const WriteLock lock(target + ".lock");
    if (lock.error() == kLockBusyError) {
      Warn("Gave up after 30 seconds of waiting for another process that changes '" + target + "'");
    }
    if (lock.error() != 0) return ResultOf(lock.error());
    loaded_ = false;
    if (const Result result = TryEdit(edit, &edited, &changed); result != 0 || !changed) {
      return result;
    }
    loaded_ = false;
    return ResultOf(Save(target, edited.Text()));
  }

  Result TryEdit(const Edit& edit, SettingsFile* edited, bool* changed) {
    *changed = false;
    if (const Result result = Load()) return result;
    *edited = file_;
    return edit(edited, changed);
  }

  std::string PlaceOfLine(int number) const {
    return "Line " + std::to_string(number) + " of the settings file '" + path_ + "'";
  }

  // Tells the administrator of each broken line once, however often the file is read again. Lines
  // move when others change, so a line is known by its text and its number among equal ones.
  void ReportBrokenLines() {
    std::map<std::string, int> seen;
    for (const SettingsFile::BrokenLine& line : file_.BrokenLines()) {
      const int occurrence = ++seen[line.text];
      int& reported = reported_lines_[path_ + "\n" + line.text];
      if (occurrence <= reported) continue;
      reported = occurrence;
      Warn(PlaceOfLine(line.number) +
           " is neither a section nor a value nor a comment and is ignored");
    }
  }

  bool loaded_ = false;
  std::string path_;
  FileStamp stamp_;  // of the file when it was read
  SettingsFile file_;
  std::map<Key, std::string> open_;  // paths below the branch
  Key last_key_ = 0;
  std::map<std::string, int> reported_lines_;
};

}  // namespace

SettingsStore& TheSettingsStore() {
  static SettingsIni settings;
  return InUse<SettingsStore>(settings);
}

}  // namespace platform
