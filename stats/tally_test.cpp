#include "stats/tally.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/service.h"
#include "stats/tally_keys.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/reference/literal_tally.h"

namespace {

using mdlMonth::SortTallyByMetric;
using mdlMonth::TallyAdd;
using mdlMonth::TallyCount;
using mdlMonth::TallyEntry;
using mdlMonth::TallyTable;
using stats::Keys;

constexpr float kMaxFloat = std::numeric_limits<float>::max();

std::vector<float> Metrics(TallyTable& table) {
  std::vector<float> metrics;
  for (std::int32_t rank = 1; rank <= TallyCount(table); ++rank) {
    metrics.push_back(table.At(rank).Metric);
  }
  return metrics;
}

void AddAll(TallyTable& table, std::string_view one_letter_keys) {
  for (std::size_t i = 0; i < one_letter_keys.size(); ++i) {
    TallyAdd(one_letter_keys.substr(i, 1), table, 1);
  }
}

void AddNumberedKeys(TallyTable& table, int first, int last) {
  for (int i = first; i <= last; ++i) TallyAdd("key" + std::to_string(i), table, 1);
}

using KeyList = std::vector<std::string>;
using MetricList = std::vector<float>;

TEST(TallyAdd, FreshTableIsEmpty) {
  TallyTable table;
  EXPECT_EQ(TallyCount(table), 0);
  EXPECT_FALSE(table.Contains("a"));
}

TEST(TallyAdd, FirstAdditionStoresKeyCountAndValue) {
  TallyTable table;
  TallyAdd("a", table, 12.5F);
  ASSERT_EQ(TallyCount(table), 1);
  EXPECT_EQ(table.At(1).Key, "a");
  EXPECT_EQ(table.At(1).Count, 1);
  EXPECT_EQ(table.At(1).Metric, 12.5F);
}

TEST(TallyAdd, LetterCaseDistinguishesKeys) {
  TallyTable table;
  TallyAdd("a", table, 1);
  TallyAdd("A", table, 2);
  EXPECT_EQ(Keys(table), (KeyList{"a", "A"}));
  TallyAdd("A", table, 2);
  EXPECT_EQ(Keys(table), (KeyList{"A", "a"}));
}

TEST(TallyAdd, EmptyKeyIsAKeyLikeAnyOther) {
  TallyTable table;
  TallyAdd("", table, 1);
  TallyAdd("", table, 1);
  ASSERT_EQ(TallyCount(table), 1);
  EXPECT_EQ(table.At(1).Key, "");
  EXPECT_EQ(table.At(1).Count, 2);
}

TEST(TallyAdd, KeysAreBytesAndMayHoldZeros) {
  const std::string with_zero("a\0b", 3);
  const std::string with_other_tail("a\0c", 3);
  TallyTable table;
  TallyAdd(with_zero, table, 1);
  TallyAdd(with_other_tail, table, 1);
  TallyAdd("a", table, 1);
  TallyAdd("\xff\xfe", table, 1);
  ASSERT_EQ(TallyCount(table), 4);
  EXPECT_EQ(table.At(1).Key, with_zero);
  EXPECT_EQ(table.At(2).Key, with_other_tail);
  EXPECT_EQ(table.At(4).Key, "\xff\xfe");
}

TEST(TallyAdd, KeyIsCopiedFromTheCallersBuffer) {
  TallyTable table;
  std::string buffer = "/first";
  TallyAdd(buffer, table, 1);
  buffer = "/other";
  TallyAdd(buffer, table, 1);
  EXPECT_EQ(Keys(table), (KeyList{"/first", "/other"}));
}

TEST(TallyAdd, VeryLongKeysAreKeptWhole) {
  TallyTable table;
  const std::string longest(3'000'000, 'x');
  const std::string one_more = longest + "y";
  TallyAdd("short", table, 1);
  TallyAdd(longest, table, 1);
  TallyAdd(one_more, table, 1);
  TallyAdd("last", table, 1);
  ASSERT_EQ(TallyCount(table), 4);
  EXPECT_TRUE(table.At(1).Key == "short");
  EXPECT_TRUE(table.At(2).Key == longest);
  EXPECT_TRUE(table.At(3).Key == one_more);
  EXPECT_TRUE(table.At(4).Key == "last");
}

TEST(TallyAdd, HigherCountComesFirst) {
  TallyTable table;
  AddAll(table, "xyy");
  EXPECT_EQ(Keys(table), (KeyList{"y", "x"}));
}

TEST(TallyAdd, EqualCountsKeepFirstAddedOrder) {
  TallyTable table;
  AddAll(table, "xyxy");
  EXPECT_EQ(Keys(table), (KeyList{"x", "y"}));
}

TEST(TallyAdd, KeyThatReachedTheCountFirstStandsFirst) {
  TallyTable table;
  AddAll(table, "xyyx");
  EXPECT_EQ(Keys(table), (KeyList{"y", "x"}));
}

TEST(TallyAdd, KeyOvertakesAllLowerCountsAtOnce) {
  TallyTable table;
  AddAll(table, "abcdd");
  EXPECT_EQ(Keys(table), (KeyList{"d", "a", "b", "c"}));
  AddAll(table, "cb");
  EXPECT_EQ(Keys(table), (KeyList{"d", "c", "b", "a"}));
}

TEST(TallyAdd, ReadingRanksInBetweenChangesNothing) {
  TallyTable table;
  AddAll(table, "abc");
  EXPECT_EQ(table.At(1).Key, "a");
  AddAll(table, "c");
  EXPECT_EQ(table.At(1).Key, "c");
  EXPECT_EQ(table.At(3).Key, "b");
  AddAll(table, "bbd");
  EXPECT_EQ(Keys(table), (KeyList{"b", "c", "a", "d"}));
}

// The real table takes what memory it needs; the growth that its model describes is the
// reference's.
TEST(LiteralTally, CapacityGrowsByTwiceTheNeededSize) {
  reference::TallyTable table;
  std::vector<std::int32_t> after;
  int added = 0;
  for (const int distinct : {1, 2, 4, 5, 10, 11, 22, 23, 46, 47}) {
    for (; added < distinct; ++added) TallyAdd("key" + std::to_string(added), table, 1, false);
    after.push_back(table.UpperIndex());
  }
  EXPECT_EQ(after, (std::vector<std::int32_t>{1, 4, 4, 10, 10, 22, 22, 46, 46, 94}));
}

TEST(TallyAdd, SummedMetricsAreSinglePrecision) {
  TallyTable table;
  TallyAdd("a", table, 16777216.0F);
  TallyAdd("a", table, 1.0F);
  EXPECT_EQ(table.At(1).Metric, 16777216.0F);
  EXPECT_EQ(table.At(1).Count, 2);
}

TEST(TallyAdd, AveragingKeepsTheRunningMean) {
  TallyTable table;
  for (const float value : {100.0F, 200.0F, 600.0F}) TallyAdd("/u", table, value, true);
  EXPECT_EQ(table.At(1).Count, 3);
  EXPECT_EQ(table.At(1).Metric, 300.0F);
}

TEST(TallyAdd, AveragingStoresTheFirstValueAsItIs) {
  TallyTable table;
  TallyAdd("/u", table, 0.1F, true);
  EXPECT_EQ(table.At(1).Metric, 0.1F);
}

TEST(TallyAdd, MeanIsWorkedOutInDoubleAndStoredInSingle) {
  TallyTable table;
  for (const float value : {16777215.0F, 16777213.0F, 1.0F}) TallyAdd("/u", table, value, true);
  const float mean_of_two = 16777214.0F;
  const auto expected = static_cast<float>((2.0 * mean_of_two + 1.0) / 3.0);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(table.At(1).Metric),
            std::bit_cast<std::uint32_t>(expected));
}

TEST(TallyAdd, MeanOfHugeValuesDoesNotOverflow) {
  fakes::RecordingEventLog log;
  platform::Replacement<platform::EventLog> replacement(log);
  TallyTable table;
  for (int i = 0; i < 3; ++i) TallyAdd("/u", table, kMaxFloat, true);
  EXPECT_EQ(table.At(1).Metric, kMaxFloat);
  EXPECT_TRUE(log.entries.empty());
}

TEST(TallyAdd, MetricOverflowIsReportedAndEndsTheCall) {
  fakes::RecordingEventLog log;
  platform::Replacement<platform::EventLog> replacement(log);
  TallyTable table;
  TallyAdd("first", table, 1);
  TallyAdd("/big it's", table, kMaxFloat);
  TallyAdd("/big it's", table, kMaxFloat);
  ASSERT_EQ(log.entries.size(), 1U);
  EXPECT_EQ(log.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log.entries[0].text,
            "Hitwick : Error summing string '/big it's' "
            "metric=340282346638528859811704183484516925440. Error is :  Overflow");
  EXPECT_EQ(Keys(table), (KeyList{"first", "/big it's"}));
  EXPECT_EQ(table.At(2).Count, 2);
  EXPECT_EQ(table.At(2).Metric, kMaxFloat);
}

TEST(TallyAdd, OverflownEntryGoesOnCountingAndMovesAtItsNextGoodAddition) {
  fakes::RecordingEventLog log;
  platform::Replacement<platform::EventLog> replacement(log);
  TallyTable table;
  TallyAdd("first", table, 1);
  TallyAdd("big", table, kMaxFloat);
  TallyAdd("big", table, kMaxFloat);
  TallyAdd("big", table, 0);
  EXPECT_EQ(Keys(table), (KeyList{"big", "first"}));
  EXPECT_EQ(table.At(1).Count, 3);
  EXPECT_EQ(log.entries.size(), 1U);
}

TEST(TallyTable, FindGivesCountAndMetricOfExactlyThatKey) {
  TallyTable table;
  TallyAdd("a", table, 5);
  TallyAdd("a", table, 7);
  TallyAdd("b", table, 1);
  TallyEntry entry;
  ASSERT_TRUE(table.Find("a", &entry));
  EXPECT_EQ(entry.Key, "a");
  EXPECT_EQ(entry.Count, 2);
  EXPECT_EQ(entry.Metric, 12.0F);
  EXPECT_FALSE(table.Find("A", &entry));
  EXPECT_FALSE(table.Find("", &entry));
  EXPECT_TRUE(table.Contains("b"));
  EXPECT_FALSE(table.Contains("B"));
}

TEST(TallyTable, ClearForgetsEntries) {
  TallyTable table;
  AddNumberedKeys(table, 1, 11);
  table.Clear();
  EXPECT_EQ(TallyCount(table), 0);
  EXPECT_FALSE(table.Contains("key1"));
}

TEST(TallyTable, OrderOutlastsItsNumbers) {
  TallyTable table(50);
  reference::TallyTable literal;
  std::mt19937 random(5);
  for (int i = 0; i < 2000; ++i) {
    const std::string key = "key" + std::to_string(random() % 30);
    TallyAdd(key, table, 1);
    TallyAdd(key, literal, 1, false);
    ASSERT_EQ(table.Count(), literal.Count());
    for (std::int32_t rank = 1; rank <= literal.Count(); ++rank) {
      ASSERT_EQ(table.At(rank).Key, literal.entries[static_cast<std::size_t>(rank)].Key) << i;
    }
  }
}

TEST(TallyTable, ClearedTableCountsFromOneAgain) {
  TallyTable table;
  AddAll(table, "aab");
  table.Clear();
  AddAll(table, "ba");
  EXPECT_EQ(Keys(table), (KeyList{"b", "a"}));
  EXPECT_EQ(table.At(2).Count, 1);
  EXPECT_EQ(table.At(2).Metric, 1.0F);
}

TEST(TallyTable, ManyDistinctKeysDoNotSlowItDown) {
  TallyTable table;
  constexpr int kKeys = 300'000;
  AddNumberedKeys(table, 1, kKeys);
  AddNumberedKeys(table, kKeys, kKeys);
  EXPECT_EQ(TallyCount(table), kKeys);
  EXPECT_EQ(table.At(1).Key, "key" + std::to_string(kKeys));
  EXPECT_EQ(table.At(2).Key, "key1");
  EXPECT_EQ(table.At(kKeys).Key, "key" + std::to_string(kKeys - 1));
}

TEST(SortTallyByMetric, EqualMetricsKeepTheirOrder) {
  TallyTable table;
  TallyAdd("five", table, 5);
  TallyAdd("nine1", table, 9);
  TallyAdd("nine2", table, 9);
  TallyAdd("one", table, 1);
  SortTallyByMetric(table);
  EXPECT_EQ(Metrics(table), (MetricList{9, 9, 5, 1}));
  EXPECT_EQ(Keys(table), (KeyList{"nine1", "nine2", "five", "one"}));
}

TEST(SortTallyByMetric, TiesFollowTheOrderByCount) {
  TallyTable table;
  TallyAdd("once", table, 10);
  TallyAdd("twice", table, 4);
  TallyAdd("twice", table, 6);
  SortTallyByMetric(table);
  EXPECT_EQ(Keys(table), (KeyList{"twice", "once"}));
}

TEST(SortTallyByMetric, EmptyAndSingleEntryTables) {
  TallyTable table;
  SortTallyByMetric(table);
  EXPECT_EQ(TallyCount(table), 0);
  TallyAdd("a", table, 1);
  SortTallyByMetric(table);
  EXPECT_EQ(Keys(table), (KeyList{"a"}));
}

TEST(SortTallyByMetric, OrderStaysWhenNothingIsAdded) {
  TallyTable table;
  TallyAdd("often", table, 1);
  TallyAdd("often", table, 1);
  TallyAdd("heavy", table, 100);
  SortTallyByMetric(table);
  EXPECT_EQ(Keys(table), (KeyList{"heavy", "often"}));
  EXPECT_EQ(Keys(table), (KeyList{"heavy", "often"}));
  SortTallyByMetric(table);
  EXPECT_EQ(Keys(table), (KeyList{"heavy", "often"}));
}

TEST(SortTallyByMetric, NewKeyIsAppendedAfterTheRankedOnes) {
  TallyTable table;
  TallyAdd("often", table, 1);
  TallyAdd("often", table, 1);
  TallyAdd("heavy", table, 100);
  SortTallyByMetric(table);
  TallyAdd("new", table, 1000);
  EXPECT_EQ(Keys(table), (KeyList{"heavy", "often", "new"}));
}

TEST(SortTallyByMetric, AdditionAfterwardsMovesOnlyPastLowerCounts) {
  TallyTable table;
  TallyAdd("light", table, 1);
  TallyAdd("often", table, 1);
  TallyAdd("often", table, 1);
  TallyAdd("often", table, 1);
  TallyAdd("heavy", table, 100);
  SortTallyByMetric(table);
  ASSERT_EQ(Keys(table), (KeyList{"heavy", "often", "light"}));
  TallyAdd("light", table, 1);
  EXPECT_EQ(Keys(table), (KeyList{"heavy", "often", "light"})) << "often stands in the way";
  TallyAdd("light", table, 1);
  TallyAdd("light", table, 1);
  EXPECT_EQ(Keys(table), (KeyList{"light", "heavy", "often"}));
}

TEST(SortTallyByMetric, SortsAgainAfterMoreAdditions) {
  TallyTable table;
  TallyAdd("a", table, 1);
  TallyAdd("b", table, 2);
  SortTallyByMetric(table);
  TallyAdd("a", table, 5);
  TallyAdd("c", table, 3);
  SortTallyByMetric(table);
  EXPECT_EQ(Keys(table), (KeyList{"a", "c", "b"}));
}

TEST(SortTallyByMetric, ClearReturnsToTheOrderByCount) {
  TallyTable table;
  TallyAdd("a", table, 1);
  TallyAdd("b", table, 2);
  SortTallyByMetric(table);
  table.Clear();
  TallyAdd("a", table, 1);
  TallyAdd("b", table, 2);
  EXPECT_EQ(Keys(table), (KeyList{"a", "b"}));
}

// Random operations on the real table and on the literal one side by side.
struct Mix {
  const char* name;
  unsigned seed;
  int operations;
  unsigned keys;    // size of the alphabet
  unsigned values;  // values are 0..values-1, times `scale`
  float scale;
  unsigned averaging_of;  // one addition in so many is averaging; 0 for none
  unsigned sort_of;       // one operation in so many sorts; 0 for none
  unsigned clear_of;
  unsigned compare_of;
};

void PrintTo(const Mix& mix, std::ostream* out) { *out << mix.name; }

class RandomTally : public testing::TestWithParam<Mix> {
 protected:
  void Compare() {
    ASSERT_EQ(TallyCount(real_), literal_.Count());
    for (std::int32_t rank = 1; rank <= literal_.Count(); ++rank) CompareRow(rank);
  }

  void CompareRow(std::int32_t rank) {
    const TallyEntry real = real_.At(rank);
    const reference::TallyEntry& literal = literal_.entries[static_cast<std::size_t>(rank)];
    if (real.Key == literal.Key && real.Count == literal.Count &&
        std::bit_cast<std::uint32_t>(real.Metric) == std::bit_cast<std::uint32_t>(literal.Metric)) {
      return;
    }
    FAIL() << "rank " << rank << " is " << real.Key << " x" << real.Count << " = " << real.Metric
           << ", expected " << literal.Key << " x" << literal.Count << " = " << literal.Metric;
  }

  bool OneIn(unsigned n) { return n != 0 && random_() % n == 0; }

  void Add(const Mix& mix) {
    // Two dice of different reach: some keys are frequent, all of them tie now and then.
    const unsigned reach = OneIn(2) ? mix.keys : mix.keys / 3 + 1;
    const std::string key = "/k" + std::to_string(random_() % reach);
    const float value = static_cast<float>(random_() % mix.values) * mix.scale;
    const bool averaging = OneIn(mix.averaging_of);
    TallyAdd(key, real_, value, averaging);
    reference::TallyAdd(key, literal_, value, averaging);
  }

  void Sort() {
    SortTallyByMetric(real_);
    reference::SortTallyByMetric(literal_);
    Compare();
  }

  void Clear() {
    real_.Clear();
    literal_.Clear();
  }

  // Reads a few ranks only, as a page that lists the top rows does.
  void Peek() {
    if (literal_.Count() == 0) return;
    CompareRow(1);
    CompareRow(1 + static_cast<std::int32_t>(random_() % static_cast<unsigned>(literal_.Count())));
  }

  void Step(const Mix& mix) {
    if (OneIn(mix.sort_of)) return Sort();
    if (OneIn(mix.clear_of)) return Clear();
    Add(mix);
    if (OneIn(mix.compare_of)) return Compare();
    if (OneIn(50)) Peek();
  }

  std::mt19937 random_;
  TallyTable real_;
  reference::TallyTable literal_;
};

TEST_P(RandomTally, AgreesWithTheLiteralTable) {
  fakes::RecordingEventLog log;
  platform::Replacement<platform::EventLog> replacement(log);
  const Mix& mix = GetParam();
  random_.seed(mix.seed);
  for (int i = 0; i < mix.operations && !HasFatalFailure(); ++i) Step(mix);
  Compare();
}

INSTANTIATE_TEST_SUITE_P(
    Mixes, RandomTally,
    testing::Values(Mix{"FewKeysManyTies", 1, 300'000, 4, 3, 1.0F, 0, 40, 400, 7},
                    Mix{"CountsOnly", 2, 300'000, 60, 1000, 1.0F, 0, 0, 5000, 100},
                    Mix{"SortedInBetween", 3, 200'000, 40, 4, 1.0F, 0, 60, 2000, 30},
                    Mix{"Averages", 4, 200'000, 20, 100'000, 0.37F, 1, 300, 3000, 40},
                    Mix{"AveragesAndSums", 5, 200'000, 30, 5000, 1.7F, 3, 100, 1500, 40},
                    Mix{"LargeTable", 6, 60'000, 3000, 20, 3.0F, 0, 6000, 0, 2000},
                    Mix{"Overflows", 7, 100'000, 6, 3, 1.7e38F, 0, 50, 60, 5}),
    [](const testing::TestParamInfo<Mix>& instance) { return std::string(instance.param.name); });

}  // namespace
