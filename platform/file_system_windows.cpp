#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "platform/absolute_path_windows.h"
#include "platform/file_system.h"
#include "platform/names.h"
#include "platform/service.h"
#include "platform/temporary_name.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// From this length on a path needs the prefix that lifts the limit of 260 characters. (Folders
// have to leave room for a short file name, hence less.)
constexpr std::size_t kLongPath = 248;
constexpr std::size_t kMostPerCall = 1u << 30;

int LastError() { return static_cast<int>(GetLastError()); }

// The path as the system calls take it. A long one is made absolute and gets the prefix `\\?\`
// (`\\?\UNC\` for a share), behind which nothing is interpreted and `/` is no separator.
std::wstring SystemPath(const std::string& path) {
  std::wstring wide = ToUtf16(path);
  if (wide.size() < kLongPath || wide.starts_with(L"\\\\?\\")) return wide;
  wide = AbsolutePath(wide);
  if (wide.starts_with(L"\\\\.\\")) return wide;
  if (wide.starts_with(L"\\\\")) return L"\\\\?\\UNC" + wide.substr(1);
  return L"\\\\?\\" + wide;
}

// An open file or mutex that is closed at the end of its scope.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { Close(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle& operator=(Handle&&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
  HANDLE get() const { return handle_; }
  bool Close() {
    return !IsOpen() || CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE)) != 0;
  }

 private:
  HANDLE handle_;
};

// What stands at the end of a link: its attributes, or INVALID_FILE_ATTRIBUTES when it leads
// nowhere.
DWORD AttributesOfLinkTarget(const std::wstring& path) {
  Handle target(CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION information = {};
  if (!target.IsOpen() || !GetFileInformationByHandle(target.get(), &information)) {
    return INVALID_FILE_ATTRIBUTES;
  }
  return information.dwFileAttributes;
}

DWORD FollowLink(DWORD attributes, const std::wstring& path) {
  const bool link =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return link ? AttributesOfLinkTarget(path) : attributes;
}

bool IsFolder(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsRegularFile(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

class OpenedFile : public InputFile {
 public:
  explicit OpenedFile(Handle file) : file_(std::move(file)) {}

  int Read(char* buffer, std::size_t size, std::size_t* got) override {
    DWORD read = 0;
    const bool done = ReadFile(file_.get(), buffer,
                               static_cast<DWORD>(std::min(size, kMostPerCall)), &read, nullptr);
    *got = done ? read : 0;
    return done ? 0 : LastError();
  }

 private:
  Handle file_;
};

// Gives the new file the old one's access rights and its hidden and system marks. A right that
// this user may not read or set stays as the folder hands it down to new files.
void CopyPermissions(const std::wstring& from, const std::wstring& to) {
  DWORD size = 0;
  GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::string descriptor(size, '\0');
  if (size > 0 &&
      GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size)) {
    SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, descriptor.data());
  }
  constexpr DWORD kKeptMarks = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                               FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD attributes = GetFileAttributesW(from.c_str());
  if (IsRegularFile(attributes)) SetFileAttributesW(to.c_str(), attributes & kKeptMarks);
}

// Moves a file over another in one step. Virus scanners and indexers hold a file they have just
// seen for a moment, so a refusal is not final at once. (`ReplaceFile` would keep the permissions
// by itself, but there is a moment at which it leaves neither file in place.)
int MoveOver(const std::wstring& from, const std::wstring& to) {
  constexpr int kTries = 10;
  constexpr DWORD kPauseMs = 50;
  for (int attempt = 1;; ++attempt) {
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      return 0;
    }
    const int error = LastError();
    const bool in_use = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
    if (!in_use || attempt == kTries) return error;
    Sleep(kPauseMs);
  }
}

// A file under its temporary name. It stays open until it is in its place, which tells other
// processes that somebody is building it; the system closes it with the process.
class Temporary {
 public:
  explicit Temporary(std::wstring path)
      : path_(std::move(path)),
        file_(CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                          nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)),
        error_(file_.IsOpen() ? 0 : LastError()) {}
  ~Temporary() {
    if (!file_.IsOpen() || moved_) return;
    file_.Close();
    DeleteFileW(path_.c_str());
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;

  int error() const { return error_; }

  // Brings every byte to the disk.
  int Write(std::string_view content) {
    while (!content.empty()) {
      const DWORD size = static_cast<DWORD>(std::min(content.size(), kMostPerCall));
      DWORD written = 0;
      if (!WriteFile(file_.get(), content.data(), size, &written, nullptr)) return LastError();
      content.remove_prefix(written);
    }
    return FlushFileBuffers(file_.get()) ? 0 : LastError();
  }

  int MoveTo(const std::wstring& path) {
    CopyPermissions(path, path_);
    const int error = MoveOver(path_, path);
    moved_ = error == 0;
    return error;
  }

 private:
  std::wstring path_;
  Handle file_;
  int error_;
  bool moved_ = false;
};

// Deletes a temporary file that no process has open.
void DeleteIfLeftOver(const std::wstring& path) {
  const Handle closed_deletes(CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                          FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT,
                                          nullptr));
}

// Whether a folder list shows an entry of a listing. What the system keeps in a drive's root for
// itself, such as its recycle bin, is hidden and marked as its own.
bool IsShownFolder(const WIN32_FIND_DATAW& entry, const std::wstring& path) {
  constexpr DWORD kSystemsOwn = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const std::wstring_view name = entry.cFileName;
  return name != L"." && name != L".." && (entry.dwFileAttributes & kSystemsOwn) != kSystemsOwn &&
         IsFolder(FollowLink(entry.dwFileAttributes, path));
}

// The folder's full path in its one final form, links and drive letters of shares resolved; as far
// as the system tells it.
std::wstring FinalPath(const std::wstring& path) {
  const Handle folder(CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  std::wstring final_path(GetFinalPathNameByHandleW(folder.get(), nullptr, 0, 0), L'\0');
  final_path.resize(GetFinalPathNameByHandleW(folder.get(), final_path.data(),
                                              static_cast<DWORD>(final_path.size()), 0));
  return final_path.empty() ? AbsolutePath(path) : final_path;
}

// The name of the mutex that stands for a folder, in all sessions of the computer. A path is too
// long for a name, and must not hold a `\`: its hash (FNV-1a) stands for it. Two folders of one
// hash would only wait for each other.
std::wstring MutexName(const std::wstring& folder) {
  std::wstring path = FinalPath(folder);
  CharUpperBuffW(path.data(), static_cast<DWORD>(path.size()));
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const wchar_t unit : path) hash = (hash ^ unit) * 0x100000001B3u;
  return L"Global\\Hitwick-" + std::to_wstring(hash);
}

// Lets every user wait for the mutex, whoever made it.
class OpenToEveryone {
 public:
  OpenToEveryone() {
    ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:(A;;0x100001;;;WD)", SDDL_REVISION_1, &attributes_.lpSecurityDescriptor, nullptr);
  }
  ~OpenToEveryone() { LocalFree(attributes_.lpSecurityDescriptor); }
  OpenToEveryone(const OpenToEveryone&) = delete;
  OpenToEveryone& operator=(const OpenToEveryone&) = delete;

  SECURITY_ATTRIBUTES* get() { return &attributes_; }

 private:
  SECURITY_ATTRIBUTES attributes_ = {sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

// A mutex that this thread has.
class HeldMutex : public FolderLock {
 public:
  explicit HeldMutex(Handle mutex) : mutex_(std::move(mutex)) {}
  ~HeldMutex() override { ReleaseMutex(mutex_.get()); }

 private:
  Handle mutex_;
};

class SystemFiles : public FileSystem {
 public:
  bool FolderExists(const std::string& path) override {
    const std::wstring wide = SystemPath(path);
    return IsFolder(FollowLink(GetFileAttributesW(wide.c_str()), wide));
  }

  std::vector<std::string> ListFiles(const std::string& folder, std::string_view prefix,
                                     std::string_view suffix) override {
    std::vector<std::string> names;
    if (folder.empty()) return names;
    WIN32_FIND_DATAW entry = {};
    const HANDLE search =
        FindFirstFileExW(SystemPath(JoinPath(folder, "*")).c_str(), FindExInfoBasic, &entry,
                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
      std::string name = ToUtf8(entry.cFileName);
      if (!NameFits(name, prefix, suffix)) continue;
      const std::wstring path = SystemPath(JoinPath(folder, name));
      if (IsRegularFile(FollowLink(entry.dwFileAttributes, path))) names.push_back(std::move(name));
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    SortNames(&names);
    return names;
  }

  int ListFolders(const std::string& folder, std::vector<std::string>* names) override {
    names->clear();
    if (!FolderExists(folder)) return ERROR_PATH_NOT_FOUND;
    WIN32_FIND_DATAW entry = {};
    const HANDLE search =
        FindFirstFileExW(SystemPath(JoinPath(folder, "*")).c_str(), FindExInfoBasic, &entry,
                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    // A drive's root has no entries of its own, so an empty one holds nothing that fits.
    if (search == INVALID_HANDLE_VALUE) {
      return LastError() == ERROR_FILE_NOT_FOUND ? 0 : LastError();
    }
    do {
      std::string name = ToUtf8(entry.cFileName);
      if (IsShownFolder(entry, SystemPath(JoinPath(folder, name)))) {
        names->push_back(std::move(name));
      }
    } while (FindNextFileW(search, &entry));
    const int error = LastError() == ERROR_NO_MORE_FILES ? 0 : LastError();
    FindClose(search);
    if (error != 0) names->clear();
    SortNames(names);
    return error;
  }

  int CreateFolder(const std::string& path) override {
    return CreateDirectoryW(SystemPath(path).c_str(), nullptr) ? 0 : LastError();
  }

  std::uint64_t FileSize(const std::string& path) override {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(SystemPath(path).c_str(), GetFileExInfoStandard, &data)) return 0;
    return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
  }

  std::unique_ptr<InputFile> OpenForReading(const std::string& path, int* error) override {
    Handle file(CreateFileW(SystemPath(path).c_str(), GENERIC_READ, kShareAll, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file.IsOpen()) {
      *error = LastError();
      return nullptr;
    }
    if (GetFileType(file.get()) != FILE_TYPE_DISK) {
      *error = ERROR_ACCESS_DENIED;
      return nullptr;
    }
    *error = 0;
    return std::make_unique<OpenedFile>(std::move(file));
  }

  int ReplaceFile(const std::string& path, std::string_view content) override {
    Temporary file(SystemPath(TemporaryName(path, GetCurrentProcessId())));
    if (file.error() != 0) return file.error();
    const int error = file.Write(content);
    return error != 0 ? error : file.MoveTo(SystemPath(path));
  }

  void RemoveLeftOvers(const std::string& folder,
                       const std::function<bool(std::string_view)>& is_target) override {
    for (const std::string& name : ListFiles(folder, "", ".tmp")) {
      if (is_target(TargetOfTemporary(name))) {
        DeleteIfLeftOver(SystemPath(JoinPath(folder, name)));
      }
    }
  }

  std::unique_ptr<FolderLock> LockFolder(const std::string& folder,
                                         std::chrono::milliseconds patience, int* error) override {
    *error = ERROR_PATH_NOT_FOUND;
    if (!FolderExists(folder)) return nullptr;
    OpenToEveryone everyone;
    Handle mutex(
        CreateMutexExW(everyone.get(), MutexName(SystemPath(folder)).c_str(), 0, SYNCHRONIZE));
    *error = mutex.IsOpen() ? WaitFor(mutex.get(), patience) : LastError();
    return *error == 0 ? std::make_unique<HeldMutex>(std::move(mutex)) : nullptr;
  }

 private:
  // A process that ended without giving a mutex back counts as having given it back.
  static int WaitFor(HANDLE mutex, std::chrono::milliseconds patience) {
    const DWORD result = WaitForSingleObject(mutex, static_cast<DWORD>(patience.count()));
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) return 0;
    return result == WAIT_TIMEOUT ? kLockBusyError : LastError();
  }
};

}  // namespace

const char kPathSeparator = '\\';

// The bytes of UTF-8 that are no ASCII are above the control characters.
bool FitsInFileName(char c) {
  return static_cast<unsigned char>(c) >= ' ' &&
         std::string_view(R"(<>:"/\|?*)").find(c) == std::string_view::npos;
}

bool MeansNotThere(int error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

FileSystem& TheFileSystem() {
  static SystemFiles system;
  return InUse<FileSystem>(system);
}

}  // namespace platform
