// The user's crontab as it is read and written, with a stand-in for the program `crontab`. How the
// real one and cron take it is tested by tests/e2e/cron_test.py.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/daily_tasks.h"
#include "platform/environment.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

using ::testing::HasSubstr;

class ScopedVariable {
 public:
  explicit ScopedVariable(const char* name) : name_(name), set_(std::getenv(name) != nullptr) {
    if (set_) value_ = std::getenv(name);
  }
  ~ScopedVariable() { set_ ? setenv(name_, value_.c_str(), 1) : unsetenv(name_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* name_;
  bool set_;
  std::string value_;
};

class CrontabTest : public testing::Test {
 protected:
  CrontabTest() {
    UseProgram(
        "case $1 in\n"
        "  -l) [ -e \"$FAKE_CRONTAB\" ] || { echo 'no crontab for tester' >&2; exit 1; }\n"
        "      cat \"$FAKE_CRONTAB\" ;;\n"
        "  -) cat > \"$FAKE_CRONTAB\" ;;\n"
        "esac\n");
    setenv("PATH", (dir_.path() + "/bin:/usr/bin:/bin").c_str(), 1);
    setenv("FAKE_CRONTAB", crontab_.c_str(), 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("TZ", "Europe/Berlin", 1);
    setenv("XDG_CONFIG_HOME", "/cfg", 1);
    unsetenv("XDG_STATE_HOME");
  }

  void UseProgram(const std::string& script) {
    const std::string program = dir_ / "bin/crontab";
    fakes::WriteFile(program, "#!/bin/sh\n" + script);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }
  TaskResult Add(const std::string& folder = "/opt") {
    return TheDailyTasks().Hitwick_schedule(
        {"web1-Hitwick-020000", "hitwick", " /BATCH /SITE=\"web1\"", folder, 2, 0});
  }
  std::string Stored() const { return fakes::ReadFile(crontab_); }

  fakes::ScopedTempDir dir_;
  const std::string crontab_ = dir_ / "stored";
  const std::string entry_ =
      "# Hitwick task web1-Hitwick-020000\n0 2 * * * LC_ALL='de_DE.UTF-8' TZ='Europe/Berlin' "
      "XDG_CONFIG_HOME='/cfg' '/opt/hitwick' /BATCH '/SITE=\"web1\"'\n";

 private:
  ScopedVariable path_{"PATH"};
  ScopedVariable fake_{"FAKE_CRONTAB"};
  ScopedVariable locale_{"LC_ALL"};
  ScopedVariable time_locale_{"LC_TIME"};
  ScopedVariable language_{"LANG"};
  ScopedVariable zone_{"TZ"};
  ScopedVariable config_{"XDG_CONFIG_HOME"};
  ScopedVariable state_{"XDG_STATE_HOME"};
};

TEST_F(CrontabTest, AUserWithoutOneGetsOne) {
  EXPECT_EQ(Add().code, 0);
  EXPECT_EQ(Stored(), entry_);
}

TEST_F(CrontabTest, TheUsersOwnLinesStay) {
  fakes::WriteFile(crontab_, "MAILTO=me\n1 1 * * * x\n");
  EXPECT_EQ(Add().code, 0);
  EXPECT_EQ(Stored(), "MAILTO=me\n1 1 * * * x\n" + entry_);
  EXPECT_EQ(Add().code, 0);
  EXPECT_EQ(Stored(), "MAILTO=me\n1 1 * * * x\n" + entry_) << "the second time it is replaced";
}

TEST_F(CrontabTest, TheLocaleForDatesIsTheOneInForce) {
  unsetenv("LC_ALL");
  setenv("LC_TIME", "fr_FR.UTF-8", 1);
  EXPECT_EQ(Add().code, 0);
  EXPECT_THAT(Stored(), HasSubstr(" LC_ALL='fr_FR.UTF-8' "));
  for (const char* variable : {"LC_TIME", "LANG"}) unsetenv(variable);
  EXPECT_EQ(Add().code, 0);
  EXPECT_THAT(Stored(), HasSubstr(" LC_ALL='C' "));
}

TEST_F(CrontabTest, WithoutAZoneOfItsOwnTheSystemsIsInForce) {
  unsetenv("TZ");
  EXPECT_EQ(Add().code, 0);
  EXPECT_THAT(Stored(), HasSubstr(" TZ=':/etc/localtime' "));
}

TEST_F(CrontabTest, ACrontabThatCannotBeReadIsNotReplaced) {
  UseProgram(
      "echo \"$*\" >> \"$FAKE_CRONTAB.calls\"; echo 'crontabs: Permission denied' >&2; "
      "exit 1\n");
  const TaskResult result = Add();
  EXPECT_NE(result.code, 0);
  EXPECT_EQ(result.reason, "crontabs: Permission denied");
  EXPECT_EQ(fakes::ReadFile(crontab_ + ".calls"), "-l\n");
}

TEST_F(CrontabTest, RefusalIsToldInTheProgramsWords) {
  UseProgram(
      "printf 'You (tester) are not allowed to use this program (crontab)\\nSee crontab(1) "
      "for more information\\n' >&2; exit 1\n");
  EXPECT_EQ(Add().reason,
            "You (tester) are not allowed to use this program (crontab)\nSee crontab(1) for more "
            "information");
}

TEST_F(CrontabTest, AFullDiskIsToldInTheProgramsWords) {
  UseProgram("[ \"$1\" = - ] || exit 0; echo 'mkstemp: No space left on device' >&2; exit 1\n");
  const TaskResult result = Add();
  EXPECT_NE(result.code, 0);
  EXPECT_EQ(result.reason, "mkstemp: No space left on device");
}

TEST_F(CrontabTest, WhatHasNotArrivedIsNoSuccess) {
  UseProgram("[ \"$1\" = - ] && cat >/dev/null; exit 0\n");
  const TaskResult result = Add();
  EXPECT_NE(result.code, 0);
  EXPECT_NE(result.reason, "");
}

TEST_F(CrontabTest, ASilentFailureIsAFailure) {
  UseProgram("exit 1\n");
  EXPECT_NE(Add().code, 0);
  UseProgram("kill -9 $$\n");
  EXPECT_NE(Add().code, 0);
}

TEST_F(CrontabTest, WithoutTheProgramTheReasonNamesIt) {
  std::filesystem::remove(dir_ / "bin/crontab");
  setenv("PATH", (dir_ / "bin").c_str(), 1);
  const TaskResult result = Add();
  EXPECT_NE(result.code, 0);
  EXPECT_THAT(result.reason, HasSubstr("crontab"));
  EXPECT_THAT(result.reason, HasSubstr("No such file"));
}

TEST_F(CrontabTest, WhatCannotStandInALineIsRefusedBeforeAnythingIsRead) {
  for (const std::string& folder : {std::string("/opt/a\nb"), "/" + std::string(1000, 'x')}) {
    const TaskResult result = Add(folder);
    EXPECT_NE(result.code, 0);
    EXPECT_NE(result.reason, "");
    EXPECT_FALSE(std::filesystem::exists(crontab_));
  }
}

TEST_F(CrontabTest, TheProgramSpeaksEnglishAndLeavesItsHeaderOut) {
  UseProgram("echo \"$LC_ALL $CRONTAB_NOHEADER\" >&2; exit 1\n");
  EXPECT_EQ(Add().reason, "C Y");
}

TEST(AtServiceTest, IsNotThere) { EXPECT_EQ(TheAtService().NetScheduleJobAdd({}), -1); }

}  // namespace
}  // namespace platform
