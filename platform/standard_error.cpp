#include "platform/standard_error.h"

#include <string>
#include <utility>

namespace platform {
namespace {

// A text wider than the terminal would break into two lines; hardly any is narrower than this.
constexpr std::size_t kMostOnALine = 79;

std::size_t shown = 0;  // characters of the status line that stand at the terminal

// Blanks serve every terminal, where a code to clear the line would not.
std::string Cleared() {
  if (shown == 0) return {};
  return "\r" + std::string(std::exchange(shown, 0), ' ') + "\r";
}

}  // namespace

void WriteStandardError(std::string_view text) {
  WriteToStandardError(Cleared().append(text).append("\n"));
}

void ShowStatusLine(std::string_view text) {
  const std::string_view line = text.substr(0, kMostOnALine);
  const std::size_t before = shown;
  shown = line.size();
  std::string bytes = "\r" + std::string(line);
  bytes.append(before > shown ? before - shown : 0, ' ');
  WriteToStandardError(bytes);
}

void ClearStatusLine() {
  if (shown != 0) WriteToStandardError(Cleared());
}

}  // namespace platform
