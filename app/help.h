// The text that "--help" prints. Called by the program's entry.
#ifndef HITWICK_APP_HELP_H_
#define HITWICK_APP_HELP_H_

#include <string>

// Every switch of `frmMain::Switches()` with its help, and the exit codes.
std::string HelpText();

#endif  // HITWICK_APP_HELP_H_
