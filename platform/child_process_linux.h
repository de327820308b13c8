// Other programs, started without a command shell in between.
//
// State: the programs that were left running. Used by the desktop shell and by the daily tasks.
#ifndef HITWICK_PLATFORM_CHILD_PROCESS_LINUX_H_
#define HITWICK_PLATFORM_CHILD_PROCESS_LINUX_H_

#include <chrono>
#include <string>
#include <vector>

namespace platform {

// What a program that has ended left behind.
struct ChildResult {
  int start_error = 0;   // errno; not 0: it could not be started (or fed), and the rest is empty
  int exit_status = -1;  // -1: a signal ended it
  std::string output;    // what it wrote to standard output
  std::string errors;    // and to standard error
};

// Runs a program (found in PATH) with `input` as its standard input, and waits for its end. It
// speaks the C locale. `variables` ("NAME=value") are added to its environment.
ChildResult RunChild(const std::vector<std::string>& arguments, const std::string& input,
                     const std::vector<std::string>& variables);

// Starts a program in a session of its own. True when it ended with success within `patience`, or
// is still at work then; it is not waited for any longer.
bool StartChild(const std::vector<std::string>& arguments, std::chrono::milliseconds patience);

}  // namespace platform

#endif  // HITWICK_PLATFORM_CHILD_PROCESS_LINUX_H_
