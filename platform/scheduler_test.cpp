#include "platform/scheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/message_box.h"
#include "platform/mod_systemInfo.h"
#include "platform/service.h"
#include "platform/shell.h"
#include "tests/fakes/fake_daily_tasks.h"
#include "tests/fakes/fake_shell.h"
#include "tests/fakes/recording_message_boxes.h"

namespace scheduler {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class SchedulerTest : public testing::Test {
 protected:
  SchedulerTest() {
    shell_.program_folder = "folder";
    shell_.program_name = "hitwick.exe";
  }

  // What the failure box says under its first line.
  static std::string Advice(const std::string& parameters) {
    return "\n\nTime should be formatted as HH:MM:SS\nOr perhaps insufficient privilege, so as "
           "administrator, Control Panel->Add Scheduled task\nhitwick.exe " +
           parameters;
  }

  fakes::FakeDailyTasks tasks_;
  fakes::FakeAtService at_;
  fakes::FakeShell shell_;
  fakes::RecordingMessageBoxes boxes_;

 private:
  platform::Replacement<platform::DailyTasks> use_tasks_{tasks_};
  platform::Replacement<platform::AtService> use_at_{at_};
  platform::Replacement<platform::Shell> use_shell_{shell_};
  platform::Replacement<platform::MessageBoxes> use_boxes_{boxes_};
};

using TimeOfDayTest = SchedulerTest;
using AddButton = SchedulerTest;
using AtRoutine = SchedulerTest;

TEST_F(TimeOfDayTest, IsReadInThreeForms) {
  EXPECT_EQ(ParseTimeOfDay("2:00"), (TimeOfDay{2, 0, 0}));
  EXPECT_EQ(ParseTimeOfDay("02:30"), (TimeOfDay{2, 30, 0}));
  EXPECT_EQ(ParseTimeOfDay("02:30:45"), (TimeOfDay{2, 30, 45}));
  EXPECT_EQ(ParseTimeOfDay("00:00:00"), (TimeOfDay{0, 0, 0}));
  EXPECT_EQ(ParseTimeOfDay("23:59:59"), (TimeOfDay{23, 59, 59}));
}

TEST_F(TimeOfDayTest, IsNothingElse) {
  for (const char* text :
       {"",      "2",           "02",       "noon",        "2:0",    "2:00:00", "24:00",
        "02:60", "02:00:60",    "02:00:0",  "02-00",       " 2:00",  "02:00 ",  "-2:00",
        "+2:00", "02:00:00 PM", "2:00pm",   "02:00:00:00", "002:00", "2.00",    "0x:00",
        ":::::", "02:000",      "12345678", "02:00-00"}) {
    EXPECT_FALSE(ParseTimeOfDay(text)) << text;
  }
}

TEST_F(SchedulerTest, TaskNamesHoldSiteAndTime) {
  EXPECT_EQ(TaskName("web1", {2, 30, 45}), "web1-Hitwick-023045");
  EXPECT_EQ(TaskName("INI", {2, 0, 0}), "Hitwick-020000");
  EXPECT_EQ(TaskName("ini", {2, 0, 0}), "Hitwick-020000");
  EXPECT_EQ(TaskName("", {2, 0, 0}), "Hitwick-020000");
  EXPECT_EQ(TaskName("INI2", {2, 0, 0}), "INI2-Hitwick-020000");
}

TEST_F(SchedulerTest, ParametersNameEverySiteButTheDefaultOne) {
  EXPECT_EQ(TaskParameters("INI"), " /BATCH");
  EXPECT_EQ(TaskParameters("Ini"), " /BATCH");
  EXPECT_EQ(TaskParameters("web1"), " /BATCH /SITE=\"web1\"");
}

TEST_F(SchedulerTest, OnlyNamesThatTheSwitchCarriesWholeFit) {
  for (const char* site : {"", "web1", "a$(touch${IFS}x)`id`'&", "100%", "x=y", "a:b", "\xC3\xA9",
                           "[a]", "#1", "~", "!"}) {
    EXPECT_TRUE(FitsCommandLine(site)) << site;
  }
  for (const char* site :
       {"my site", "a\"b", "a;b", "a/b", "a\\b", "a\tb", "a\nb", "\x1B[0m", "a\x7F"}) {
    EXPECT_FALSE(FitsCommandLine(site)) << site;
  }
}

TEST_F(AddButton, HandsTheTaskOver) {
  AddDailyTask("web1", "02:30:45");
  ASSERT_EQ(tasks_.scheduled.size(), 1u);
  const platform::DailyTask& task = tasks_.scheduled.front();
  EXPECT_EQ(task.name, "web1-Hitwick-023045");
  EXPECT_EQ(task.program, "hitwick.exe");
  EXPECT_EQ(task.parameters, " /BATCH /SITE=\"web1\"");
  EXPECT_EQ(task.folder, "folder");
  EXPECT_EQ(task.hour, 2);
  EXPECT_EQ(task.minute, 30);
}

TEST_F(AddButton, TheDefaultSiteNeedsNoSwitch) {
  AddDailyTask("INI", "2:00");
  ASSERT_EQ(tasks_.scheduled.size(), 1u);
  EXPECT_EQ(tasks_.scheduled.front().name, "Hitwick-020000");
  EXPECT_EQ(tasks_.scheduled.front().parameters, " /BATCH");
}

TEST_F(AddButton, TellsOfSuccessWithTheTimeAsTyped) {
  AddDailyTask("web1", "2:30");
  EXPECT_THAT(boxes_.shown, ElementsAre("Scheduled at 2:30\nTo remove use Control Panel -> "
                                        "Scheduled Tasks"));
}

TEST_F(AddButton, TellsOfFailureInTheSystemsWords) {
  tasks_.result.code = 5;
  AddDailyTask("web1", "02:00:00");
  EXPECT_THAT(boxes_.shown, ElementsAre("Unable to add task.\n" + mod_systemInfo::GetErrorText(5) +
                                        Advice(" /BATCH /SITE=\"web1\"")));
}

TEST_F(AddButton, TellsOfFailureInTheWordsOfWhoeverRefused) {
  tasks_.result = {5, "You (tester) are not allowed"};
  AddDailyTask("INI", "02:00:00");
  EXPECT_THAT(boxes_.shown,
              ElementsAre("Unable to add task.\nYou (tester) are not allowed" + Advice(" /BATCH")));
}

TEST_F(AddButton, WantsATimeOfDay) {
  AddDailyTask("web1", "noon");
  EXPECT_THAT(tasks_.scheduled, IsEmpty());
  EXPECT_THAT(boxes_.shown, ElementsAre("Unable to add task.\nNot a time of day" +
                                        Advice(" /BATCH /SITE=\"web1\"")));
}

TEST_F(AddButton, RefusesASiteThatTheSwitchWouldCut) {
  AddDailyTask("my site", "02:00");
  EXPECT_THAT(tasks_.scheduled, IsEmpty());
  EXPECT_THAT(boxes_.shown,
              ElementsAre("Unable to add task.\nThe site's name cannot stand in a command line" +
                          Advice(" /BATCH /SITE=\"my site\"")));
}

TEST_F(AtRoutine, CommandsNameTheInstalledProgram) {
  EXPECT_EQ(AtCommand("INI"), "\"C:\\Program Files\\Hitwick\\Hitwick.exe\" /B");
  EXPECT_EQ(AtCommand("ini"), "\"C:\\Program Files\\Hitwick\\Hitwick.exe\" /B");
  EXPECT_EQ(AtCommand("web1"), "\"C:\\Program Files\\Hitwick\\Hitwick.exe\" /BATCH /SITE=\"web1\"");
}

TEST_F(AtRoutine, JobsRunEveryDayAtTheMillisecond) {
  const platform::AtJob job = AtJobOf("web1", {23, 59, 59});
  EXPECT_EQ(job.JobTime, 86399000u);
  EXPECT_EQ(job.DaysOfMonth, 0u);
  EXPECT_EQ(job.DaysOfWeek, 127);
  EXPECT_EQ(job.Flags, 1);
  EXPECT_EQ(job.Command, AtCommand("web1"));
  EXPECT_EQ(AtJobOf("INI", {0, 0, 0}).JobTime, 0u);
}

TEST_F(AtRoutine, TellsTheJobsNumber) {
  at_.number = 7;
  AddAtJob("web1", "02:00:00");
  ASSERT_EQ(at_.jobs.size(), 1u);
  EXPECT_EQ(at_.jobs.front().JobTime, 7200000u);
  EXPECT_THAT(boxes_.shown, ElementsAre("Scheduled at 02:00:00. Job ID = 7\nTo remove, start a "
                                        "command prompt and run AT 7 /DEL"));
}

TEST_F(AtRoutine, NumberZeroIsASuccess) {
  AddAtJob("web1", "02:00");
  EXPECT_THAT(boxes_.shown, ElementsAre(StartsWith("Scheduled at 02:00. Job ID = 0\n")));
}

TEST_F(AtRoutine, FailureNamesTheDefaultSitesCommandWhateverTheSite) {
  const std::string failure =
      "Unable to add task.\nTime should be as HH:MM:SS\nOr insufficient privilege, so as "
      "administrator, Control Panel->Add Scheduled task\n\"C:\\Program Files\\Hitwick\\"
      "Hitwick.exe\" /B";
  at_.number = -1;
  AddAtJob("web1", "02:00:00");
  AddAtJob("web1", "soon");
  EXPECT_EQ(at_.jobs.size(), 1u);
  EXPECT_THAT(boxes_.shown, ElementsAre(failure, failure));
}

}  // namespace
}  // namespace scheduler
