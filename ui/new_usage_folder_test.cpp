#include "ui/new_usage_folder.h"

#include <gtest/gtest.h>

#include "ui/configuration.h"
#include "ui/window_fixture.h"

namespace ui {
namespace {

class NewUsageFolderTest : public WindowTest {};

TEST_F(NewUsageFolderTest, WantsAName) {
  const NewUsageFolder result = btnCreateNewUsageFolder_Click(usage_, "");
  EXPECT_FALSE(result.close);
  EXPECT_EQ(boxes_.shown, List{"Please enter a name for the new folder"});
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(NewUsageFolderTest, IsCreatedInTheFolderShown) {
  const NewUsageFolder result = btnCreateNewUsageFolder_Click(usage_, "New");
  EXPECT_TRUE(result.close);
  EXPECT_EQ(result.path, Page("New"));
  EXPECT_TRUE(files_.FolderExists(Page("New")));
  EXPECT_TRUE(log_.ContainsInformation("Hitwick : User created new usage folder: " + Page("New")));
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(NewUsageFolderTest, InARootThePathHasOneSeparator) {
  EXPECT_EQ(btnCreateNewUsageFolder_Click(root_, "New").path, root_ + "New");
}

TEST_F(NewUsageFolderTest, AFailureIsToldInTheSystemsWords) {
  files_.create_failures[Page("New")] = 5;
  const NewUsageFolder result = btnCreateNewUsageFolder_Click(usage_, "New");
  EXPECT_TRUE(result.close);
  EXPECT_EQ(result.path, "");
  EXPECT_EQ(boxes_.shown,
            List{"Failed to create '" + Page("New") + "'\n" + mod_systemInfo::GetErrorText(5)});
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(NewUsageFolderTest, ATakenNameIsAFailure) {
  files_.AddFolder(Page("New"));
  EXPECT_EQ(btnCreateNewUsageFolder_Click(usage_, "New").path, "");
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

}  // namespace
}  // namespace ui
