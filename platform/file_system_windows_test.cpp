#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/file_system.h"
#include "platform/utf16_windows.h"
#include "tests/fakes/temp_dir.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void Replace(const std::string& path, std::string_view content) {
  int error = -1;
  auto file = platform::TheFileSystem().CreateOutput(path, &error);
  ASSERT_NE(file, nullptr) << "error " << error;
  ASSERT_EQ(file->Append(content), 0);
  ASSERT_EQ(file->Commit(), 0);
}

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
  int error = 0;
  auto file = platform::TheFileSystem().CreateOutput(path, &error);
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(file->Append("new"), 0);
  EXPECT_NE(file->Commit(), 0);
  file.reset();
  CloseHandle(reader);
  EXPECT_EQ(Content(path), "old");
  EXPECT_THAT(platform::TheFileSystem().ListFiles(dir.path(), "~", ""), IsEmpty());
}

}  // namespace
