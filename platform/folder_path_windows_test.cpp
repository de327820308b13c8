#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/folder_path.h"

namespace platform {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

TEST(WindowsFolderPathTest, TheSystemDriveIsListed) { EXPECT_THAT(DriveRoots(), Contains("C:\\")); }

TEST(WindowsFolderPathTest, SlashesBecomeBackslashes) {
  EXPECT_EQ(NormalisedFolder("C:/inetpub/logs/"), "C:\\inetpub\\logs");
  EXPECT_EQ(NormalisedFolder("C:/"), "C:\\");
}

TEST(WindowsFolderPathTest, AShareIsARoot) {
  EXPECT_EQ(NormalisedFolder("\\\\server\\share\\"), "\\\\server\\share");
  EXPECT_EQ(NormalisedFolder("\\\\server\\share\\logs\\"), "\\\\server\\share\\logs");
  EXPECT_THAT(
      FolderChain("\\\\server\\share\\logs\\a"),
      ElementsAre("\\\\server\\share", "\\\\server\\share\\logs", "\\\\server\\share\\logs\\a"));
  EXPECT_THAT(FolderChain("\\\\server\\share"), ElementsAre("\\\\server\\share"));
  EXPECT_EQ(FolderInside("\\\\server\\share", "logs"), "\\\\server\\share\\logs");
}

TEST(WindowsFolderPathTest, TheChainBeginsWithTheDrive) {
  EXPECT_THAT(FolderChain("C:\\inetpub\\logs"),
              ElementsAre("C:\\", "C:\\inetpub", "C:\\inetpub\\logs"));
}

}  // namespace
}  // namespace platform
