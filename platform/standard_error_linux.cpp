#include <unistd.h>

#include "platform/descriptor_linux.h"
#include "platform/standard_error.h"

namespace platform {

bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void WriteToStandardError(std::string_view bytes) {
  // Where standard error is full or gone there is no other place to say so.
  static_cast<void>(WriteAll(STDERR_FILENO, bytes));
}

}  // namespace platform
