#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "platform/service.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

// What holds for every file system; the parameter tells whether a fake stands in. Files and
// folders are made beside the interface, below `root_`.
class FileSystemTest : public testing::TestWithParam<bool> {
 protected:
  FileSystemTest() {
    if (!GetParam()) return;
    fake_.AddFolder(root_);
    replacement_ = std::make_unique<Replacement<FileSystem>>(fake_);
  }

  std::string Path(const std::string& name) const { return JoinPath(root_, name); }
  void MakeFolder(const std::string& name) {
    if (GetParam()) {
      fake_.AddFolder(Path(name));
    } else {
      std::filesystem::create_directories(Path(name));
    }
  }
  void MakeFile(const std::string& name, std::string_view content) {
    if (GetParam()) {
      fake_.AddFile(Path(name), content);
    } else {
      fakes::WriteFile(Path(name), content);
    }
  }
  int Replace(const std::string& name, std::string_view content) {
    return TheFileSystem().ReplaceFile(Path(name), content);
  }
  std::string Content(const std::string& name) const {
    std::string content;
    EXPECT_EQ(ReadWholeFile(Path(name), &content), 0);
    return content;
  }
  std::vector<std::string> AllFiles() const { return TheFileSystem().ListFiles(root_, "", ""); }

 private:
  fakes::ScopedTempDir folder_;
  fakes::FakeFileSystem fake_;
  std::unique_ptr<Replacement<FileSystem>> replacement_;

 protected:
  const std::string root_ = folder_.path();
};

TEST_P(FileSystemTest, AFolderExistsAndAFileIsNone) {
  MakeFolder("logs");
  MakeFile("page", "x");
  EXPECT_TRUE(TheFileSystem().FolderExists(Path("logs")));
  EXPECT_FALSE(TheFileSystem().FolderExists(Path("page")));
  EXPECT_FALSE(TheFileSystem().FolderExists(Path("missing")));
  EXPECT_FALSE(TheFileSystem().FolderExists(""));
}

TEST_P(FileSystemTest, ListsFilesByBeginningAndEndInOrder) {
  MakeFolder("ex.log");
  for (const char* name : {"ex160107.log", "EX160106.LOG", "ex160108.log.gz", "u_ex160101.log",
                           "ex160105.txt", "e.log", "ex_1.log"}) {
    MakeFile(name, "");
  }
  EXPECT_EQ(TheFileSystem().ListFiles(root_, "Ex", ".Log"),
            (std::vector<std::string>{"EX160106.LOG", "ex160107.log", "ex_1.log"}));
}

TEST_P(FileSystemTest, AMissingFolderListsNothing) {
  EXPECT_TRUE(TheFileSystem().ListFiles(Path("missing"), "", "").empty());
}

TEST_P(FileSystemTest, ReadsAFileInPieces) {
  MakeFile("log", "0123456789");
  int error = -1;
  const auto file = TheFileSystem().OpenForReading(Path("log"), &error);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(error, 0);
  char buffer[4];
  std::string content;
  std::size_t got = 0;
  while (file->Read(buffer, sizeof buffer, &got) == 0 && got > 0) {
    EXPECT_LE(got, sizeof buffer);
    content.append(buffer, got);
  }
  EXPECT_EQ(content, "0123456789");
}

TEST_P(FileSystemTest, AnEmptyFileIsReadAsEmpty) {
  MakeFile("log", "");
  EXPECT_EQ(Content("log"), "");
}

TEST_P(FileSystemTest, BytesAreReadAsTheyAre) {
  const std::string bytes("a\r\n\0\xFF\x1A\n", 7);
  MakeFile("log", bytes);
  EXPECT_EQ(Content("log"), bytes);
}

TEST_P(FileSystemTest, WhatIsNoFileCannotBeOpened) {
  MakeFolder("logs");
  for (const std::string& path : {Path("missing"), Path("logs"), std::string()}) {
    int error = 0;
    EXPECT_EQ(TheFileSystem().OpenForReading(path, &error), nullptr) << path;
    EXPECT_NE(error, 0) << path;
  }
  std::string content = "old";
  EXPECT_NE(ReadWholeFile(Path("missing"), &content), 0);
  EXPECT_EQ(content, "");
}

TEST_P(FileSystemTest, OnlyAMissingFileIsNotThere) {
  MakeFolder("folder");
  int error = 0;
  TheFileSystem().OpenForReading(Path("missing"), &error);
  EXPECT_TRUE(MeansNotThere(error));
  TheFileSystem().OpenForReading(Path("folder"), &error);
  EXPECT_FALSE(MeansNotThere(error));
  EXPECT_FALSE(MeansNotThere(0));
  EXPECT_FALSE(MeansNotThere(5));
}

TEST_P(FileSystemTest, AReplacedFileIsInPlace) {
  EXPECT_EQ(Replace("Jan.htm", "first"), 0);
  EXPECT_EQ(Content("Jan.htm"), "first");
  EXPECT_EQ(Replace("Jan.htm", "2"), 0);
  EXPECT_EQ(Content("Jan.htm"), "2");
  EXPECT_EQ(AllFiles(), std::vector<std::string>{"Jan.htm"});
}

TEST_P(FileSystemTest, AFileMayBeEmpty) {
  EXPECT_EQ(Replace("empty.csv", ""), 0);
  EXPECT_EQ(Content("empty.csv"), "");
}

TEST_P(FileSystemTest, AFileInAMissingFolderCannotBeReplaced) {
  EXPECT_NE(TheFileSystem().ReplaceFile(JoinPath(Path("missing"), "Jan.htm"), "x"), 0);
}

TEST_P(FileSystemTest, LeftOversOfTheFilesNamedAreRemoved) {
  const std::vector<std::string> stay = {"Feb.htm.4711-0123456789abcdef.tmp", "Jan.htm",
                                         "Jan.htm.backup.tmp", "Jan.htm.tmp"};
  for (const std::string& name : stay) MakeFile(name, "x");
  MakeFile("Jan.htm.4711-0123456789abcdef.tmp", "half a pa");
  MakeFile("Jan.htm.4711.tmp", "half");
  MakeFile("index.htm.1-00.tmp", "");
  TheFileSystem().RemoveLeftOvers(
      root_, [](std::string_view name) { return name == "Jan.htm" || name == "index.htm"; });
  EXPECT_EQ(AllFiles(), stay);
  TheFileSystem().RemoveLeftOvers(Path("missing"), [](std::string_view) { return true; });
}

TEST_P(FileSystemTest, AFolderIsLockedByOneAtATime) {
  const auto try_lock = [this](std::chrono::milliseconds patience) {
    int error = 0;
    // In a thread of its own: a thread may take a lock that it has a second time.
    std::thread([&] { TheFileSystem().LockFolder(root_, patience, &error); }).join();
    return error;
  };
  int error = -1;
  auto lock = TheFileSystem().LockFolder(root_, std::chrono::milliseconds(0), &error);
  EXPECT_NE(lock, nullptr);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(try_lock(std::chrono::milliseconds(0)), kLockBusyError);
  EXPECT_EQ(try_lock(std::chrono::milliseconds(20)), kLockBusyError);
  EXPECT_TRUE(AllFiles().empty()) << "no file stands for the lock";
  lock.reset();
  EXPECT_EQ(try_lock(std::chrono::milliseconds(0)), 0);
}

TEST_P(FileSystemTest, AMissingFolderCannotBeLocked) {
  int error = 0;
  EXPECT_EQ(TheFileSystem().LockFolder(Path("missing"), std::chrono::milliseconds(60000), &error),
            nullptr);
  EXPECT_NE(error, 0);
  EXPECT_NE(error, kLockBusyError);
}

TEST_P(FileSystemTest, ListsTheFoldersDirectlyInAFolderInOrder) {
  for (const char* name : {"web2", "Web10", "a b", ".hidden"}) MakeFolder(name);
  MakeFolder(JoinPath("web2", "below"));
  MakeFile("page", "x");
  std::vector<std::string> names = {"old"};
  EXPECT_EQ(TheFileSystem().ListFolders(root_, &names), 0);
  EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a b", "Web10", "web2"}));
}

TEST_P(FileSystemTest, AFolderWithoutFoldersListsNone) {
  MakeFolder("empty");
  std::vector<std::string> names = {"old"};
  EXPECT_EQ(TheFileSystem().ListFolders(Path("empty"), &names), 0);
  EXPECT_TRUE(names.empty());
}

TEST_P(FileSystemTest, WhatIsNoFolderCannotBeListed) {
  MakeFile("page", "x");
  for (const std::string& path : {Path("missing"), Path("page")}) {
    std::vector<std::string> names = {"old"};
    EXPECT_NE(TheFileSystem().ListFolders(path, &names), 0) << path;
    EXPECT_TRUE(names.empty());
  }
}

TEST_P(FileSystemTest, CreatesOneFolder) {
  EXPECT_EQ(TheFileSystem().CreateFolder(Path("usage")), 0);
  EXPECT_TRUE(TheFileSystem().FolderExists(Path("usage")));
  EXPECT_EQ(Replace(JoinPath("usage", "Jan.htm"), "x"), 0);
}

TEST_P(FileSystemTest, AFolderNeedsAFreeNameInAnExistingFolder) {
  MakeFolder("usage");
  MakeFile("page", "x");
  for (const std::string& path :
       {Path("usage"), Path("page"), JoinPath(Path("missing"), "usage")}) {
    EXPECT_NE(TheFileSystem().CreateFolder(path), 0) << path;
  }
  EXPECT_FALSE(TheFileSystem().FolderExists(Path("missing")));
}

INSTANTIATE_TEST_SUITE_P(FakeAndReal, FileSystemTest, testing::Values(true, false),
                         [](const auto& suite) { return suite.param ? "Fake" : "Real"; });

TEST(JoinPathTest, JoinsThePartsAsTheyStand) {
  const std::string separator(1, kPathSeparator);
  EXPECT_EQ(JoinPath("folder", "name"), "folder" + separator + "name");
  EXPECT_EQ(JoinPath("", "name"), separator + "name");
  EXPECT_EQ(JoinPath("folder" + separator, "name"), "folder" + separator + separator + "name");
}

TEST(FileNameTest, SeparatorAndZeroFitInNoName) {
  EXPECT_FALSE(FitsInFileName('/'));
  EXPECT_FALSE(FitsInFileName('\0'));
  EXPECT_FALSE(FitsInFileName(kPathSeparator));
  for (const char c : std::string("aZ09 .-_'\xC3\xFF")) EXPECT_TRUE(FitsInFileName(c)) << c;
}

class FailingFilesTest : public testing::Test {
 protected:
  FailingFilesTest() { files_.AddFile(path_, "0123456789"); }

  const std::string path_ = JoinPath("folder", "file");
  fakes::FakeFileSystem files_;
  const Replacement<FileSystem> replacement_{files_};
};

TEST_F(FailingFilesTest, AReadErrorKeepsWhatCameBefore) {
  files_.read_failures[path_] = {5, 4};
  std::string content;
  EXPECT_EQ(ReadWholeFile(path_, &content), 5);
  EXPECT_EQ(content, "0123");
}

TEST_F(FailingFilesTest, OpeningReplacingAndLockingFailOnDemand) {
  int error = 0;
  files_.open_failures[path_] = 13;
  EXPECT_EQ(TheFileSystem().OpenForReading(path_, &error), nullptr);
  EXPECT_EQ(error, 13);
  files_.commit_failures[path_] = 17;
  EXPECT_EQ(TheFileSystem().ReplaceFile(path_, "abc"), 17);
  files_.append_failures[path_] = {28, 3};
  EXPECT_EQ(TheFileSystem().ReplaceFile(path_, "abcd"), 28);
  EXPECT_EQ(TheFileSystem().ReplaceFile(path_, "abc"), 17) << "what fits is written";
  files_.create_failures[path_] = 30;
  EXPECT_EQ(TheFileSystem().ReplaceFile(path_, "abc"), 30);
  EXPECT_EQ(files_.Content(path_), "0123456789");
  files_.lock_failures["folder"] = kLockBusyError;
  EXPECT_EQ(TheFileSystem().LockFolder("folder", std::chrono::seconds(30), &error), nullptr);
  EXPECT_EQ(error, kLockBusyError);
  EXPECT_EQ(files_.waited, std::chrono::seconds(30));
}

TEST_F(FailingFilesTest, WhatALiveProcessBuildsStays) {
  const std::string temporary = path_ + ".1-2.tmp";
  files_.AddFile(temporary, "half");
  files_.being_built.insert(temporary);
  const auto all = [](std::string_view name) { return !name.empty(); };
  TheFileSystem().RemoveLeftOvers("folder", all);
  EXPECT_TRUE(files_.Exists(temporary));
  files_.being_built.clear();
  TheFileSystem().RemoveLeftOvers("folder", all);
  EXPECT_FALSE(files_.Exists(temporary));
}

TEST_F(FailingFilesTest, ListingAndCreatingFoldersFailOnDemand) {
  std::vector<std::string> names;
  files_.list_failures["folder"] = 13;
  EXPECT_EQ(TheFileSystem().ListFolders("folder", &names), 13);
  files_.create_failures[JoinPath("folder", "new")] = 28;
  EXPECT_EQ(TheFileSystem().CreateFolder(JoinPath("folder", "new")), 28);
  EXPECT_FALSE(TheFileSystem().FolderExists(JoinPath("folder", "new")));
}

}  // namespace
}  // namespace platform
