// The absolute form of a Windows path. Used by the file system and by the folder paths.
#ifndef HITWICK_PLATFORM_ABSOLUTE_PATH_WINDOWS_H_
#define HITWICK_PLATFORM_ABSOLUTE_PATH_WINDOWS_H_

#include <string>

namespace platform {

// The path with its drive or share, "." and ".." resolved and "\" for "/"; empty when the system
// cannot make one of it. Whether it exists does not matter.
std::wstring AbsolutePath(const std::wstring& path);

}  // namespace platform

#endif  // HITWICK_PLATFORM_ABSOLUTE_PATH_WINDOWS_H_
