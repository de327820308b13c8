#include "report/numbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Round, HalvesGoToTheEvenNumber) {
  EXPECT_EQ(numbers::Round(0.5), 0);
  EXPECT_EQ(numbers::Round(1.5), 2);
  EXPECT_EQ(numbers::Round(2.5), 2);
  EXPECT_EQ(numbers::Round(3.5), 4);
  EXPECT_EQ(numbers::Round(2.51), 3);
}

TEST(Round, NothingBelowZeroIsWrittenAsZero) {
  EXPECT_EQ(numbers::Rounded(-0.3), "0");
  EXPECT_FALSE(std::signbit(numbers::Round(-0.3)));
  EXPECT_EQ(numbers::Rounded(-1.2), "-1");
}

TEST(Plain, LargeNumbersHaveAllTheirDigits) {
  EXPECT_EQ(numbers::Plain(0), "0");
  EXPECT_EQ(numbers::Plain(16777216), "16777216");
  EXPECT_EQ(numbers::Plain(1e15), "1000000000000000");
  EXPECT_EQ(numbers::Plain(1e21), "1000000000000000000000");
}

TEST(Plain, FractionsAreShortestAndWithoutExponent) {
  EXPECT_EQ(numbers::Plain(0.1), "0.1");
  EXPECT_EQ(numbers::Plain(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(numbers::Plain(0.0000025), "0.0000025");
}

TEST(Tenths, HalvesGoAwayFromZeroByTheDigitsWritten) {
  EXPECT_EQ(numbers::Tenths(0.25), "0.3");
  EXPECT_EQ(numbers::Tenths(0.35), "0.4");  // the double lies just below 0.35
  EXPECT_EQ(numbers::Tenths(0.05), "0.1");
  EXPECT_EQ(numbers::Tenths(0.2499), "0.2");
}

TEST(Tenths, AlwaysHasOneDecimal) {
  EXPECT_EQ(numbers::Tenths(0), "0.0");
  EXPECT_EQ(numbers::Tenths(7), "7.0");
  EXPECT_EQ(numbers::Tenths(7.1), "7.1");
  EXPECT_EQ(numbers::Tenths(0.001), "0.0");
}

TEST(Tenths, CarriesThroughThePoint) {
  EXPECT_EQ(numbers::Tenths(0.95), "1.0");
  EXPECT_EQ(numbers::Tenths(9.96), "10.0");
  EXPECT_EQ(numbers::Tenths(1199.99), "1200.0");
}

TEST(Tenths, NegativeNumbers) {
  EXPECT_EQ(numbers::Tenths(-0.25), "-0.3");
  EXPECT_EQ(numbers::Tenths(-0.04), "0.0");
}

TEST(Share, IsRoundedHalfToEven) {
  EXPECT_EQ(numbers::Share(1, 8), "12");  // 12.5
  EXPECT_EQ(numbers::Share(3, 8), "38");  // 37.5
  EXPECT_EQ(numbers::Share(1, 3), "33");
  EXPECT_EQ(numbers::Share(3, 3), "100");
}

TEST(Share, OfNothingIsZero) { EXPECT_EQ(numbers::Share(0, 0), "0"); }

TEST(FullScale, StepsAreOneThreeTen) {
  EXPECT_EQ(numbers::FullScale(0), 1);
  EXPECT_EQ(numbers::FullScale(0.4), 1);
  EXPECT_EQ(numbers::FullScale(1), 1);
  EXPECT_EQ(numbers::FullScale(2), 3);
  EXPECT_EQ(numbers::FullScale(2.9), 3);
  EXPECT_EQ(numbers::FullScale(3), 10);
  EXPECT_EQ(numbers::FullScale(9), 10);
  EXPECT_EQ(numbers::FullScale(20), 30);
  EXPECT_EQ(numbers::FullScale(350), 1000);
}

// The exponent of an exact power of ten is a half, which goes to the even exponent.
TEST(FullScale, PowersOfTenRoundTheirExponentToEven) {
  EXPECT_EQ(numbers::FullScale(10), 30);
  EXPECT_EQ(numbers::FullScale(100), 100);
  EXPECT_EQ(numbers::FullScale(1000), 3000);
  EXPECT_EQ(numbers::FullScale(10000), 10000);
  EXPECT_EQ(numbers::FullScale(1e6), 1e6);
}

TEST(FullScale, IsNeverBelowTheLargestValue) {
  for (double value = 1; value < 1e12; value *= 1.37) {
    EXPECT_GE(numbers::FullScale(value), value);
    EXPECT_LT(numbers::FullScale(value), value * 10);
  }
}

TEST(BarHeight, FullScaleFillsTheCell) {
  EXPECT_EQ(numbers::BarHeight(30, 30), "300");
  EXPECT_EQ(numbers::BarHeight(0, 1), "0");
  EXPECT_EQ(numbers::BarHeight(1, 1000), "0");  // 0.3
  EXPECT_EQ(numbers::BarHeight(5, 1000), "2");  // 1.5
}

TEST(Deviation, OfTwoFourFourFourFiveFiveSevenNine) {
  EXPECT_EQ(numbers::Mean(40, 8), 5);
  EXPECT_EQ(numbers::Deviation(40, 232, 8), 2);
}

TEST(Deviation, IsZeroWithoutValues) {
  EXPECT_EQ(numbers::Mean(0, 0), 0);
  EXPECT_EQ(numbers::Deviation(0, 0, 0), 0);
}

// Sums in single precision can make the variance slightly negative.
TEST(Deviation, OfANegativeVarianceIsZero) { EXPECT_EQ(numbers::Deviation(30, 299, 3), 0); }

}  // namespace
