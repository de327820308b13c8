// Small services of the operating system: its version, the text of its error codes, and opening a
// file with the program that the user's system associates with it.
//
// State: the version record, queried at most once per process, and whether boxes may be shown.
// Called by the settings (default log folder), by every message that names an error, and by the
// windows (help, generated pages).
#ifndef HITWICK_PLATFORM_MOD_SYSTEMINFO_H_
#define HITWICK_PLATFORM_MOD_SYSTEMINFO_H_

#include <cstdint>
#include <string>

namespace mod_systemInfo {

// Whether the procedures below may show a message box. Start-up allows it for a run that is not in
// batch mode (this folder does not know the modes). Until then they stay silent, so that a
// scheduled run never waits for a user.
void AllowBoxes(bool allowed);
bool BoxesAllowed();

// The operating system's major version (6 or more since Windows Vista). Linux counts as 6.
std::int32_t GetOSMajorVersion();

// Opens the help page, "index.htm" in the folder of the program's executable (on Linux also in the
// data folder that belongs to it). A failure is shown in a box and nothing else.
void OpenHelp();

// Opens a file with its associated program. A failure is shown in a box and nothing else.
void OpenFile(const std::string& path);

// The sentence for an error code of the system, or of `platform/file_system.h`, without a trailing
// line break. Always returns a text, even when the system cannot describe the code (which is shown
// in a box as well).
std::string GetErrorText(std::int32_t code);
// The system's part of it.
std::string SystemErrorText(std::int32_t code);

}  // namespace mod_systemInfo

#endif  // HITWICK_PLATFORM_MOD_SYSTEMINFO_H_
