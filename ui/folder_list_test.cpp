#include "ui/folder_list.h"

#include <gtest/gtest.h>

#include "ui/window_fixture.h"

namespace ui {
namespace {

using List = std::vector<std::string>;

class FolderListTest : public WindowTest {
 protected:
  FolderListTest() {
    for (const List& names : {List{"srv"}, List{"srv", "web2"}, List{"srv", "Web1"},
                              List{"srv", "web2", "old"}, List{"srv", "locked"}}) {
      files_.AddFolder(Path(names));
    }
    files_.list_failures[Path({"srv", "locked"})] = 13;
  }

  std::string Path(const List& names) const {
    std::string path = root_;
    for (const std::string& name : names) path = platform::FolderInside(path, name);
    return path;
  }
  List Shown() const {
    List lines;
    for (const FolderList::Entry& entry : list_.entries()) {
      lines.push_back(std::string(static_cast<std::size_t>(entry.depth), '-') + entry.name);
    }
    return lines;
  }

  FolderList list_;
};

TEST_F(FolderListTest, ShowsTheChainAndThenTheSubFolders) {
  list_.Show(Path({"srv"}));
  EXPECT_EQ(Shown(), (List{root_, "-srv", "--locked", "--Web1", "--web2"}));
  EXPECT_EQ(list_.present(), 1U);
  EXPECT_EQ(list_.entries()[4].path, Path({"srv", "web2"}));
}

TEST_F(FolderListTest, TakesPathsNormalised) {
  list_.Show(Path({"srv", "."}) + platform::kPathSeparator);
  EXPECT_EQ(list_.path(), Path({"srv"}));
}

TEST_F(FolderListTest, BeginsInTheProcessesOwnFolder) {
  EXPECT_EQ(FolderList().path(), platform::NormalisedFolder(""));
}

TEST_F(FolderListTest, GoesIntoASubFolder) {
  list_.Show(Path({"srv"}));
  EXPECT_TRUE(list_.GoIn(4));
  EXPECT_EQ(list_.path(), Path({"srv", "web2"}));
  EXPECT_EQ(Shown(), (List{root_, "-srv", "--web2", "---old"}));
}

TEST_F(FolderListTest, GoesIntoAFolderOfTheChain) {
  list_.Show(Path({"srv", "web2", "old"}));
  EXPECT_TRUE(list_.GoIn(1));
  EXPECT_EQ(list_.path(), Path({"srv"}));
}

TEST_F(FolderListTest, StaysPutWhereAFolderCannotBeRead) {
  list_.Show(Path({"srv"}));
  const List before = Shown();
  EXPECT_FALSE(list_.GoIn(2));
  EXPECT_EQ(list_.path(), Path({"srv"}));
  EXPECT_EQ(Shown(), before);
}

TEST_F(FolderListTest, StaysPutWhereThereIsNoLine) {
  list_.Show(Path({"srv"}));
  EXPECT_FALSE(list_.GoIn(5));
  EXPECT_EQ(list_.path(), Path({"srv"}));
}

TEST_F(FolderListTest, AFolderThatHasGoneSinceIsNotEntered) {
  list_.Show(Path({"srv"}));
  files_.folders.erase(Path({"srv", "web2"}));
  EXPECT_FALSE(list_.GoIn(4));
}

TEST_F(FolderListTest, GoesUpToTheRootAndNoFurther) {
  list_.Show(Path({"srv", "web2"}));
  EXPECT_TRUE(list_.GoUp());
  EXPECT_EQ(list_.path(), Path({"srv"}));
  EXPECT_TRUE(list_.GoUp());
  EXPECT_EQ(list_.path(), root_);
  EXPECT_FALSE(list_.GoUp());
  EXPECT_EQ(list_.path(), root_);
}

TEST_F(FolderListTest, GoesUpPastFoldersThatCannotBeRead) {
  files_.AddFolder(Path({"srv", "locked", "in"}));
  list_.Show(Path({"srv", "locked", "in"}));
  EXPECT_TRUE(list_.GoUp());
  EXPECT_EQ(list_.path(), Path({"srv"}));
}

TEST_F(FolderListTest, AMissingFolderIsShownWithItsChain) {
  list_.Show(Path({"srv", "gone", "away"}));
  EXPECT_EQ(list_.path(), Path({"srv", "gone", "away"}));
  EXPECT_EQ(Shown(), (List{root_, "-srv", "--gone", "---away"}));
  EXPECT_TRUE(list_.GoUp());
  EXPECT_EQ(list_.path(), Path({"srv"}));
}

TEST_F(FolderListTest, ARefreshShowsWhatIsNew) {
  list_.Show(Path({"srv", "web2"}));
  files_.AddFolder(Path({"srv", "web2", "new"}));
  list_.Refresh();
  EXPECT_EQ(Shown(), (List{root_, "-srv", "--web2", "---new", "---old"}));
}

TEST(DrivesTest, AFolderIsOnTheDriveItsPathBeginsWith) {
  const List drives = {"C:\\", "D:\\"};
  EXPECT_EQ(DriveOf("D:\\logs", drives), 1);
  EXPECT_EQ(DriveOf("d:\\", drives), 1);
  EXPECT_EQ(DriveOf("\\\\server\\share", drives), -1);
  EXPECT_EQ(DriveOf("/srv", {}), -1);
}

TEST(DrivesTest, AreThoseOfTheSystem) { EXPECT_EQ(Drives(), platform::DriveRoots()); }

}  // namespace
}  // namespace ui
