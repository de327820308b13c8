// Files as the other Linux services need them, whatever stands in for `TheFileSystem()`: the real
// file system, and the replacement of a file by one that was built beside it.
#ifndef HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_
#define HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_

#include <sys/types.h>

#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace platform {

FileSystem& RealFileSystem();

// The file that `path` leads to once symbolic links are followed; it need not exist. Returns an
// error code: kForeignLinkError when a link belongs neither to the user who runs nor to root, ELOOP
// when the links never end.
int FollowLinks(const std::string& path, std::string* target);

// Who may do what with a file that was not there before, as far as the user's mask allows it:
// everybody / the user alone.
inline constexpr mode_t kForAll = 0666;
inline constexpr mode_t kForTheUser = 0600;

// Replaces `target` (no symbolic link; a regular file or nothing yet) by a file with this content,
// built as `temporary` in the same folder. It has the old file's permissions, or `if_new`. Returns
// an errno code: EEXIST when `temporary` cannot be had, and another name may do.
int PutInPlace(const std::string& target, const std::string& temporary, std::string_view content,
               mode_t if_new);

// Removes the temporary file at `path` unless a live process is building it.
void RemoveIfLeftOver(const std::string& path);

}  // namespace platform

#endif  // HITWICK_PLATFORM_FILE_REPLACEMENT_LINUX_H_
