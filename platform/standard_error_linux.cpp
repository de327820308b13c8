#include <unistd.h>

#include <string>

#include "platform/descriptor_linux.h"
#include "platform/standard_error.h"

namespace platform {

bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void WriteStandardError(std::string_view text) {
  // Where standard error is full or gone there is no other place to say so.
  static_cast<void>(WriteAll(STDERR_FILENO, std::string(text) + "\n"));
}

}  // namespace platform
