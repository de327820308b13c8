// What is left of a tally when memory runs out while it grows. A program of its own: it
// replaces the allocation of the whole process.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "platform/service.h"
#include "stats/tally.h"
#include "tests/fakes/recording_event_log.h"

namespace {

// The number of allocations that still succeed before one fails; below 0 none fails.
std::int64_t allocations_left = -1;

void* Allocate(std::size_t size) {
  if (allocations_left >= 0 && allocations_left-- == 0) throw std::bad_alloc();
  if (void* const memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

// Runs `action` with one allocation failing, the one after `successes` others. True when the action
// came that far.
template <typename Action>
bool FailsAfter(std::int64_t successes, Action action) {
  allocations_left = successes;
  action();
  const bool failed = allocations_left < 0;
  allocations_left = -1;
  return failed;
}

class GrowingTally : public testing::Test {
 protected:
  // Large enough for every kind of storage to grow.
  static constexpr int kKeys = 2500;

  // Long keys, so that the memory of the texts grows too.
  static std::string KeyOf(int number) {
    return "/page-" + std::to_string(number) + "/" +
           std::string(static_cast<std::size_t>(number % 1000), 'x');
  }
  // Row by row: key, count and metric.
  static std::vector<std::string> RowsOf(mdlMonth::TallyTable& table) {
    std::vector<std::string> rows;
    for (std::int32_t rank = 1; rank <= mdlMonth::TallyCount(table); ++rank) {
      const mdlMonth::TallyEntry entry = table.At(rank);
      rows.push_back(std::string(entry.Key) + " " + std::to_string(entry.Count) + " " +
                     std::to_string(entry.Metric));
    }
    return rows;
  }
  static std::string WarningFor(const std::string& key, std::int32_t old_count) {
    return "Hitwick : Error extending arrray for string '" + key + "' metric=2. Old count was " +
           std::to_string(old_count);
  }

  // Adds a key again and again, each time with a later allocation failing, until it is in.
  void AddWithEveryFailure(const std::string& key, mdlMonth::TallyTable& table) {
    for (std::int64_t successes = 0;; ++successes) {
      const std::int32_t old_count = mdlMonth::TallyCount(table);
      log_.Clear();
      if (!FailsAfter(successes, [&] { mdlMonth::TallyAdd(key, table, 2.0F); })) return;
      ++failures_;
      ASSERT_EQ(log_.Texts(), std::vector<std::string>{WarningFor(key, old_count)});
      ASSERT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
      ASSERT_EQ(mdlMonth::TallyCount(table), old_count);
      ASSERT_FALSE(table.Contains(key));
    }
  }

  fakes::RecordingEventLog log_;
  int failures_ = 0;

 private:
  platform::Replacement<platform::EventLog> log_replacement_{log_};
};

TEST_F(GrowingTally, EachFailureIsReportedAndCostsNothingElse) {
  mdlMonth::TallyTable table;
  mdlMonth::TallyTable untroubled;
  for (int number = 0; number < kKeys; ++number) {
    const std::string key = KeyOf(number);
    ASSERT_NO_FATAL_FAILURE(AddWithEveryFailure(key, table));
    mdlMonth::TallyAdd(key, untroubled, 2.0F);
  }
  EXPECT_GT(failures_, 10);
  EXPECT_EQ(RowsOf(table), RowsOf(untroubled));
}

TEST_F(GrowingTally, CountsAndOrderGoOnAsIfTheFailedAdditionHadNotBeen) {
  mdlMonth::TallyTable table;
  mdlMonth::TallyTable untroubled;
  for (int number = 0; number < 100; ++number) {
    ASSERT_NO_FATAL_FAILURE(AddWithEveryFailure(KeyOf(number), table));
    mdlMonth::TallyAdd(KeyOf(number), untroubled, 2.0F);
    for (int again = number % 7; again > 0; --again) {
      mdlMonth::TallyAdd(KeyOf(number / again), table, 1.0F);
      mdlMonth::TallyAdd(KeyOf(number / again), untroubled, 1.0F);
    }
    ASSERT_EQ(RowsOf(table), RowsOf(untroubled)) << number;
  }
}

TEST_F(GrowingTally, ForgetsAllOfItWhenCleared) {
  mdlMonth::TallyTable table;
  ASSERT_NO_FATAL_FAILURE(AddWithEveryFailure("first", table));
  table.Clear();
  mdlMonth::TallyAdd("second", table, 1.0F);
  EXPECT_EQ(RowsOf(table), std::vector<std::string>{"second 1 1.000000"});
}

}  // namespace
