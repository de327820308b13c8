#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <thread>

#include "platform/file_system.h"
#include "platform/utf16_windows.h"
#include "tests/fakes/temp_dir.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void Replace(const std::string& path, std::string_view content) {
  ASSERT_EQ(platform::TheFileSystem().ReplaceFile(path, content), 0);
}

bool IsAny(std::string_view name) { return !name.empty(); }

std::string Content(const std::string& path) {
  std::string content;
  EXPECT_EQ(platform::ReadWholeFile(path, &content), 0);
  return content;
}

TEST(WindowsFiles, NamesOutsideAsciiAreUtf8) {
  const fakes::ScopedTempDir dir;
  const std::string name = "\xD0\xBB\xD0\xBE\xD0\xB3 \xE6\x97\xA5.htm";
  const std::string path = platform::JoinPath(dir.path(), name);
  Replace(path, "page");
  EXPECT_EQ(Content(path), "page");
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "", ".htm"), ElementsAre(name));
  DeleteFileW(platform::ToUtf16(path).c_str());
}

TEST(WindowsFiles, NamesHoldNoCharacterThatTheSystemRefuses) {
  for (const char c : std::string("<>:\"/\\|?*\x1F\x01")) {
    EXPECT_FALSE(platform::FitsInFileName(c)) << c;
  }
}

TEST(WindowsFiles, PathsMayBeLongerThan260Characters) {
  const fakes::ScopedTempDir dir;
  std::wstring folder = L"\\\\?\\" + platform::ToUtf16(dir.path());
  std::vector<std::wstring> made;
  for (int i = 0; i < 5; ++i) {
    folder += L"\\" + std::wstring(100, L'f');
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    made.push_back(folder);
  }
  // As a user writes it: without the prefix, and with either separator.
  std::string plain = platform::ToUtf8(folder).substr(4);
  std::replace(plain.begin(), plain.end(), '\\', '/');
  const std::string path = platform::JoinPath(plain, "ex160106.log");
  EXPECT_TRUE(platform::TheFileSystem().FolderExists(plain));
  Replace(path, "first");
  Replace(path, "second");
  EXPECT_EQ(Content(path), "second");
  EXPECT_THAT(platform::TheFileSystem().ListFiles(plain, "ex", ".log"),
              ElementsAre("ex160106.log"));
  DeleteFileW((folder + L"\\ex160106.log").c_str());
  for (auto it = made.rbegin(); it != made.rend(); ++it) RemoveDirectoryW(it->c_str());
}

TEST(WindowsFiles, HiddenAndSystemFilesAreListed) {
  const fakes::ScopedTempDir dir;
  fakes::WriteFile(dir / "ex160106.log", "x");
  ASSERT_TRUE(SetFileAttributesA((dir / "ex160106.log").c_str(),
                                 FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "ex", ".log"),
              ElementsAre("ex160106.log"));
}

TEST(WindowsFiles, WriterMayGoOnWhileALogIsRead) {
  const fakes::ScopedTempDir dir;
  const std::string path = dir / "ex160106.log";
  const HANDLE writer =
      CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
  ASSERT_NE(writer, INVALID_HANDLE_VALUE);
  DWORD written = 0;
  ASSERT_TRUE(WriteFile(writer, "line\n", 5, &written, nullptr));
  EXPECT_EQ(Content(path), "line\n");
  CloseHandle(writer);
}

TEST(WindowsFiles, FoldersAndDevicesAreNotReadable) {
  const fakes::ScopedTempDir dir;
  int error = 0;
  EXPECT_EQ(platform::TheFileSystem().OpenForReading(dir.path(), &error), nullptr);
  EXPECT_NE(error, 0);
  error = 0;
  EXPECT_EQ(platform::TheFileSystem().OpenForReading("NUL", &error), nullptr);
  EXPECT_NE(error, 0);
}

TEST(WindowsFiles, ReplacementKeepsTheHiddenMark) {
  const fakes::ScopedTempDir dir;
  const std::string path = dir / "History.txt";
  fakes::WriteFile(path, "old");
  ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
  Replace(path, "new");
  EXPECT_EQ(Content(path), "new");
  EXPECT_NE(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST(WindowsFiles, OldFileStandsWhenItCannotBeReplaced) {
  const fakes::ScopedTempDir dir;
  const std::string path = dir / "History.txt";
  fakes::WriteFile(path, "old");
  const HANDLE reader =
      CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  EXPECT_NE(platform::TheFileSystem().ReplaceFile(path, "new"), 0);
  CloseHandle(reader);
  EXPECT_EQ(Content(path), "old");
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "", ".tmp"), IsEmpty());
}

TEST(WindowsFiles, FileThatMayNotBeReadNowIsThere) {
  const fakes::ScopedTempDir dir;
  const std::string path = dir / "History.txt";
  fakes::WriteFile(path, "old");
  const HANDLE writer =
      CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  int error = 0;
  EXPECT_EQ(platform::TheFileSystem().OpenForReading(path, &error), nullptr);
  EXPECT_EQ(error, ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(platform::MeansNotThere(error));
  CloseHandle(writer);
  platform::TheFileSystem().OpenForReading(dir / "no folder\\History.txt", &error);
  EXPECT_TRUE(platform::MeansNotThere(error));
}

TEST(WindowsFiles, LeftOverIsRemovedOnceItsProcessHasClosedIt) {
  const fakes::ScopedTempDir dir;
  const std::string path = dir / "Jan.htm.4711-0123456789abcdef.tmp";
  const HANDLE builder =
      CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                  CREATE_NEW, 0, nullptr);
  ASSERT_NE(builder, INVALID_HANDLE_VALUE);
  platform::TheFileSystem().RemoveLeftOvers(dir.path(), IsAny);
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "", ".tmp").size(), 1u);
  CloseHandle(builder);
  platform::TheFileSystem().RemoveLeftOvers(dir.path(), IsAny);
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "", ".tmp"), IsEmpty());
}

TEST(WindowsFiles, LockIsTheSameForEverySpellingOfAFolder) {
  const fakes::ScopedTempDir dir;
  int error = 0;
  const auto lock =
      platform::TheFileSystem().LockFolder(dir.path(), std::chrono::milliseconds(0), &error);
  ASSERT_NE(lock, nullptr) << error;
  std::string upper = dir.path();
  std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
  std::string slashes = dir.path() + "\\.\\";
  std::replace(slashes.begin(), slashes.end(), '\\', '/');
  for (const std::string& spelling : {upper, slashes}) {
    std::thread([&] {
      EXPECT_EQ(
          platform::TheFileSystem().LockFolder(spelling, std::chrono::milliseconds(0), &error),
          nullptr);
    }).join();
    EXPECT_EQ(error, platform::kLockBusyError) << spelling;
  }
}

}  // namespace
