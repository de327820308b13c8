// Help, version and sites on request, else the start-up sequence.

#include <algorithm>
#include <iostream>

#include "app/frmMain.h"
#include "app/help.h"
#include "app/site_list.h"
#include "config/program.h"
#include "platform/entry.h"

int ProgramMain(const std::vector<std::string>& arguments, const std::string& command_line) {
  const auto given = [&arguments](std::string_view token) {
    return std::find(arguments.begin(), arguments.end(), token) != arguments.end();
  };
  if (given("--help")) {
    std::cout << HelpText() << std::flush;
    return frmMain::kExitDone;
  }
  if (given("--version")) {
    std::cout << program::kTitle << ' ' << program::Version() << '\n' << std::flush;
    return frmMain::kExitDone;
  }
  if (given("--sites")) return PrintSites();
  return frmMain::Form_Load(command_line);
}
