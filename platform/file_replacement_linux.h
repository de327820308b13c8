// Files as the other Linux services need them, whatever stands in for `TheFileSystem()`: the real
// file system, and the replacement of a file by one that was built beside it.
#ifndef HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_
#define HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_

#include <memory>
#include <string>

#include "platform/file_system.h"

namespace platform {

FileSystem& RealFileSystem();

// The file that `path` leads to once symbolic links are followed; it need not exist. Links that
// never end give the path itself, which then cannot be opened.
std::string FollowLinks(const std::string& path);

// Starts the replacement of `target` (no symbolic link; a regular file or nothing yet), built as
// `temporary` in the same folder. Null with `*error` set to an errno code when it cannot be
// started: EEXIST when `temporary` exists already.
std::unique_ptr<OutputFile> StartReplacement(const std::string& target,
                                             const std::string& temporary, int* error);

}  // namespace platform

#endif  // HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_
