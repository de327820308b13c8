#include "platform/entry.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace {

// Without standard input, output and error the next file opened would take their place, and
// messages would end up in it.
void FillStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) close(descriptor);
}

// A full disk or a reader that has gone is an error code of the write concerned, not the end of
// the run.
void IgnoreWriteSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

std::string Joined(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += argument;
  }
  return line;
}

}  // namespace

int main(int argc, char** argv) {
  FillStandardDescriptors();
  IgnoreWriteSignals();
  std::vector<std::string> arguments;
  if (argc > 1) arguments.assign(argv + 1, argv + argc);
  return ProgramMain(arguments, Joined(arguments));
}
