#include "tools/random.h"

#include <gtest/gtest.h>

#include <array>

namespace sample_logs {
namespace {

// The published first outputs of splitmix64 for the seed 0.
TEST(Scramble, GivesThePublishedNumbers) {
  EXPECT_EQ(Scramble(0), 0xE220A8397B1DCDAFU);
  EXPECT_EQ(Scramble(0x9E3779B97F4A7C15), 0x6E789E6AA1B965F4U);
}

TEST(Random, SameSeedGivesTheSameNumbers) {
  Random one(7);
  Random same(7);
  Random other(8);
  int differences = 0;
  for (int i = 0; i < 100; ++i) {
    const std::uint64_t number = one.Next();
    ASSERT_EQ(number, same.Next());
    differences += number != other.Next();
  }
  EXPECT_EQ(differences, 100);
}

TEST(Random, BetweenReachesBothEnds) {
  Random random(1);
  bool first = false;
  bool last = false;
  for (int i = 0; i < 1000; ++i) {
    const std::int64_t number = random.Between(-2, 3);
    ASSERT_GE(number, -2);
    ASSERT_LE(number, 3);
    first = first || number == -2;
    last = last || number == 3;
  }
  EXPECT_TRUE(first && last);
}

TEST(Random, PercentIsMet) {
  Random random(1);
  int hits = 0;
  for (int i = 0; i < 100000; ++i) hits += random.Percent(30);
  EXPECT_NEAR(hits, 30000, 1000);
}

TEST(Zipf, RankComesInverselyToItsPlace) {
  Random random(1);
  const Zipf zipf(4);
  std::array<int, 4> counts{};
  for (int i = 0; i < 250000; ++i) ++counts.at(zipf.Draw(random));
  // The shares are 12, 6, 4 and 3 of 25.
  EXPECT_NEAR(counts[0], 120000, 2000);
  EXPECT_NEAR(counts[1], 60000, 2000);
  EXPECT_NEAR(counts[2], 40000, 2000);
  EXPECT_NEAR(counts[3], 30000, 2000);
}

}  // namespace
}  // namespace sample_logs
