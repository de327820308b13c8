#include "logread/field_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "config/text.h"

namespace {

using mdlW3C::Column;
using mdlW3C::Field;
using mdlW3C::RegularColumns;

bool Possible(std::initializer_list<const char*> names) {
  std::vector<Column> columns;
  for (const char* name : names) columns.push_back({mdlW3C::FieldOf(name), name});
  return RegularColumns(columns).possible();
}

TEST(RegularColumns, NeedADateBeforeTheTimeAndNoFieldTwice) {
  EXPECT_TRUE(Possible({"date", "time"}));
  EXPECT_TRUE(Possible({"x", "date", "c-ip", "x", "time", "Time"}));
  EXPECT_FALSE(Possible({}));
  EXPECT_FALSE(Possible({"date"}));
  EXPECT_FALSE(Possible({"time", "c-ip"}));
  EXPECT_FALSE(Possible({"time", "date"}));
  EXPECT_FALSE(Possible({"date", "time", "c-ip", "c-ip"}));
  EXPECT_FALSE(Possible({"date", "date", "time"}));
}

// What the general reading of numbers makes of every token that counts as plain.
TEST(PlainNumber, IsTheNumberThatTheGeneralReadingGives) {
  std::mt19937 random(1);
  for (int i = 0; i < 200'000; ++i) {
    std::string token;
    for (auto left = random() % 10; left > 0; --left) {
      token += random() % 40 == 0 ? static_cast<char>(random() % 256)
                                  : static_cast<char>('0' + random() % 10);
    }
    const std::string padded = token + "/:12 abc";
    std::int32_t value = -1;
    const bool plain =
        mdlW3C::ReadPlainNumber(std::string_view(padded).substr(0, token.size()), &value);
    const bool digits = token.find_first_not_of("0123456789") == std::string::npos;
    ASSERT_EQ(plain, (digits && token.size() <= 8) || token == "-") << token;
    if (!plain) continue;
    ASSERT_EQ(value, *text::ToInt32(token)) << token;
  }
}

TEST(PlainNumber, EmptyMarkIsZero) {
  std::int32_t value = -1;
  EXPECT_TRUE(mdlW3C::ReadPlainNumber("-", &value));
  EXPECT_EQ(value, 0);
}

TEST(PlainTime, IsTwoDigitsEach) {
  int hour = 0;
  int minute = 0;
  EXPECT_TRUE(mdlW3C::ReadPlainTime("23:59:07", &hour, &minute));
  EXPECT_EQ(hour, 23);
  EXPECT_EQ(minute, 59);
  for (const char* other : {"", "1:2:3", "12:3", "-1:30:00", "12:-1:00", "1x:30", "12:3x"}) {
    EXPECT_FALSE(mdlW3C::ReadPlainTime(other, &hour, &minute)) << other;
  }
}

}  // namespace
