#include "platform/names.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(NamesTest, LetterCaseOfAToZDoesNotCount) {
  EXPECT_TRUE(SameName("UsageDir", "usagedIR"));
  EXPECT_FALSE(SameName("UsageDir", "UsageDi"));
  EXPECT_FALSE(SameName("\xC4", "\xE4"));
  EXPECT_FALSE(SameName("[", "{"));
}

TEST(NamesTest, PrefixAndSuffixDoNotShareCharacters) {
  EXPECT_TRUE(NameFits("U_EX160106.LOG", "u_ex", ".log"));
  EXPECT_TRUE(NameFits("abbc", "ab", "bc"));
  EXPECT_FALSE(NameFits("abc", "ab", "bc"));
  EXPECT_TRUE(NameFits("anything", "", ""));
  EXPECT_FALSE(NameFits("ex1.log.gz", "ex", ".log"));
}

TEST(NamesTest, OrderIsByLowerCaseThenByBytes) {
  std::vector<std::string> names = {"b", "_", "a", "B", "A", "Z", "^"};
  SortNames(&names);
  EXPECT_EQ(names, (std::vector<std::string>{"^", "_", "A", "a", "B", "b", "Z"}));
}

}  // namespace
}  // namespace platform
