// Start-up: reads the command line and chooses the way to run (interactive, batch, catch-up).
//
// It is the start window of the program, which nobody sees: windows are started only for an
// interactive run, or for the site selection that the command line asks for.
#ifndef HITWICK_APP_FRMMAIN_H_
#define HITWICK_APP_FRMMAIN_H_

#include <span>
#include <string>
#include <string_view>

namespace frmMain {

// Exit codes of the program.
inline constexpr int kExitDone = 0;        // all pages and the history written
inline constexpr int kExitFailed = 1;      // settings unusable, or one of them not written
inline constexpr int kExitNotStarted = 2;  // malformed site switch, or windows were asked for

// The start-up sequence with the text after the program's name, and the run that it chose. Returns
// the exit code; a batch or catch-up run that failed says so where somebody will see it.
int Form_Load(const std::string& command_line);
// Ends the windows, if they were started.
void Form_Terminate();

// A switch of the command line. It is recognised wherever its text stands in a token, so no entry's
// spelling may hold the text of another: a switch "/BOX" would also set batch mode. New ones are
// words behind "--".
struct Switch {
  std::string_view text;      // what is looked for, letter case ignored
  std::string_view spelling;  // how the help and the README write it
  std::string_view help;      // what it does, in half a line
  // Carries it out; `found` is the token from the switch's text on. A word that begins with "--"
  // counts only as a whole token, so that it may be part of a site's name.
  void (*apply)(std::string_view found);
};

// All switches, in the order in which those of one token are applied.
std::span<const Switch> Switches();

// Splits the command line at blanks and tabs (quotation marks do not group), applies each token,
// and then shows the version if a token asked for it and none set batch mode.
void ParseCommandLine(std::string_view command_line);
// Applies one token: every switch is looked for in it.
void ApplySwitch(std::string_view token);

// The catch-up run: thirteen months up to and including the current one; only when `CatchUpMode`
// is set. False when the settings are unusable.
bool CatchUp();

}  // namespace frmMain

#endif  // HITWICK_APP_FRMMAIN_H_
