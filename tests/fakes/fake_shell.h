// A desktop that opens what the test allows and remembers what it was asked to open.
#ifndef HITWICK_TESTS_FAKES_FAKE_SHELL_H_
#define HITWICK_TESTS_FAKES_FAKE_SHELL_H_

#include <string>
#include <vector>

#include "platform/shell.h"

namespace fakes {

class FakeShell : public platform::Shell {
 public:
  bool Open(const std::string& path) override {
    asked.push_back(path);
    return opens;
  }
  std::string ProgramFolder() override { return program_folder; }
  std::string ProgramName() override { return program_name; }
  std::string HelpPage() override { return help_page; }

  bool opens = true;
  std::string program_folder = "program-folder";
  std::string program_name = "hitwick";
  std::string help_page = "help-folder/index.htm";
  std::vector<std::string> asked;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_SHELL_H_
