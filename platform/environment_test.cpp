#include "platform/environment.h"

#include <gtest/gtest.h>

#include <set>

namespace platform {
namespace {

TEST(EnvironmentTest, AVariableThatIsNotSetIsEmpty) {
  EXPECT_EQ(EnvironmentVariable("HITWICK_NO_SUCH_VARIABLE"), "");
  EXPECT_NE(EnvironmentVariable("PATH"), "");
}

TEST(EnvironmentTest, EveryMonthHasNamesOfItsOwn) {
  std::set<std::string> names;
  std::set<std::string> abbreviations;
  for (int month = 1; month <= 12; ++month) {
    names.insert(MonthName(month));
    abbreviations.insert(MonthAbbreviation(month));
  }
  EXPECT_EQ(names.size(), 12u);
  EXPECT_EQ(abbreviations.size(), 12u);
  EXPECT_EQ(names.count(""), 0u);
}

}  // namespace
}  // namespace platform
