#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/event_log.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

class LinuxEventLogTest : public testing::Test {
 protected:
  LinuxEventLogTest() : state_(EnvironmentOf("XDG_STATE_HOME")), home_(EnvironmentOf("HOME")) {
    UseStateFolder(folder_ / "state");
    SetZone("UTC0");
  }
  ~LinuxEventLogTest() override {
    setenv("XDG_STATE_HOME", state_.c_str(), 1);
    setenv("HOME", home_.c_str(), 1);
    unsetenv("TZ");
  }

  static std::string EnvironmentOf(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
  }
  static void UseStateFolder(const std::string& path) { setenv("XDG_STATE_HOME", path.c_str(), 1); }
  static void SetZone(const char* zone) { setenv("TZ", zone, 1); }
  static void Inform(std::string_view text) { TheEventLog().Write(EventLevel::kInformation, text); }
  std::string Log() const { return fakes::ReadFile(folder_ / "state/hitwick/events.log"); }
  // The entry's line without its time stamp.
  static std::string WithoutTime(const std::string& line) {
    return line.size() > 25 ? line.substr(25) : "";
  }

  fakes::ScopedTempDir folder_;

 private:
  std::string state_;
  std::string home_;
};

TEST_F(LinuxEventLogTest, AnEntryIsALineWithTimeLevelAndText) {
  Inform("Hitwick: operating on site 'web1'");
  EXPECT_EQ(WithoutTime(Log()), " information Hitwick: operating on site 'web1'\n");
  EXPECT_EQ(Log().substr(4, 1) + Log().substr(7, 1) + Log().substr(10, 1), "--T");
  EXPECT_EQ(Log().substr(19, 6), "+00:00");
}

TEST_F(LinuxEventLogTest, WarningsSaySo) {
  TheEventLog().Write(EventLevel::kWarning, "Hitwick: no");
  EXPECT_EQ(WithoutTime(Log()), " warning Hitwick: no\n");
}

TEST_F(LinuxEventLogTest, ANewFileIsForTheUserAloneWhateverTheMask) {
  const mode_t mask = umask(0);
  Inform("one");
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat((folder_ / "state/hitwick/events.log").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(LinuxEventLogTest, EntriesAreAppended) {
  Inform("one");
  const std::string first = Log();
  Inform("two");
  EXPECT_EQ(Log().substr(0, first.size()), first);
  EXPECT_EQ(WithoutTime(Log().substr(first.size())), " information two\n");
}

TEST_F(LinuxEventLogTest, TheZoneOffsetIsThatOfTheWallClock) {
  SetZone("AAA-3BBB-5,0/0,J365/26");  // in saving time all the year
  Inform("east");
  EXPECT_EQ(Log().substr(19, 6), "+05:00");
  SetZone("<-0330>3:30");
  const std::size_t second = Log().size();
  Inform("west");
  EXPECT_EQ(Log().substr(second + 19, 6), "-03:30");
}

TEST_F(LinuxEventLogTest, LineBreaksAreWrittenAsTwoCharacters) {
  Inform("a\nb\r\nc\rd\r\n");
  EXPECT_EQ(WithoutTime(Log()), " information a\\nb\\nc\\x0dd\\n\n");
}

TEST_F(LinuxEventLogTest, ControlCharactersAreEscaped) {
  Inform("/a\x1b]0;owned\a\tb");
  EXPECT_EQ(WithoutTime(Log()), " information /a\\x1b]0;owned\\x07\\x09b\n");
}

TEST_F(LinuxEventLogTest, AFullFileMovesAndANewOneBegins) {
  const std::string path = folder_ / "state/hitwick/events.log";
  const std::string full(10'000'000 - 100, 'x');
  fakes::WriteFile(path, full + "\n");
  fakes::WriteFile(path + ".1", "an older one");
  Inform("short");
  EXPECT_GT(Log().size(), full.size()) << "there was room for it";
  Inform(std::string(100, 'y'));
  EXPECT_EQ(WithoutTime(Log()), " information " + std::string(100, 'y') + "\n");
  EXPECT_EQ(fakes::ReadFile(path + ".1").substr(0, full.size()), full);
  EXPECT_NE(fakes::ReadFile(path + ".1").find("short\n"), std::string::npos);
}

TEST_F(LinuxEventLogTest, AFileThatWasMovedAwayIsLeftAlone) {
  const std::string path = folder_ / "state/hitwick/events.log";
  Inform("first");
  std::filesystem::rename(path, path + ".1");
  Inform("second");
  EXPECT_EQ(WithoutTime(Log()), " information second\n");
}

TEST_F(LinuxEventLogTest, AFullFileThatCannotMoveGrows) {
  const std::string path = folder_ / "state/hitwick/events.log";
  fakes::WriteFile(path, std::string(10'000'000, 'x') + "\n");
  std::filesystem::create_directories(path + ".1/in the way");
  Inform("not lost");
  EXPECT_NE(Log().find("not lost\n"), std::string::npos);
}

TEST_F(LinuxEventLogTest, ALinkStaysAndItsFileMoves) {
  const std::string target = folder_ / "elsewhere/hitwick.log";
  fakes::WriteFile(target, std::string(10'000'000, 'x') + "\n");
  std::filesystem::create_directories(folder_ / "state/hitwick");
  std::filesystem::create_symlink(target, folder_ / "state/hitwick/events.log");
  Inform("new");
  EXPECT_EQ(WithoutTime(fakes::ReadFile(target)), " information new\n");
  EXPECT_TRUE(std::filesystem::exists(target + ".1"));
}

TEST_F(LinuxEventLogTest, AFailedRunIsToldWithTheLastWarning) {
  TheEventLog().Write(EventLevel::kWarning, "Hitwick: first");
  TheEventLog().Write(EventLevel::kWarning, "Hitwick: last\nof \x1bthem");
  Inform("Hitwick: no warning");
  testing::internal::CaptureStderr();
  TheEventLog().TellOfFailure(1);
  EXPECT_EQ(
      testing::internal::GetCapturedStderr(),
      "Hitwick: last\\nof \\x1bthem (event log: " + (folder_ / "state/hitwick/events.log") + ")\n");
}

TEST_F(LinuxEventLogTest, TheFileIsForItsOwnerToWrite) {
  Inform("x");
  struct stat status {};
  ASSERT_EQ(stat((folder_ / "state/hitwick/events.log").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0133u, 0u);
}

TEST_F(LinuxEventLogTest, WithoutTheVariableTheHomeFolderIsUsed) {
  setenv("HOME", (folder_ / "home").c_str(), 1);
  for (const std::string value : {"", "relative/folder"}) {
    UseStateFolder(value);
    Inform("in home");
  }
  const std::string log = fakes::ReadFile(folder_ / "home/.local/state/hitwick/events.log");
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
}

TEST_F(LinuxEventLogTest, AnEntryThatCannotBeStoredIsShownOnceOnStandardError) {
  fakes::WriteFile(folder_ / "state", "a file where the folder should be");
  testing::internal::CaptureStderr();
  Inform("Hitwick: not\nlost");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Hitwick: not\\nlost\n");
}

TEST_F(LinuxEventLogTest, AFullDiskIsNoticed) {
  std::filesystem::create_directories(folder_ / "state/hitwick");
  std::filesystem::create_symlink("/dev/full", folder_ / "state/hitwick/events.log");
  testing::internal::CaptureStderr();
  Inform("Hitwick: disk full");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Hitwick: disk full\n");
}

TEST_F(LinuxEventLogTest, StoredEntriesStayOffStandardErrorUnlessItIsATerminal) {
  testing::internal::CaptureStderr();
  Inform("quiet");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace platform
