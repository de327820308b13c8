#include <gtest/gtest.h>

#include <filesystem>

#include "platform/folder_path.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

TEST(LinuxFolderPathTest, ThereAreNoDrives) { EXPECT_TRUE(DriveRoots().empty()); }

TEST(LinuxFolderPathTest, TwoSlashesAtTheStartAreOne) {
  EXPECT_EQ(NormalisedFolder("//srv"), "/srv");
  EXPECT_EQ(NormalisedFolder("///"), "/");
}

TEST(LinuxFolderPathTest, ParentOfALinkIsTheParentOfWhatItPointsTo) {
  const fakes::ScopedTempDir dir;
  const std::string real = std::filesystem::canonical(dir.path()).string();
  std::filesystem::create_directories(dir / "disk/site/logs");
  std::filesystem::create_directory_symlink(dir / "disk/site", dir / "link");
  EXPECT_EQ(NormalisedFolder(dir / "link/.."), real + "/disk");
  EXPECT_EQ(NormalisedFolder(dir / "link/logs"), dir / "link/logs") << "other links stay";
}

TEST(LinuxFolderPathTest, ABackslashIsALetterLikeAnyOther) {
  EXPECT_EQ(NormalisedFolder("/srv/a\\b"), "/srv/a\\b");
  EXPECT_EQ(FolderName("/srv/a\\b"), "a\\b");
}

}  // namespace
}  // namespace platform
