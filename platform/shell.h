// The user's desktop: opens a file with the program that is associated with it, and knows where
// this program lives.
//
// Windows: `ShellExecute`. Linux: `xdg-open`. Called by `mod_systemInfo` alone.
#ifndef HITWICK_PLATFORM_SHELL_H_
#define HITWICK_PLATFORM_SHELL_H_

#include <string>

namespace platform {

class Shell {
 public:
  virtual ~Shell() = default;
  // Opens a file (or folder, or address) as a double click would; false when it is missing or no
  // program takes it. Returns as soon as that is known, not when the opened program ends.
  virtual bool Open(const std::string& path) = 0;
  // The folder that holds the program's executable, without a separator at its end; empty when
  // the system does not tell.
  virtual std::string ProgramFolder() = 0;
  // The name of the executable in that folder; empty when the system does not tell.
  virtual std::string ProgramName() = 0;
  // The path of the help page. Windows: beside the executable. Linux: there, or in the data folder
  // that belongs to it ("/usr/share/hitwick" for "/usr/bin"). The page may be missing.
  virtual std::string HelpPage() = 0;
};

Shell& TheShell();

}  // namespace platform

#endif  // HITWICK_PLATFORM_SHELL_H_
