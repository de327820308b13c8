// Standard error: where a message goes when there is no window to show it in.
//
// State: the status line that stands at the terminal. Called by the event log, by the boxes, by
// start-up and by the progress of a run.
#ifndef HITWICK_PLATFORM_STANDARD_ERROR_H_
#define HITWICK_PLATFORM_STANDARD_ERROR_H_

#include <string_view>

namespace platform {

// True when it is a terminal (a console window), and so somebody is watching.
bool StandardErrorIsTerminal();
// Writes `text` and a line break in one piece, to a console in its own encoding, in the place of
// the status line. Does nothing when the process has no standard error.
void WriteStandardError(std::string_view text);

// Shows a line at the terminal, without a line break and in the place of the one before; a long
// text is cut. / Takes the line away.
void ShowStatusLine(std::string_view text);
void ClearStatusLine();

// Writes bytes as they are, to a console in its own encoding. What the others stand on.
void WriteToStandardError(std::string_view bytes);

}  // namespace platform

#endif  // HITWICK_PLATFORM_STANDARD_ERROR_H_
