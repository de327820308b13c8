// Files and folders in memory, with failures on demand.
#ifndef HITWICK_TESTS_FAKES_FAKE_FILE_SYSTEM_H_
#define HITWICK_TESTS_FAKES_FAKE_FILE_SYSTEM_H_

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "platform/names.h"
#include "platform/temporary_name.h"

namespace fakes {

class FakeFileSystem : public platform::FileSystem {
 public:
  static constexpr int kNotFound = 2;  // the same number on every system
  static constexpr int kIsFolder = 5;
  static constexpr int kExists = 17;
  // An operation on a file that goes wrong once `bytes` bytes have been read or appended.
  struct Failure {
    int error = 0;
    std::size_t bytes = 0;
  };

  void AddFolder(const std::string& path) { folders.insert(path); }
  // Adds a file and the folder that holds it.
  void AddFile(const std::string& path, std::string_view content) {
    AddFolder(FolderOf(path));
    files[path] = std::string(content);
  }
  bool Exists(const std::string& path) const { return files.count(path) != 0; }
  // The content of a file that is in place; empty when there is none.
  std::string Content(const std::string& path) const {
    const auto file = files.find(path);
    return file == files.end() ? std::string() : file->second;
  }

  bool FolderExists(const std::string& path) override { return folders.count(path) != 0; }

  std::vector<std::string> ListFiles(const std::string& folder, std::string_view prefix,
                                     std::string_view suffix) override {
    std::vector<std::string> names;
    for (const auto& [path, content] : files) {
      const std::string name = NameOf(path);
      if (FolderOf(path) == folder && platform::NameFits(name, prefix, suffix)) {
        names.push_back(name);
      }
    }
    platform::SortNames(&names);
    return names;
  }

  int ListFolders(const std::string& folder, std::vector<std::string>* names) override {
    names->clear();
    if (const int error = CodeOf(list_failures, folder)) return error;
    if (!FolderExists(folder)) return kNotFound;
    for (const std::string& path : folders) {
      if (path != folder && ParentOf(path) == folder) names->push_back(NameOf(path));
    }
    platform::SortNames(names);
    return 0;
  }

  int CreateFolder(const std::string& path) override {
    if (const int error = CodeOf(create_failures, path)) return error;
    if (FolderExists(path) || Exists(path)) return kExists;
    if (!FolderExists(ParentOf(path))) return kNotFound;
    AddFolder(path);
    return 0;
  }

  std::uint64_t FileSize(const std::string& path) override { return Content(path).size(); }

  std::unique_ptr<platform::InputFile> OpenForReading(const std::string& path,
                                                      int* error) override {
    opened.push_back(path);
    *error = CodeOf(open_failures, path);
    if (*error == 0 && FolderExists(path)) *error = kIsFolder;
    if (*error == 0 && !Exists(path)) *error = kNotFound;
    if (*error != 0) return nullptr;
    return std::make_unique<Input>(files[path], Scripted(read_failures, path), read_size_limit);
  }

  int ReplaceFile(const std::string& path, std::string_view content) override {
    if (const int error = ReplacementError(path, content)) return error;
    files[path] = std::string(content);
    committed.push_back(path);
    return 0;
  }

  void RemoveLeftOvers(const std::string& folder,
                       const std::function<bool(std::string_view)>& is_target) override {
    std::erase_if(files, [&](const auto& file) {
      const std::string& path = file.first;
      return FolderOf(path) == folder && is_target(platform::TargetOfTemporary(NameOf(path))) &&
             being_built.count(path) == 0;
    });
  }

  std::unique_ptr<platform::FolderLock> LockFolder(const std::string& folder,
                                                   std::chrono::milliseconds patience,
                                                   int* error) override {
    *error = CodeOf(lock_failures, folder);
    if (*error == 0 && !FolderExists(folder)) *error = kNotFound;
    if (*error == 0 && locked.count(folder) != 0) *error = platform::kLockBusyError;
    if (*error == platform::kLockBusyError) waited += patience;
    if (*error != 0) return nullptr;
    if (on_lock) on_lock();
    return std::make_unique<Lock>(&locked, folder);
  }

  std::map<std::string, std::string> files;
  std::set<std::string> folders;

  std::map<std::string, int> open_failures;
  std::map<std::string, int> create_failures;  // files and folders
  std::map<std::string, int> list_failures;    // of the folders in a folder
  std::map<std::string, int> commit_failures;
  std::map<std::string, Failure> read_failures;
  std::map<std::string, Failure> append_failures;
  std::map<std::string, int> lock_failures;
  std::size_t read_size_limit = 0;  // the most bytes that one read gives; 0 sets no limit

  std::vector<std::string> opened;     // every path that was opened or tried, in order
  std::vector<std::string> committed;  // every file put in place, in order

  std::set<std::string> being_built;    // temporary files that a live process has
  std::set<std::string> locked;         // folders whose lock is taken
  std::chrono::milliseconds waited{0};  // for locks that were not to be had
  std::function<void()> on_lock;        // what other runs do before a lock is had

 private:
  class Input : public platform::InputFile {
   public:
    Input(std::string content, const Failure* failure, std::size_t limit)
        : content_(std::move(content)), failure_(failure ? *failure : Failure()), limit_(limit) {}

    int Read(char* buffer, std::size_t size, std::size_t* got) override {
      std::size_t end = content_.size();
      if (failure_.error != 0) end = std::min(end, failure_.bytes);
      if (limit_ != 0) size = std::min(size, limit_);
      *got = std::min(size, end - position_);
      if (*got == 0) return failure_.error;
      std::memcpy(buffer, content_.data() + position_, *got);
      position_ += *got;
      return 0;
    }

   private:
    std::string content_;
    Failure failure_;
    std::size_t limit_;
    std::size_t position_ = 0;
  };

  class Lock : public platform::FolderLock {
   public:
    Lock(std::set<std::string>* locked, std::string folder)
        : locked_(locked), folder_(std::move(folder)) {
      locked_->insert(folder_);
    }
    ~Lock() override { locked_->erase(folder_); }

   private:
    std::set<std::string>* locked_;
    std::string folder_;
  };

  // Why a file cannot be replaced: it cannot be created, takes no more bytes, or cannot be moved.
  int ReplacementError(const std::string& path, std::string_view content) const {
    if (const int error = CodeOf(create_failures, path)) return error;
    if (folders.count(FolderOf(path)) == 0) return kNotFound;
    const Failure* failure = Scripted(append_failures, path);
    if (failure != nullptr && content.size() > failure->bytes) return failure->error;
    return CodeOf(commit_failures, path);
  }

  static std::string FolderOf(const std::string& path) {
    const std::size_t separator = path.rfind(platform::kPathSeparator);
    return separator == std::string::npos ? std::string() : path.substr(0, separator);
  }
  // The folder that holds a folder; a root ("/", "C:\") keeps its separator.
  static std::string ParentOf(const std::string& path) {
    if (path.find(platform::kPathSeparator) == std::string::npos) return "";
    const std::string parent = FolderOf(path);
    const std::string root = parent + platform::kPathSeparator;
    const bool below_root = parent.empty() || parent.back() == ':';
    return below_root && path.size() > root.size() ? root : parent;
  }
  static std::string NameOf(const std::string& path) {
    return path.substr(path.rfind(platform::kPathSeparator) + 1);
  }
  static int CodeOf(const std::map<std::string, int>& failures, const std::string& path) {
    const auto failure = failures.find(path);
    return failure == failures.end() ? 0 : failure->second;
  }
  static const Failure* Scripted(const std::map<std::string, Failure>& failures,
                                 const std::string& path) {
    const auto failure = failures.find(path);
    return failure == failures.end() ? nullptr : &failure->second;
  }
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_FILE_SYSTEM_H_
