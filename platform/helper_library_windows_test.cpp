#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "platform/daily_tasks.h"
#include "platform/mod_systemInfo.h"
#include "platform/shell.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

constexpr int kInvalidName = 123;

// Where the Task Scheduler keeps a file for each task.
std::filesystem::path TaskFile(const std::string& name) {
  char folder[MAX_PATH] = {};
  GetSystemDirectoryA(folder, MAX_PATH);
  return std::filesystem::path(folder) / "tasks" / std::filesystem::u8path(name);
}

// The real library, which the build puts beside the test programs.
TaskResult Add(const std::string& name, const std::string& parameters = " /BATCH") {
  return TheDailyTasks().Hitwick_schedule(
      {name, "hitwick.exe", parameters, TheShell().ProgramFolder(), 2, 0});
}

class HitwickHelperTest : public testing::Test {
 protected:
  void TearDown() override { std::filesystem::remove(TaskFile(name_)); }

  std::string name_ = "HitwickHelperTest-Hitwick-020000";
};

TEST_F(HitwickHelperTest, RegistersATaskUnderItsName) {
  ASSERT_FALSE(std::filesystem::exists(TaskFile(name_)));
  EXPECT_EQ(Add(name_).code, 0);
  EXPECT_NE(fakes::ReadFile(TaskFile(name_)), "");
}

TEST_F(HitwickHelperTest, ReplacesATaskOfTheSameName) {
  fakes::WriteFile(TaskFile(name_), "another task");
  EXPECT_EQ(Add(name_).code, 0);
  const std::string replaced = fakes::ReadFile(TaskFile(name_));
  EXPECT_EQ(replaced.find("another task"), std::string::npos);
  EXPECT_EQ(Add(name_, " /BATCH /SITE=\"web1\"").code, 0);
  EXPECT_EQ(fakes::ReadFile(TaskFile(name_)).size(), replaced.size());
}

TEST_F(HitwickHelperTest, NamesAreUtf8) {
  name_ = "гавань-日本-Hitwick-020000";
  EXPECT_EQ(Add(name_).code, 0);
  EXPECT_TRUE(std::filesystem::exists(TaskFile(name_)));
}

TEST_F(HitwickHelperTest, AnswersWithTheSystemsErrorCode) {
  EXPECT_EQ(Add("a:b").code, kInvalidName);
  EXPECT_EQ(Add(name_, " /BATCH /SITE=\"%OS%\"").code, kInvalidName);
  EXPECT_FALSE(mod_systemInfo::GetErrorText(kInvalidName).empty());
  EXPECT_FALSE(std::filesystem::exists(TaskFile(name_)));
}

// The program loads the library for the one call only.
TEST_F(HitwickHelperTest, IsLoadedForTheCallAlone) {
  EXPECT_EQ(GetModuleHandleA("HitwickHelper.dll"), nullptr);
  Add(name_);
  EXPECT_EQ(GetModuleHandleA("HitwickHelper.dll"), nullptr);
}

}  // namespace
}  // namespace platform
