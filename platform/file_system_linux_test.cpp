#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>

#include "platform/file_system.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

class LinuxFilesTest : public testing::Test {
 protected:
  int Replace(const std::string& name, std::string_view content) {
    return TheFileSystem().ReplaceFile(folder_ / name, content);
  }
  void RemoveLeftOversOf(const std::string& target) {
    TheFileSystem().RemoveLeftOvers(folder_.path(),
                                    [&](std::string_view name) { return name == target; });
  }
  struct stat StatusOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(lstat((folder_ / name).c_str(), &status), 0);
    return status;
  }
  mode_t PermissionsOf(const std::string& name) const { return StatusOf(name).st_mode & 07777u; }
  std::string Content(const std::string& name) const { return fakes::ReadFile(folder_ / name); }
  int ErrorOfOpening(const std::string& path) {
    int error = 0;
    EXPECT_EQ(TheFileSystem().OpenForReading(path, &error), nullptr);
    return error;
  }
  long EntryCount() const {
    return std::distance(std::filesystem::directory_iterator(folder_.path()), {});
  }

  fakes::ScopedTempDir folder_;
};

TEST_F(LinuxFilesTest, OnlyRegularFilesAreOpened) {
  EXPECT_EQ(ErrorOfOpening(folder_.path()), EISDIR);
  EXPECT_EQ(ErrorOfOpening("/dev/zero"), EINVAL);
  EXPECT_EQ(ErrorOfOpening(folder_ / "missing"), ENOENT);
}

TEST_F(LinuxFilesTest, APipeNeitherStopsTheRunNorIsRead) {
  ASSERT_EQ(mkfifo((folder_ / "ex160101.log").c_str(), 0600), 0);
  EXPECT_EQ(ErrorOfOpening(folder_ / "ex160101.log"), EINVAL);
  EXPECT_TRUE(TheFileSystem().ListFiles(folder_.path(), "ex", ".log").empty());
}

TEST_F(LinuxFilesTest, LinksAreFollowed) {
  fakes::WriteFile(folder_ / "logs/real.log", "x");
  std::filesystem::create_symlink("logs/real.log", folder_ / "ex1.log");
  std::filesystem::create_symlink("logs", folder_ / "ex2.log");
  std::filesystem::create_symlink("nowhere", folder_ / "ex3.log");
  EXPECT_EQ(TheFileSystem().ListFiles(folder_.path(), "ex", ".log"),
            std::vector<std::string>{"ex1.log"});
  EXPECT_TRUE(TheFileSystem().FolderExists(folder_ / "ex2.log"));
}

TEST_F(LinuxFilesTest, SpellingsOfOneNameAreListedInByteOrder) {
  for (const char* name : {"ex1.log", "EX1.LOG", "Ex1.log"}) fakes::WriteFile(folder_ / name, "");
  EXPECT_EQ(TheFileSystem().ListFiles(folder_.path(), "ex", ".log"),
            (std::vector<std::string>{"EX1.LOG", "Ex1.log", "ex1.log"}));
}

TEST_F(LinuxFilesTest, AReplacedFileKeepsItsPermissions) {
  fakes::WriteFile(folder_ / "Jan.htm", "old");
  for (const mode_t permissions : {0640u, 0604u, 0600u, 0444u}) {
    chmod((folder_ / "Jan.htm").c_str(), permissions);
    EXPECT_EQ(Replace("Jan.htm", "new"), 0);
    EXPECT_EQ(PermissionsOf("Jan.htm"), permissions);
  }
}

TEST_F(LinuxFilesTest, ANewFileHasTheUsualPermissions) {
  const mode_t mask = umask(027);
  EXPECT_EQ(Replace("Jan.htm", "new"), 0);
  umask(mask);
  EXPECT_EQ(PermissionsOf("Jan.htm"), 0640u);
}

TEST_F(LinuxFilesTest, RootLeavesAFileToItsOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  fakes::WriteFile(folder_ / "Jan.htm", "old");
  ASSERT_EQ(chown((folder_ / "Jan.htm").c_str(), 12345, 23456), 0);
  EXPECT_EQ(Replace("Jan.htm", "new"), 0);
  EXPECT_EQ(StatusOf("Jan.htm").st_uid, 12345u);
  EXPECT_EQ(StatusOf("Jan.htm").st_gid, 23456u);
}

TEST_F(LinuxFilesTest, ALinkStaysAndItsTargetIsReplaced) {
  fakes::WriteFile(folder_ / "elsewhere/page.htm", "old");
  std::filesystem::create_symlink("elsewhere/page.htm", folder_ / "Jan.htm");
  std::filesystem::create_symlink(folder_ / "elsewhere/none.htm", folder_ / "Feb.htm");
  EXPECT_EQ(Replace("Jan.htm", "new"), 0);
  EXPECT_EQ(Replace("Feb.htm", "new too"), 0);
  EXPECT_TRUE(S_ISLNK(StatusOf("Jan.htm").st_mode));
  EXPECT_EQ(Content("elsewhere/page.htm"), "new");
  EXPECT_EQ(Content("elsewhere/none.htm"), "new too");
}

TEST_F(LinuxFilesTest, LinksInACircleAreAnError) {
  std::filesystem::create_symlink("b", folder_ / "a");
  std::filesystem::create_symlink("a", folder_ / "b");
  EXPECT_NE(Replace("a", "x"), 0);
  EXPECT_EQ(EntryCount(), 2);
}

TEST_F(LinuxFilesTest, FoldersAndDevicesAreNotReplaced) {
  std::filesystem::create_directory(folder_ / "Jan.htm");
  EXPECT_EQ(Replace("Jan.htm", "x"), EISDIR);
  ASSERT_EQ(mkfifo((folder_ / "Feb.htm").c_str(), 0600), 0);
  EXPECT_EQ(Replace("Feb.htm", "x"), EINVAL);
}

TEST_F(LinuxFilesTest, AnotherUsersLinkIsNotFollowed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give links away";
  fakes::WriteFile(folder_ / "elsewhere/page.htm", "precious");
  std::filesystem::create_symlink("elsewhere/page.htm", folder_ / "Jan.htm");
  std::filesystem::create_symlink(folder_ / "Jan.htm", folder_ / "Feb.htm");
  ASSERT_EQ(lchown((folder_ / "Jan.htm").c_str(), 12345, 12345), 0);
  EXPECT_EQ(Replace("Jan.htm", "new"), kForeignLinkError);
  EXPECT_EQ(Replace("Feb.htm", "new"), kForeignLinkError) << "nor behind a link of one's own";
  EXPECT_EQ(Content("elsewhere/page.htm"), "precious");
  ASSERT_EQ(seteuid(12345), 0);
  const int error = Replace("Jan.htm", "new");
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(error, EACCES) << "its owner follows it, as far as he may write";
}

TEST_F(LinuxFilesTest, RootsLinkIsFollowedByEverybody) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  fakes::WriteFile(folder_ / "elsewhere/page.htm", "old");
  std::filesystem::create_symlink("elsewhere/page.htm", folder_ / "Jan.htm");
  for (const std::string& path : {folder_.path(), folder_ / "elsewhere"}) {
    ASSERT_EQ(chmod(path.c_str(), 0777), 0);
  }
  ASSERT_EQ(seteuid(12345), 0);
  const int error = Replace("Jan.htm", "new");
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Content("elsewhere/page.htm"), "new");
}

// A process that has a temporary file of "Jan.htm" under way and does not go on by itself.
class StuckProcess {
 public:
  explicit StuckProcess(const fakes::ScopedTempDir& folder) {
    int ready[2] = {};
    if (pipe(ready) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      // A pipe that nobody reads takes the place of the disk that stands still.
      stuck_in = ready[1];
      TheFileSystem().ReplaceFile(folder / "Jan.htm", "new");
      _exit(0);
    }
    close(ready[1]);
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    close(ready[0]);
  }
  ~StuckProcess() { Kill(); }
  void Kill() {
    if (process_ > 0) {
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
    }
    process_ = 0;
  }

  static int stuck_in;  // where `fsync` below says that it was reached; -1 lets it pass

 private:
  pid_t process_ = 0;
};
int StuckProcess::stuck_in = -1;

// What `fsync` was called with, in order: 'f' for a file, 'd' for a folder.
std::string synced;

TEST_F(LinuxFilesTest, ALeftOverIsRemovedAndALiveFileIsNot) {
  StuckProcess process(folder_);
  EXPECT_EQ(EntryCount(), 1);
  RemoveLeftOversOf("Jan.htm");
  EXPECT_EQ(EntryCount(), 1) << "its process lives";
  process.Kill();
  EXPECT_EQ(EntryCount(), 1);
  RemoveLeftOversOf("Feb.htm");
  EXPECT_EQ(EntryCount(), 1) << "not of this target";
  RemoveLeftOversOf("Jan.htm");
  EXPECT_EQ(EntryCount(), 0);
}

TEST_F(LinuxFilesTest, LeftOversBehindALinkAreRemoved) {
  const std::string left_over = "elsewhere/page.htm.1-2.tmp";
  fakes::WriteFile(folder_ / "elsewhere/page.htm", "old");
  fakes::WriteFile(folder_ / left_over, "half");
  fakes::WriteFile(folder_ / "elsewhere/other.htm.1-2.tmp", "half");
  std::filesystem::create_symlink("elsewhere/page.htm", folder_ / "Jan.htm");
  RemoveLeftOversOf("Jan.htm");
  EXPECT_FALSE(std::filesystem::exists(folder_ / left_over));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "elsewhere/other.htm.1-2.tmp"));
}

TEST_F(LinuxFilesTest, ALinkNamedLikeALeftOverStays) {
  fakes::WriteFile(folder_ / "precious", "x");
  std::filesystem::create_symlink("precious", folder_ / "Jan.htm.1-2.tmp");
  RemoveLeftOversOf("Jan.htm");
  EXPECT_EQ(EntryCount(), 2);
  EXPECT_EQ(Content("precious"), "x");
}

TEST_F(LinuxFilesTest, FileAndFolderAreSynced) {
  synced.clear();
  EXPECT_EQ(Replace("Jan.htm", "new"), 0);
  EXPECT_EQ(synced, "fd");
}

TEST_F(LinuxFilesTest, TheLockOfAProcessEndsWithIt) {
  int ready[2] = {};
  ASSERT_EQ(pipe(ready), 0);
  const pid_t process = fork();
  if (process == 0) {
    int error = 0;
    const auto lock = TheFileSystem().LockFolder(folder_.path(), kLockPatience, &error);
    static_cast<void>(write(ready[1], "x", 1) + pause());
    _exit(0);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  int error = 0;
  EXPECT_EQ(TheFileSystem().LockFolder(folder_.path(), std::chrono::milliseconds(0), &error),
            nullptr);
  EXPECT_EQ(error, kLockBusyError);
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  EXPECT_NE(TheFileSystem().LockFolder(folder_.path(), std::chrono::milliseconds(0), &error),
            nullptr);
  close(ready[0]);
  close(ready[1]);
}

TEST_F(LinuxFilesTest, AFullDiskLeavesTheOldFileAndNothingElse) {
  fakes::WriteFile(folder_ / "Jan.htm", "old");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const int error = Replace("Jan.htm", std::string(5000, 'x'));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(Content("Jan.htm"), "old");
  EXPECT_EQ(EntryCount(), 1);
}

}  // namespace
}  // namespace platform

// Takes the C library's place in this test program: notes the call, and stands still for good in a
// `StuckProcess`.
extern "C" int fsync(int file) {
  struct stat status {};
  fstat(file, &status);
  platform::synced += S_ISDIR(status.st_mode) ? 'd' : 'f';
  if (platform::StuckProcess::stuck_in >= 0) {
    static_cast<void>(write(platform::StuckProcess::stuck_in, "x", 1) + pause());
  }
  return static_cast<int>(syscall(SYS_fsync, file));
}
