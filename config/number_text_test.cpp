#include "config/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace {

using text::PlainNumber;

TEST(PlainNumber, WholeNumbersHaveAllTheirDigits) {
  EXPECT_EQ(PlainNumber(0), "0");
  EXPECT_EQ(PlainNumber(7), "7");
  EXPECT_EQ(PlainNumber(-12), "-12");
  EXPECT_EQ(PlainNumber(1'000'000), "1000000");
  EXPECT_EQ(PlainNumber(1e15), "1000000000000000");
  EXPECT_EQ(PlainNumber(1e22), "10000000000000000000000");
  EXPECT_EQ(PlainNumber(9007199254740993.0), "9007199254740992");
}

TEST(PlainNumber, LargestSingleHasThirtyNineDigits) {
  EXPECT_EQ(PlainNumber(static_cast<double>(std::numeric_limits<float>::max())),
            "340282346638528859811704183484516925440");
}

TEST(PlainNumber, FractionsAreTheShortestThatReadBack) {
  EXPECT_EQ(PlainNumber(0.1), "0.1");
  EXPECT_EQ(PlainNumber(2.5), "2.5");
  EXPECT_EQ(PlainNumber(-0.25), "-0.25");
  EXPECT_EQ(PlainNumber(1.0 / 3.0), "0.3333333333333333");
  EXPECT_EQ(PlainNumber(0.1 + 0.2), "0.30000000000000004");
}

TEST(PlainNumber, NoExponentHoweverSmall) {
  EXPECT_EQ(PlainNumber(1e-7), "0.0000001");
  EXPECT_EQ(PlainNumber(1.5e-10), "0.00000000015");
}

TEST(PlainNumber, ReadsBackAsTheSameNumber) {
  std::mt19937_64 random(41);
  for (int i = 0; i < 20'000; ++i) {
    const auto value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
    if (!std::isfinite(value)) continue;
    const std::string written = PlainNumber(value);
    ASSERT_EQ(written.find_first_not_of("-.0123456789"), std::string::npos) << written;
    ASSERT_EQ(std::strtod(written.c_str(), nullptr), value) << written;
  }
}

TEST(TwoDigits, PadsOneDigitAndKeepsMore) {
  EXPECT_EQ(text::TwoDigits(0), "00");
  EXPECT_EQ(text::TwoDigits(7), "07");
  EXPECT_EQ(text::TwoDigits(31), "31");
  EXPECT_EQ(text::TwoDigits(150), "150");
}

}  // namespace
