#include "platform/task_xml.h"

#include <gtest/gtest.h>

#include <string>

namespace platform {
namespace {

const std::string kUser = "S-1-5-21-1-2-3-1001";
constexpr WallTime kFirstRun = {2026, 3, 1, 2, 5};

DailyTask Web1() {
  return {"web1-Hitwick-020500",
          "hitwick.exe",
          " /BATCH /SITE=\"web1\"",
          "C:\\Program Files\\Hitwick",
          2,
          5};
}

std::string Xml(const DailyTask& task, TaskLogon logon = TaskLogon::kAlways) {
  return TaskXml(task, kUser, kFirstRun, logon);
}

// The text between the only two tags of that name.
std::string Element(const std::string& xml, const std::string& name) {
  const std::size_t start = xml.find("<" + name + ">") + name.size() + 2;
  return xml.substr(start, xml.find("</" + name + ">") - start);
}

TEST(TaskXmlTest, IsTheWholeDefinition) {
  EXPECT_EQ(Xml(Web1()), R"(<?xml version="1.0" encoding="UTF-16"?>
<Task version="1.3" xmlns="http://schemas.microsoft.com/windows/2004/02/mit/task">
<RegistrationInfo>
<Source>Hitwick</Source>
<Description>Makes the pages of usage statistics from the web server's logs.</Description>
</RegistrationInfo>
<Triggers>
<CalendarTrigger>
<StartBoundary>2026-03-01T02:05:00</StartBoundary>
<ScheduleByDay>
<DaysInterval>1</DaysInterval>
</ScheduleByDay>
</CalendarTrigger>
</Triggers>
<Principals>
<Principal id="User">
<UserId>S-1-5-21-1-2-3-1001</UserId>
<LogonType>S4U</LogonType>
<RunLevel>LeastPrivilege</RunLevel>
</Principal>
</Principals>
<Settings>
<MultipleInstancesPolicy>IgnoreNew</MultipleInstancesPolicy>
<DisallowStartIfOnBatteries>false</DisallowStartIfOnBatteries>
<StopIfGoingOnBatteries>false</StopIfGoingOnBatteries>
<StartWhenAvailable>true</StartWhenAvailable>
<Enabled>true</Enabled>
<Hidden>true</Hidden>
<ExecutionTimeLimit>PT23H</ExecutionTimeLimit>
</Settings>
<Actions Context="User">
<Exec>
<Command>C:\Program Files\Hitwick\hitwick.exe</Command>
<Arguments>/BATCH /SITE="web1"</Arguments>
<WorkingDirectory>C:\Program Files\Hitwick</WorkingDirectory>
</Exec>
</Actions>
</Task>
)");
}

TEST(TaskXmlTest, TheOtherLogonNeedsTheUserToBeThere) {
  EXPECT_EQ(Element(Xml(Web1(), TaskLogon::kWhenLoggedOn), "LogonType"), "InteractiveToken");
}

TEST(TaskXmlTest, MarkupInNamesIsText) {
  DailyTask task = Web1();
  task.parameters = " /BATCH /SITE=\"</Arguments><Exec>&amp;\"";
  task.folder = "C:\\R&D <1>";
  task.program = "hit&wick.exe";
  const std::string xml = Xml(task);
  EXPECT_EQ(Element(xml, "Arguments"), "/BATCH /SITE=\"&lt;/Arguments&gt;&lt;Exec&gt;&amp;amp;\"");
  EXPECT_EQ(Element(xml, "Command"), "C:\\R&amp;D &lt;1&gt;\\hit&amp;wick.exe");
  EXPECT_EQ(Element(xml, "WorkingDirectory"), "C:\\R&amp;D &lt;1&gt;");
}

TEST(TaskXmlTest, OnlyTheBlankBeforeTheParametersGoes) {
  DailyTask task = Web1();
  task.parameters = "  /BATCH  ";
  EXPECT_EQ(Element(Xml(task), "Arguments"), "/BATCH  ");
  task.parameters = " ";
  EXPECT_EQ(Element(Xml(task), "Arguments"), "");
}

TEST(NextTimeTest, IsTodayWhileTheClockHasNotShownIt) {
  EXPECT_EQ(NextTime({2026, 1, 31, 1, 59}, 2, 0), (WallTime{2026, 1, 31, 2, 0}));
  EXPECT_EQ(NextTime({2026, 1, 31, 2, 0}, 2, 1), (WallTime{2026, 1, 31, 2, 1}));
  EXPECT_EQ(NextTime({2026, 1, 31, 2, 30}, 3, 0), (WallTime{2026, 1, 31, 3, 0}));
}

TEST(NextTimeTest, IsTomorrowFromThatMinuteOn) {
  EXPECT_EQ(NextTime({2026, 5, 14, 2, 0}, 2, 0), (WallTime{2026, 5, 15, 2, 0}));
  EXPECT_EQ(NextTime({2026, 5, 14, 23, 59}, 0, 0), (WallTime{2026, 5, 15, 0, 0}));
  EXPECT_EQ(NextTime({2026, 5, 14, 3, 0}, 2, 59), (WallTime{2026, 5, 15, 2, 59}));
}

TEST(NextTimeTest, CrossesMonthsAndYears) {
  EXPECT_EQ(NextTime({2026, 2, 28, 3, 0}, 2, 0), (WallTime{2026, 3, 1, 2, 0}));
  EXPECT_EQ(NextTime({2028, 2, 28, 3, 0}, 2, 0), (WallTime{2028, 2, 29, 2, 0}));
  EXPECT_EQ(NextTime({2026, 12, 31, 3, 0}, 2, 0), (WallTime{2027, 1, 1, 2, 0}));
}

bool FitsWithName(const std::string& name) {
  DailyTask task = Web1();
  task.name = name;
  return FitsTaskScheduler(task);
}

bool FitsWithParameters(const std::string& parameters) {
  DailyTask task = Web1();
  task.parameters = parameters;
  return FitsTaskScheduler(task);
}

TEST(FitsTaskSchedulerTest, NamesOfFiles) {
  EXPECT_TRUE(FitsTaskScheduler(Web1()));
  EXPECT_TRUE(FitsWithName("гавань-日本-Hitwick-020500"));
  EXPECT_TRUE(FitsWithName("a.b c&d'(e)%$-Hitwick-020500"));
  for (const char* name : {"", ".", "..", " web1", "web1 ", "a\\b", "a/b", "a:b", "a*b", "a?b",
                           "a\"b", "a<b", "a>b", "a|b", "a\tb", "a\x7f"}) {
    EXPECT_FALSE(FitsWithName(name)) << name;
  }
}

TEST(FitsTaskSchedulerTest, NothingThatWouldBeReplaced) {
  EXPECT_TRUE(FitsWithParameters(" /BATCH /SITE=\"100%\""));
  EXPECT_TRUE(FitsWithParameters(" /BATCH /SITE=\"$100(net)\""));
  for (const char* parameters : {" /SITE=\"%OS%\"", " /SITE=\"%%\"", " /SITE=\"$(Arg0)\"",
                                 " /SITE=\"a\nb\"", " /SITE=\"a\x01\""}) {
    EXPECT_FALSE(FitsWithParameters(parameters)) << parameters;
  }
}

TEST(FitsTaskSchedulerTest, NorInTheProgramsPath) {
  DailyTask task = Web1();
  task.folder = "C:\\%TEMP%";
  EXPECT_FALSE(FitsTaskScheduler(task));
  task = Web1();
  task.program = "$(x).exe";
  EXPECT_FALSE(FitsTaskScheduler(task));
}

TEST(FitsTaskSchedulerTest, TimesOfADay) {
  DailyTask task = Web1();
  for (const auto& [hour, minute] : {std::pair(0, 0), std::pair(23, 59)}) {
    task.hour = static_cast<std::int16_t>(hour);
    task.minute = static_cast<std::int16_t>(minute);
    EXPECT_TRUE(FitsTaskScheduler(task)) << hour << ':' << minute;
  }
  for (const auto& [hour, minute] :
       {std::pair(24, 0), std::pair(-1, 0), std::pair(0, 60), std::pair(0, -1)}) {
    task.hour = static_cast<std::int16_t>(hour);
    task.minute = static_cast<std::int16_t>(minute);
    EXPECT_FALSE(FitsTaskScheduler(task)) << hour << ':' << minute;
  }
}

}  // namespace
}  // namespace platform
