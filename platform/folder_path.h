// Folder paths as the system writes them: the absolute form, the chain from the root, the drives.
// Only text is looked at, but for the resolution of "..".
//
// No state. Called by the folder lists and by the new-usage-folder window.
#ifndef HITWICK_PLATFORM_FOLDER_PATH_H_
#define HITWICK_PLATFORM_FOLDER_PATH_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The absolute path of a folder, with the system's own separator, without doubled separators and
// without "." and "..", and without a separator at its end unless it is a root ("/", "C:\",
// "\\server\share"). The folder need not exist. An empty path is the process's present folder.
std::string NormalisedFolder(const std::string& path);

// The length of the root that a normalised path begins with.
std::size_t RootLength(std::string_view path);

// The folders from the root down to `path`, which is normalised; the last one is `path` itself.
std::vector<std::string> FolderChain(const std::string& path);

// The last name of a normalised path; a root's is the root itself.
std::string FolderName(const std::string& path);

// `folder` and a name inside it, joined by one separator even where `folder` ends with one.
std::string FolderInside(const std::string& folder, std::string_view name);

// The roots of the system's drives ("C:\"), in order; empty where there are none.
std::vector<std::string> DriveRoots();

}  // namespace platform

#endif  // HITWICK_PLATFORM_FOLDER_PATH_H_
