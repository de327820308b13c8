// Standard error: where a message goes when there is no window to show it in.
//
// No state. Called by the event log, by the boxes and by start-up.
#ifndef HITWICK_PLATFORM_STANDARD_ERROR_H_
#define HITWICK_PLATFORM_STANDARD_ERROR_H_

#include <string_view>

namespace platform {

// True when it is a terminal (a console window), and so somebody is watching.
bool StandardErrorIsTerminal();
// Writes `text` and a line break in one piece, to a console in its own encoding. Does nothing when
// the process has no standard error.
void WriteStandardError(std::string_view text);

}  // namespace platform

#endif  // HITWICK_PLATFORM_STANDARD_ERROR_H_
