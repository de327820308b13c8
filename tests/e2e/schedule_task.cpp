// Registers the daily task of a site as the configuration window's add button does, for a program
// of the test's choice:
//
//     schedule_task SITE TIME FOLDER PROGRAM
//
// What the button would show in a box goes to standard error.

#include <string>

#include "platform/scheduler.h"
#include "platform/service.h"
#include "platform/shell.h"

namespace {

class GivenProgram : public platform::Shell {
 public:
  GivenProgram(std::string folder, std::string name)
      : folder_(std::move(folder)), name_(std::move(name)) {}
  bool Open(const std::string& /*path*/) override { return false; }
  std::string ProgramFolder() override { return folder_; }
  std::string ProgramName() override { return name_; }
  std::string HelpPage() override { return {}; }

 private:
  std::string folder_;
  std::string name_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  GivenProgram program(argv[3], argv[4]);
  const platform::Replacement<platform::Shell> replacement(program);
  scheduler::AddDailyTask(argv[1], argv[2]);
  return 0;
}
