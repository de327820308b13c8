// Folders, log files being read and report files being replaced.
//
// Paths are byte strings (on Windows UTF-8, the process's active code page). Error codes are the
// operating system's own (errno, GetLastError) or one of those below; 0 is success.
// `mod_systemInfo::GetErrorText` turns one into a sentence.
#ifndef HITWICK_PLATFORM_FILE_SYSTEM_H_
#define HITWICK_PLATFORM_FILE_SYSTEM_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Errors that no system has a number for. (Windows leaves those with bit 29 to programs.)
inline constexpr int kForeignLinkError = 0x20000001;  // a link of another user's leads to the file
inline constexpr int kLockBusyError = 0x20000002;     // somebody else held a lock all the time
inline constexpr int kDamagedArchiveError = 0x20000003;

// How long anybody waits for a lock that another process holds.
inline constexpr std::chrono::seconds kLockPatience{30};

// What stands between a folder and a file name: `\` on Windows, `/` elsewhere.
extern const char kPathSeparator;

// Whether a file's name may hold the byte.
bool FitsInFileName(char c);

// `folder`, the separator and `name`, joined as they stand.
std::string JoinPath(std::string_view folder, std::string_view name);

// A file opened for reading from its start. Opening and reading never lock it: the web server may
// go on writing, renaming or deleting it.
class InputFile {
 public:
  virtual ~InputFile() = default;  // closes the file
  // Reads up to `size` bytes (1 or more). `*got` is 0 only at the end of the file or on an error.
  // Returns an error code.
  virtual int Read(char* buffer, std::size_t size, std::size_t* got) = 0;
};

// The right to change what a folder holds, against other processes; given back at the end of the
// scope, in the thread that took it.
class FolderLock {
 public:
  virtual ~FolderLock() = default;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;
  // True when `path` is an existing folder (links followed), readable or not.
  virtual bool FolderExists(const std::string& path) = 0;
  // The names (without folder) of the files in `folder` that begin with `prefix` and end with
  // `suffix`, letter case of A to Z ignored, in byte order of the names with A to Z taken as a
  // to z (equal ones in plain byte order). Links are followed; folders, and anything else that is
  // no regular file, are left out; hidden and system files are included. Empty when the folder is
  // missing or unreadable.
  virtual std::vector<std::string> ListFiles(const std::string& folder, std::string_view prefix,
                                             std::string_view suffix) = 0;
  // The names of the folders directly in `folder`, in the order of `ListFiles`; links to folders
  // count. Returns an error code; on failure there are no names. (Windows: folders that are both
  // hidden and of the system's own are left out.)
  virtual int ListFolders(const std::string& folder, std::vector<std::string>* names) = 0;
  // Creates one folder in an existing one. Returns an error code; a name that is already taken is
  // an error.
  virtual int CreateFolder(const std::string& path) = 0;
  // The size of a file in bytes; 0 when there is no such file or it cannot be told.
  virtual std::uint64_t FileSize(const std::string& path) = 0;
  // Opens an existing file. Null with `*error` set when it cannot be opened; folders, pipes and
  // devices cannot.
  virtual std::unique_ptr<InputFile> OpenForReading(const std::string& path, int* error) = 0;
  // Puts a file with this content at `path`, in place of the old one if there is one, whose
  // permissions it keeps. It is built beside its place and takes it in one step, so that readers
  // see the old file or the new one, each in full. Returns an error code; the old file then stands
  // (only if the disk fails at the very last, the new one may).
  //
  // Linux: the file that a symbolic link leads to is replaced, if the link belongs to the user who
  // runs or to root; kForeignLinkError if not. Windows: the link itself is replaced.
  virtual int ReplaceFile(const std::string& path, std::string_view content) = 0;
  // Removes what killed processes left in `folder` (or beside the file that a link in it leads to)
  // while they replaced files for whose names `is_target` holds. What a live process is building
  // stays.
  virtual void RemoveLeftOvers(const std::string& folder,
                               const std::function<bool(std::string_view name)>& is_target) = 0;
  // Takes the one lock of an existing folder, waiting up to `patience` for it. Null with `*error`
  // set, to kLockBusyError when somebody else had it all the time. No file stands for the lock.
  virtual std::unique_ptr<FolderLock> LockFolder(const std::string& folder,
                                                 std::chrono::milliseconds patience,
                                                 int* error) = 0;
};

FileSystem& TheFileSystem();

// Whether the error code of an opening says that there is no file of this name. Any other one may
// hide a file.
bool MeansNotThere(int error);

// The whole content of a file; an error code (`*content` then holds what could be read).
int ReadWholeFile(FileSystem& files, const std::string& path, std::string* content);
int ReadWholeFile(const std::string& path, std::string* content);

}  // namespace platform

#endif  // HITWICK_PLATFORM_FILE_SYSTEM_H_
