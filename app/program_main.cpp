// Help and version on request, else the start-up sequence.

#include <algorithm>
#include <iostream>

#include "app/frmMain.h"
#include "config/program.h"
#include "platform/entry.h"

namespace {

constexpr std::string_view kHelp =
    R"(Hitwick makes HTML pages of usage statistics from the W3C logs of an IIS web server.

Usage: hitwick SWITCH...

  /BATCH        report the current month (on the 1st also the month before) and end
  /C            catch up: report the last thirteen months and end
  /SITE=NAME    use the settings of this site (default: INI)
  /D            diagnostic entries in the event log
  /V            show the version
  /L            choose the site in a window (needs a build with windows)
  --help        print this text
  --version     print the version

A switch is recognised anywhere in an argument, in any letter case; /B is enough for /BATCH.
Exit code: 0 all pages written, 1 settings unusable or a page not written, 2 not started.
)";

}  // namespace

int ProgramMain(const std::vector<std::string>& arguments, const std::string& command_line) {
  const auto given = [&arguments](std::string_view token) {
    return std::find(arguments.begin(), arguments.end(), token) != arguments.end();
  };
  if (given("--help")) {
    std::cout << kHelp << std::flush;
    return frmMain::kExitDone;
  }
  if (given("--version")) {
    std::cout << program::kTitle << ' ' << program::Version() << '\n' << std::flush;
    return frmMain::kExitDone;
  }
  return frmMain::Form_Load(command_line);
}
