#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/absolute_path_windows.h"
#include "platform/file_system.h"
#include "platform/names.h"
#include "platform/service.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// From this length on a path needs the prefix that lifts the limit of 260 characters. (Folders
// have to leave room for a short file name, hence less.)
constexpr std::size_t kLongPath = 248;
constexpr std::size_t kWriteBufferSize = 64 * 1024;

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

// An open file or search that is closed at the end of its scope.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { Close(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle& operator=(Handle&&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
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
    constexpr std::size_t kMostPerCall = 1u << 30;
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

class ReplacementFile : public OutputFile {
 public:
  ReplacementFile(Handle file, std::wstring temporary_path, std::wstring path)
      : file_(std::move(file)),
        temporary_path_(std::move(temporary_path)),
        path_(std::move(path)) {}

  ~ReplacementFile() override {
    if (in_place_) return;
    file_.Close();
    DeleteFileW(temporary_path_.c_str());
  }

  int Append(std::string_view bytes) override {
    if (error_ != 0) return error_;
    buffer_.append(bytes);
    if (buffer_.size() >= kWriteBufferSize) error_ = WriteBuffer();
    return error_;
  }

  int Commit() override {
    if (error_ == 0) error_ = Complete();
    if (error_ != 0) return error_;
    CopyPermissions(path_, temporary_path_);
    error_ = MoveOver(temporary_path_, path_);
    in_place_ = error_ == 0;
    return error_;
  }

 private:
  int WriteBuffer() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
      DWORD written = 0;
      if (!WriteFile(file_.get(), rest.data(), static_cast<DWORD>(rest.size()), &written,
                     nullptr)) {
        return LastError();
      }
      rest.remove_prefix(written);
    }
    buffer_.clear();
    return 0;
  }

  // Brings every byte to the disk and closes the file.
  int Complete() {
    const int error = WriteBuffer();
    if (error != 0) return error;
    if (!FlushFileBuffers(file_.get())) return LastError();
    return file_.Close() ? 0 : LastError();
  }

  Handle file_;
  std::wstring temporary_path_;
  std::wstring path_;
  std::string buffer_;
  int error_ = 0;
  bool in_place_ = false;
};

// A name beside `path` that no other process and no earlier call of this one uses.
std::string TemporaryName(const std::string& path) {
  static unsigned count = 0;
  const std::size_t folder_length = path.find_last_of("\\/:") + 1;
  return path.substr(0, folder_length) + "~hitwick-" + std::to_string(GetCurrentProcessId()) + "-" +
         std::to_string(++count) + ".tmp";
}

// Whether a folder list shows an entry of a listing. What the system keeps in a drive's root for
// itself, such as its recycle bin, is hidden and marked as its own.
bool IsShownFolder(const WIN32_FIND_DATAW& entry, const std::wstring& path) {
  constexpr DWORD kSystemsOwn = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const std::wstring_view name = entry.cFileName;
  return name != L"." && name != L".." && (entry.dwFileAttributes & kSystemsOwn) != kSystemsOwn &&
         IsFolder(FollowLink(entry.dwFileAttributes, path));
}

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

  std::unique_ptr<OutputFile> CreateOutput(const std::string& path, int* error) override {
    for (;;) {
      std::wstring temporary_path = SystemPath(TemporaryName(path));
      Handle file(CreateFileW(temporary_path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
      *error = file.IsOpen() ? 0 : LastError();
      if (file.IsOpen()) {
        return std::make_unique<ReplacementFile>(std::move(file), std::move(temporary_path),
                                                 SystemPath(path));
      }
      // Left behind by a process of the same number that was killed: the next name will do.
      if (*error != ERROR_FILE_EXISTS) return nullptr;
    }
  }
};

}  // namespace

const char kPathSeparator = '\\';

// The bytes of UTF-8 that are no ASCII are above the control characters.
bool FitsInFileName(char c) {
  return static_cast<unsigned char>(c) >= ' ' &&
         std::string_view(R"(<>:"/\|?*)").find(c) == std::string_view::npos;
}

FileSystem& TheFileSystem() {
  static SystemFiles system;
  return InUse<FileSystem>(system);
}

}  // namespace platform
