#include "platform/crontab_linux.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

namespace platform {
namespace {

// What remains of a crontab's command once cron has looked for "%": a backslash before a "%" goes.
std::string AfterCron(std::string command) {
  for (std::size_t at = 0; (at = command.find("\\%", at)) != std::string::npos; ++at) {
    command.erase(at, 1);
  }
  return command;
}

// What the command shell makes of one word.
std::string AfterShell(const std::string& word) {
  const std::string command = "printf %s " + word;
  FILE* const shell = popen(command.c_str(), "r");
  std::array<char, 4096> buffer{};
  const std::size_t got = fread(buffer.data(), 1, buffer.size(), shell);
  EXPECT_EQ(pclose(shell), 0) << command;
  return {buffer.data(), got};
}

TEST(CrontabWordTest, ReachesTheProgramAsItIs) {
  for (const std::string text :
       {"", "web1", "my site", "a$(touch${IFS}x)`id`'&", "100%", "%%", "it's", "'", "\"", "\\",
        "a\\%b", "\\\\", "\\'", "%'\\", "*?[x]~!#;|<>(){}", "\xC3\xA9", "a\tb"}) {
    EXPECT_EQ(AfterShell(AfterCron(CrontabWord(text))), text);
  }
}

TEST(CrontabWordTest, HoldsNoBareSignThatCronTakesForItself) {
  EXPECT_EQ(CrontabWord("100%"), "'100\\%'");
  // Two backslashes in a row, or one before "%" that stands for itself, would be read otherwise.
  EXPECT_EQ(CrontabWord("a\\\\b").find("\\\\"), std::string::npos);
  EXPECT_EQ(CrontabWord("a\\%"), "'a\\''\\%'");
}

TEST(CrontabLineTest, HoldsTimeVariablesProgramAndSite) {
  const DailyTask task = {"web1-Hitwick-023045", "hitwick", " /BATCH /SITE=\"web1\"",
                          "/opt/my hitwick",     2,         30};
  EXPECT_EQ(CrontabLine(task, {{"LC_ALL", "de_DE.UTF-8"}, {"TZ", "Europe/Berlin"}}),
            "30 2 * * * LC_ALL='de_DE.UTF-8' TZ='Europe/Berlin' '/opt/my hitwick/hitwick' /BATCH "
            "'/SITE=\"web1\"'");
}

TEST(CrontabLineTest, TheDefaultSiteHasNoSwitch) {
  const DailyTask task = {"Hitwick-000000", "hitwick", " /BATCH", "/opt", 0, 0};
  EXPECT_EQ(CrontabLine(task, {}), "0 0 * * * '/opt/hitwick' /BATCH");
}

TEST(CrontabLineTest, IsRefusedWhenCronWouldReadAnother) {
  EXPECT_EQ(CrontabRefusal("0 2 * * * '/opt/hitwick' /BATCH"), "");
  EXPECT_EQ(CrontabRefusal(std::string(998, 'x')), "");
  EXPECT_NE(CrontabRefusal(std::string(999, 'x')), "");
  EXPECT_NE(CrontabRefusal("0 2 * * * '/opt/a\nb' /BATCH"), "");
  EXPECT_NE(CrontabRefusal("0 2 * * * '/opt/a\rb' /BATCH"), "");
}

class CrontabWithTest : public testing::Test {
 protected:
  static std::string With(const std::string& crontab) { return CrontabWith(crontab, "t", kLine); }
  static constexpr const char* kLine = "0 3 * * * 'p' /BATCH";
  const std::string entry_ = "# Hitwick task t\n0 3 * * * 'p' /BATCH\n";
  const std::string old_ = "# Hitwick task t\n0 2 * * * 'p' /BATCH\n";
};

TEST_F(CrontabWithTest, AnEmptyOneGetsTheTask) { EXPECT_EQ(With(""), entry_); }

TEST_F(CrontabWithTest, ANewTaskComesLast) {
  EXPECT_EQ(With("MAILTO=me\n\n1 1 * * * x\n"), "MAILTO=me\n\n1 1 * * * x\n" + entry_);
}

TEST_F(CrontabWithTest, TheSameTaskIsReplacedWhereItStands) {
  EXPECT_EQ(With("a\n" + old_ + "  b\t\n"), "a\n" + entry_ + "  b\t\n");
}

TEST_F(CrontabWithTest, ItIsReplacedOnceHoweverOftenItStandsThere) {
  EXPECT_EQ(With(old_ + "a\n" + old_), entry_ + "a\n");
}

TEST_F(CrontabWithTest, TasksOfOtherNamesStay) {
  const std::string others =
      "# Hitwick task t2\n0 2 * * * 'p' /BATCH\n# Hitwick task T\n0 2 * * * 'p' /BATCH\n"
      " # Hitwick task t\n0 2 * * * 'p' /BATCH\n";
  EXPECT_EQ(With(others), others + entry_);
}

TEST_F(CrontabWithTest, ALineOfTheUsersOwnBehindTheCommentStays) {
  for (const std::string own : {"1 1 * * * x\n", "\n", "#0 2 * * * 'p' /BATCH\n", "MAILTO=me\n"}) {
    EXPECT_EQ(With("# Hitwick task t\n" + own), entry_ + own);
  }
}

TEST_F(CrontabWithTest, ALineWithoutItsCommentIsTheUsersOwn) {
  EXPECT_EQ(With("0 2 * * * 'p' /BATCH\n"), "0 2 * * * 'p' /BATCH\n" + entry_);
}

TEST_F(CrontabWithTest, AMissingLastLineEndIsAdded) {
  EXPECT_EQ(With("1 1 * * * x"), "1 1 * * * x\n" + entry_);
  EXPECT_EQ(With("a\n# Hitwick task t\n0 2 * * * 'p' /BATCH"), "a\n" + entry_);
  EXPECT_EQ(With("# Hitwick task t"), entry_);
}

TEST_F(CrontabWithTest, OtherBytesStayAsTheyAre) {
  const std::string odd("\r\n\xFF\xFE\0x\n\n\n  \n", 12);
  EXPECT_EQ(With(odd), odd + entry_);
}

}  // namespace
}  // namespace platform
