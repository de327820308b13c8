// The user's folders as the XDG base directory rules name them. Used by the settings store and by
// the event log; no state.
#ifndef HITWICK_PLATFORM_USER_FOLDERS_LINUX_H_
#define HITWICK_PLATFORM_USER_FOLDERS_LINUX_H_

#include <string>

namespace platform {

// The value of `variable`, or the home folder joined with `below_home` when the variable is unset,
// empty or no absolute path. Empty when the user has no home folder either.
std::string UserFolder(const char* variable, const std::string& below_home);

// Creates a folder, private to the user, and those above it where they are missing. Returns an
// errno code; success when it exists already.
int MakeFolders(const std::string& path);

}  // namespace platform

#endif  // HITWICK_PLATFORM_USER_FOLDERS_LINUX_H_
