#include <gtest/gtest.h>

#include "platform/daily_tasks.h"
#include "platform/mod_systemInfo.h"
#include "platform/scheduler.h"
#include "platform/service.h"
#include "platform/shell.h"
#include "tests/fakes/fake_shell.h"
#include "tests/fakes/recording_message_boxes.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

constexpr int kModuleNotFound = 126;

TaskResult AddFrom(const std::string& folder) {
  return TheDailyTasks().Hitwick_schedule(
      {"Hitwick-020000", "hitwick.exe", " /BATCH", folder, 2, 0});
}

TEST(HelperLibraryTest, AMissingOneIsToldInTheSystemsWords) {
  const fakes::ScopedTempDir dir;
  const TaskResult result = AddFrom(dir.path());
  EXPECT_EQ(result.code, kModuleNotFound);
  EXPECT_EQ(result.reason, "");
  EXPECT_FALSE(mod_systemInfo::GetErrorText(result.code).empty());
}

// The add button of a program that was copied without its library.
TEST(HelperLibraryTest, TheBoxOfAMissingOneHoldsTheSystemsWords) {
  const fakes::ScopedTempDir dir;
  fakes::FakeShell shell;
  shell.program_folder = dir.path();
  shell.program_name = "hitwick.exe";
  fakes::RecordingMessageBoxes boxes;
  const Replacement<Shell> use_shell(shell);
  const Replacement<MessageBoxes> use_boxes(boxes);
  scheduler::AddDailyTask("web1", "02:00:00");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_EQ(boxes.shown[0],
            "Unable to add task.\n" + mod_systemInfo::GetErrorText(kModuleNotFound) +
                "\n\nTime should be formatted as HH:MM:SS\nOr perhaps insufficient privilege, so "
                "as administrator, Control Panel->Add Scheduled task\n"
                "hitwick.exe  /BATCH /SITE=\"web1\"");
}

TEST(HelperLibraryTest, ADamagedOneIsNoSuccess) {
  const fakes::ScopedTempDir dir;
  fakes::WriteFile(dir / "HitwickHelper.dll", "no library");
  EXPECT_NE(AddFrom(dir.path()).code, 0);
}

// The library of this test program: it writes what it is given beside itself.
TEST(HelperLibraryTest, TakesTheTask) {
  const std::string folder = TheShell().ProgramFolder() + "\\test_helper";
  EXPECT_EQ(AddFrom(folder).code, 42);
  EXPECT_EQ(fakes::ReadFile(folder + "\\scheduled.txt"),
            "Hitwick-020000|hitwick.exe| /BATCH|" + folder + "|2|0");
}

}  // namespace
}  // namespace platform
