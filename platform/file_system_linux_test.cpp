#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
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
    int error = 0;
    const auto output = TheFileSystem().CreateOutput(folder_ / name, &error);
    if (output == nullptr) return error;
    error = output->Append(content);
    return error != 0 ? error : output->Commit();
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

TEST_F(LinuxFilesTest, TheTemporaryFileStandsBesideTheFinalOne) {
  int error = 0;
  const auto output = TheFileSystem().CreateOutput(folder_ / "Jan.htm", &error);
  EXPECT_TRUE(std::filesystem::exists(folder_ / ("Jan.htm." + std::to_string(getpid()) + ".tmp")));
}

TEST_F(LinuxFilesTest, WhatAKilledProcessLeftIsNoObstacle) {
  const std::string left_over = "Jan.htm." + std::to_string(getpid()) + ".tmp";
  fakes::WriteFile(folder_ / left_over, "half a page");
  EXPECT_EQ(Replace("Jan.htm", "new"), 0);
  EXPECT_EQ(Content("Jan.htm"), "new");
  EXPECT_EQ(Content(left_over), "half a page");
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
