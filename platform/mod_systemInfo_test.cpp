#include "platform/mod_systemInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file_system.h"
#include "platform/service.h"
#include "platform/shell.h"
#include "tests/fakes/fake_shell.h"
#include "tests/fakes/recording_message_boxes.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A run on a fake desktop; boxes allowed unless the test says otherwise.
class OpeningFiles : public ::testing::Test {
 protected:
  OpeningFiles() { mod_systemInfo::AllowBoxes(true); }
  ~OpeningFiles() override { mod_systemInfo::AllowBoxes(false); }

  fakes::FakeShell shell_;
  fakes::RecordingMessageBoxes boxes_;
  platform::Replacement<platform::Shell> use_shell_{shell_};
  platform::Replacement<platform::MessageBoxes> use_boxes_{boxes_};
};

TEST_F(OpeningFiles, HelpIsTheHelpPageOfTheProgram) {
  mod_systemInfo::OpenHelp();
  EXPECT_THAT(shell_.asked, ElementsAre("help-folder/index.htm"));
  EXPECT_THAT(boxes_.shown, IsEmpty());
}

TEST_F(OpeningFiles, MissingHelpIsToldWithItsPath) {
  shell_.opens = false;
  mod_systemInfo::OpenHelp();
  EXPECT_THAT(boxes_.shown, ElementsAre("Cannot locate help file 'help-folder/index.htm'"));
}

TEST_F(OpeningFiles, FileIsOpenedByThePathGiven) {
  mod_systemInfo::OpenFile("some folder/Jan.htm");
  EXPECT_THAT(shell_.asked, ElementsAre("some folder/Jan.htm"));
  EXPECT_THAT(boxes_.shown, IsEmpty());
}

TEST_F(OpeningFiles, MissingFileIsToldWithItsPath) {
  shell_.opens = false;
  mod_systemInfo::OpenFile("some folder/Jan.htm");
  EXPECT_THAT(boxes_.shown, ElementsAre("Cannot locate file 'some folder/Jan.htm'"));
}

TEST_F(OpeningFiles, NothingIsToldInBatchMode) {
  mod_systemInfo::AllowBoxes(false);
  shell_.opens = false;
  mod_systemInfo::OpenHelp();
  mod_systemInfo::OpenFile("Jan.htm");
  EXPECT_EQ(shell_.asked.size(), 2u);
  EXPECT_THAT(boxes_.shown, IsEmpty());
}

TEST(ProgramFolder, HoldsTheRunningTestProgram) {
  const std::string folder = platform::TheShell().ProgramFolder();
  EXPECT_TRUE(platform::TheFileSystem().FolderExists(folder));
  EXPECT_THAT(platform::TheFileSystem().ListFiles(folder, "platform_tests", ""),
              ::testing::Contains(::testing::StartsWith("platform_tests")));
}

TEST(ProgramFolder, HoldsTheProgramByItsName) {
  EXPECT_THAT(platform::TheShell().ProgramName(), ::testing::StartsWith("platform_tests"));
}

TEST(HelpPage, LiesBesideTheProgramUnlessItIsFoundElsewhere) {
  EXPECT_EQ(platform::TheShell().HelpPage(),
            platform::JoinPath(platform::TheShell().ProgramFolder(), "index.htm"));
}

TEST(ErrorText, IsASentenceWithoutALineBreak) {
  // Access denied on Windows, an input/output error elsewhere: both have a text.
  const std::string text = mod_systemInfo::GetErrorText(5);
  ASSERT_FALSE(text.empty());
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST(SystemVersion, IsThatOfASystemSinceVista) {
  EXPECT_GE(mod_systemInfo::GetOSMajorVersion(), 6);
}

}  // namespace
