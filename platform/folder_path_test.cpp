#include "platform/folder_path.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/file_system.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

using List = std::vector<std::string>;

// What holds on every system, told in the system's own separators.
class FolderPathTest : public testing::Test {
 protected:
  static std::string Below(const std::string& folder, const List& names) {
    std::string path = folder;
    for (const std::string& name : names) path = FolderInside(path, name);
    return path;
  }
  // The root that the process's present folder lies under.
  const std::string here_ = NormalisedFolder("");
  const std::string root_ = here_.substr(0, RootLength(here_));
};

TEST_F(FolderPathTest, NoPathIsThePresentFolder) {
  EXPECT_EQ(here_, std::filesystem::current_path().string());
  EXPECT_EQ(NormalisedFolder("."), here_);
}

TEST_F(FolderPathTest, ARelativePathBeginsAtThePresentFolder) {
  EXPECT_EQ(NormalisedFolder("logs"), Below(here_, {"logs"}));
}

TEST_F(FolderPathTest, NothingIsDoubledAndNothingTrails) {
  const std::string path = Below(root_, {"srv", "logs"});
  const std::string separator(1, kPathSeparator);
  EXPECT_EQ(NormalisedFolder(path), path);
  EXPECT_EQ(NormalisedFolder(path + separator), path);
  EXPECT_EQ(NormalisedFolder(path + separator + "."), path);
  EXPECT_EQ(NormalisedFolder(Below(root_, {"srv", ".", "logs"})), path);
  EXPECT_EQ(NormalisedFolder(root_ + "srv" + separator + separator + "logs"), path);
}

TEST_F(FolderPathTest, ParentNamesAreResolved) {
  EXPECT_EQ(NormalisedFolder(Below(root_, {"no-such", "..", "logs"})), Below(root_, {"logs"}));
  EXPECT_EQ(NormalisedFolder(Below(root_, {"..", "..", "no-such"})), Below(root_, {"no-such"}));
  EXPECT_EQ(NormalisedFolder(Below(root_, {"..x", "y..z"})), Below(root_, {"..x", "y..z"}));
}

TEST_F(FolderPathTest, ARootKeepsItsSeparator) {
  EXPECT_EQ(NormalisedFolder(root_), root_);
  EXPECT_EQ(FolderChain(root_), List{root_});
  EXPECT_EQ(FolderName(root_), root_);
}

TEST_F(FolderPathTest, TheChainLeadsFromTheRootToTheFolder) {
  EXPECT_EQ(FolderChain(Below(root_, {"srv", "logs", "W3SVC1"})),
            (List{root_, Below(root_, {"srv"}), Below(root_, {"srv", "logs"}),
                  Below(root_, {"srv", "logs", "W3SVC1"})}));
}

TEST_F(FolderPathTest, TheNameIsTheLastPart) {
  EXPECT_EQ(FolderName(Below(root_, {"srv", "my logs"})), "my logs");
}

TEST_F(FolderPathTest, AFolderInsideARootHasOneSeparator) {
  EXPECT_EQ(FolderInside(root_, "srv"), root_ + "srv");
  EXPECT_EQ(FolderInside(root_ + "srv", "logs"), JoinPath(root_ + "srv", "logs"));
}

}  // namespace
}  // namespace platform
