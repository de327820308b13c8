// The way into the program. `entry_linux.cpp` holds `main`, `entry_windows.cpp` holds `WinMain`;
// both only collect the command line and call `ProgramMain`, which the start-up (app/) defines.
#ifndef HITWICK_PLATFORM_ENTRY_H_
#define HITWICK_PLATFORM_ENTRY_H_

#include <string>
#include <vector>

// `arguments`: the command line's arguments as the system splits them, without the program's name.
// `command_line`: the text after the program's name, quotation marks included where the system
// still has them (Linux: the arguments joined by blanks). Returns the exit code, 0..255.
int ProgramMain(const std::vector<std::string>& arguments, const std::string& command_line);

#endif  // HITWICK_PLATFORM_ENTRY_H_
