#include "ui/type_ahead.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

const std::vector<std::string> kMonths = {"January", "February", "March", "April", "May", "June"};

TEST(TypeAheadTest, FindsTheLineThatBeginsSo) {
  TypeAhead typed;
  EXPECT_EQ(typed.Type("m", 0, kMonths, 0), 2u);
  EXPECT_EQ(typed.Type("a", 100, kMonths, 2), 2u);
  EXPECT_EQ(typed.Type("Y", 200, kMonths, 2), 4u);
}

TEST(TypeAheadTest, TheSameCharacterGoesOnToTheNextLine) {
  TypeAhead typed;
  EXPECT_EQ(typed.Type("j", 0, kMonths, 0), 5u);
  EXPECT_EQ(typed.Type("j", 100, kMonths, 5), 0u);
}

TEST(TypeAheadTest, APauseBeginsAnew) {
  TypeAhead typed;
  EXPECT_EQ(typed.Type("m", 0, kMonths, 0), 2u);
  EXPECT_TRUE(typed.typing(999));
  EXPECT_FALSE(typed.typing(1000));
  EXPECT_EQ(typed.Type("a", 1000, kMonths, 2), 3u);
}

TEST(TypeAheadTest, IndentationDoesNotCount) {
  TypeAhead typed;
  EXPECT_EQ(typed.Type("b", 0, {"/", "    alpha", "        Beta"}, 0), 2u);
}

TEST(TypeAheadTest, NothingFits) {
  TypeAhead typed;
  EXPECT_EQ(typed.Type("x", 0, kMonths, 0), std::nullopt);
  EXPECT_EQ(typed.Type("x", 0, {}, 0), std::nullopt);
}

}  // namespace
}  // namespace ui
