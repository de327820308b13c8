// Folders, log files being read and report files being replaced.
//
// Paths are byte strings (on Windows UTF-8, the process's active code page). Error codes are the
// operating system's own (errno, GetLastError); 0 is success. `mod_systemInfo::GetErrorText`
// turns one into a sentence.
#ifndef HITWICK_PLATFORM_FILE_SYSTEM_H_
#define HITWICK_PLATFORM_FILE_SYSTEM_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

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

// A file that is built beside its final place and takes it in one step, so that readers see the
// old file or the new one, each in full. Destroyed without `Commit`, it leaves the old file alone.
class OutputFile {
 public:
  virtual ~OutputFile() = default;
  // Adds bytes at the end. After a failure the file cannot be committed. Returns an error code.
  virtual int Append(std::string_view bytes) = 0;
  // Puts the file in place of the old one, keeping that one's permissions. Returns an error code;
  // on failure the old file stands unchanged. No further call is allowed.
  virtual int Commit() = 0;
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
  // Opens an existing file. Null with `*error` set when it cannot be opened; folders, pipes and
  // devices cannot.
  virtual std::unique_ptr<InputFile> OpenForReading(const std::string& path, int* error) = 0;
  // Starts a replacement of (or a new) file at `path`. Null with `*error` set when that folder
  // does not take one.
  virtual std::unique_ptr<OutputFile> CreateOutput(const std::string& path, int* error) = 0;
};

FileSystem& TheFileSystem();

// The whole content of a file; an error code (`*content` then holds what could be read).
int ReadWholeFile(FileSystem& files, const std::string& path, std::string* content);
int ReadWholeFile(const std::string& path, std::string* content);

}  // namespace platform

#endif  // HITWICK_PLATFORM_FILE_SYSTEM_H_
