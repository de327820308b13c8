#include "app/help.h"

#include <cstddef>
#include <string_view>

#include "app/frmMain.h"

namespace {

constexpr std::string_view kBefore =
    R"(Hitwick makes HTML pages of usage statistics from the W3C logs of an IIS web server.

Usage: hitwick SWITCH...

)";
constexpr std::string_view kAfter =
    R"(
A "/" switch is recognised anywhere in an argument, in any letter case; /B is enough for /BATCH.
Exit code: 0 pages and history written, 1 settings unusable or a file not written, 2 not started.
)";

void AddLine(std::string& text, std::string_view spelling, std::string_view help) {
  constexpr std::size_t kColumn = 14;
  text.append("  ").append(spelling);
  text.append(kColumn - spelling.size(), ' ').append(help).append("\n");
}

}  // namespace

std::string HelpText() {
  std::string text(kBefore);
  for (const frmMain::Switch& known : frmMain::Switches()) {
    AddLine(text, known.spelling, known.help);
  }
  AddLine(text, "--help", "print this text");
  AddLine(text, "--version", "print the version");
  return text.append(kAfter);
}
