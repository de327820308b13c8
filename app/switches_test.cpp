// Holds what parser, help and README say of the switches together.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/frmMain.h"
#include "app/help.h"
#include "config/text.h"

namespace {

using frmMain::Switch;

std::string ReadText(const std::string& name) {
  std::ifstream file(std::string(HITWICK_SOURCE_DIR "/") + name);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> LinesThatBeginWith(const std::string& text, const std::string& start) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(start)) lines.push_back(line);
  }
  return lines;
}

TEST(SwitchTable, NoSwitchHoldsAnother) {
  for (const Switch& one : frmMain::Switches()) {
    for (const Switch& other : frmMain::Switches()) {
      EXPECT_EQ(text::ContainsIgnoringCase(one.spelling, other.text), &one == &other)
          << one.spelling << " and " << other.text;
    }
  }
}

TEST(SwitchTable, EverySwitchIsExplainedInHalfALine) {
  EXPECT_GE(frmMain::Switches().size(), 6U);
  for (const Switch& known : frmMain::Switches()) {
    EXPECT_LE(known.spelling.size(), 12U) << known.spelling;
    EXPECT_FALSE(known.help.empty()) << known.spelling;
    EXPECT_LE(known.help.size(), 80U) << known.spelling;
  }
}

TEST(SwitchTable, HelpListsEverySwitch) {
  std::vector<std::string> expected;
  for (const Switch& known : frmMain::Switches()) {
    std::string line = "  " + std::string(known.spelling);
    line.resize(16, ' ');
    expected.push_back(line + std::string(known.help));
  }
  std::vector<std::string> listed = LinesThatBeginWith(HelpText(), "  ");
  ASSERT_EQ(listed.size(), expected.size() + 2);
  EXPECT_TRUE(listed[expected.size()].starts_with("  --help "));
  EXPECT_TRUE(listed[expected.size() + 1].starts_with("  --version "));
  listed.resize(expected.size());
  EXPECT_EQ(listed, expected);
}

TEST(SwitchTable, ReadmeListsEverySwitch) {
  std::vector<std::string> expected;
  for (const Switch& known : frmMain::Switches()) {
    expected.push_back("| `" + std::string(known.spelling) + "` | " + std::string(known.help) +
                       " |");
  }
  std::vector<std::string> listed = LinesThatBeginWith(ReadText("README.md"), "| `/");
  for (std::string& line : LinesThatBeginWith(ReadText("README.md"), "| `--")) {
    listed.push_back(std::move(line));
  }
  EXPECT_EQ(listed, expected);
}

TEST(SwitchTable, WindowsPagePointsToTheReadme) {
  EXPECT_NE(ReadText("docs/windows.md").find("../README.md#use-it"), std::string::npos);
}

}  // namespace
