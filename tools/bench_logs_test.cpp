#include "tools/bench_logs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/fakes/temp_dir.h"
#include "tools/logs_for_test.h"

namespace sample_logs {
namespace {

std::map<std::string, std::string> Make(const BenchPlan& plan) {
  const fakes::ScopedTempDir folder;
  WriteBenchLogs(folder.path(), plan);
  return ReadFolder(folder.path());
}

BenchPlan SmallPlan(std::uint64_t lines) {
  BenchPlan plan;
  plan.lines = lines;
  plan.urls = 500;
  plan.visitors = 300;
  plan.agents = 50;
  return plan;
}

std::size_t CountDifferent(const std::vector<Fields>& lines, FieldIndex field) {
  std::set<std::string> values;
  for (const Fields& line : lines) values.insert(line[field]);
  return values.size();
}

long Seconds(const Fields& line) {
  const auto part = [&line](std::size_t at) { return std::stol(line[kTime].substr(at, 2)); };
  return ((std::stol(line[kDate].substr(8)) * 24 + part(0)) * 60 + part(3)) * 60 + part(6);
}

// The visits that were open when the last line came.
std::size_t OpenVisitsAtEnd(const std::vector<Fields>& lines) {
  std::map<std::string, long> last_hits;
  for (const Fields& line : lines) last_hits[line[kClient] + " " + line[kAgent]] = Seconds(line);
  const long end = Seconds(lines.back());
  return static_cast<std::size_t>(
      std::count_if(last_hits.begin(), last_hits.end(),
                    [end](const auto& visit) { return visit.second >= end - 1210; }));
}

TEST(BenchLogs, SamePlanGivesTheSameBytes) {
  EXPECT_EQ(Make(SmallPlan(3000)), Make(SmallPlan(3000)));
}

TEST(BenchLogs, AnotherSeedGivesOtherLogs) {
  BenchPlan plan = SmallPlan(3000);
  plan.seed = 2;
  EXPECT_NE(Make(plan), Make(SmallPlan(3000)));
}

TEST(BenchLogs, HoldExactlyTheWantedLinesInTimeOrder) {
  for (const std::uint64_t count : {1U, 2U, 31U, 20000U}) {
    const auto lines = ReadLines(Make(SmallPlan(count)));
    EXPECT_EQ(lines.size(), count);
    EXPECT_TRUE(AreCompleteAndInTimeOrder(lines));
  }
}

TEST(BenchLogs, StayInTheirMonth) {
  BenchPlan plan = SmallPlan(20000);
  plan.year = 2024;
  plan.month = 12;
  const auto files = Make(plan);
  EXPECT_EQ(files.size(), 31U);
  EXPECT_EQ(files.begin()->first, "u_ex241201.log");
  EXPECT_EQ(files.rbegin()->first, "u_ex241231.log");
}

TEST(BenchLogs, TwiceTheLinesHaveTheSameKeys) {
  for (const std::uint64_t count : {20000U, 40000U}) {
    const auto lines = ReadLines(Make(SmallPlan(count)));
    EXPECT_EQ(CountDifferent(lines, kStem), 500U);
    EXPECT_EQ(CountDifferent(lines, kClient), 300U);
    EXPECT_EQ(CountDifferent(lines, kAgent), 50U);
  }
}

TEST(BenchLogs, EveryLineCanHaveAUrlOfItsOwn) {
  BenchPlan plan = SmallPlan(20000);
  plan.distinct_urls = true;
  EXPECT_EQ(CountDifferent(ReadLines(Make(plan)), kStem), 20000U);
}

TEST(BenchLogs, VisitorKeepsItsAgent) {
  std::map<std::string, std::string> agents;
  for (const Fields& line : ReadLines(Make(SmallPlan(20000)))) {
    const auto known = agents.emplace(line[kClient], line[kAgent]).first;
    ASSERT_EQ(known->second, line[kAgent]);
  }
}

TEST(BenchLogs, LinesAreAboutAsLongAsRealOnes) {
  std::size_t bytes = 0;
  for (const auto& [name, content] : Make(SmallPlan(20000))) bytes += content.size();
  EXPECT_GT(bytes, 20000U * 200);
  EXPECT_LT(bytes, 20000U * 270);
}

TEST(BenchLogs, OpenVisitsAreSteered) {
  for (const std::uint64_t wanted : {20U, 2000U}) {
    BenchPlan plan = SmallPlan(60000);
    plan.visitors = 20000;
    plan.open_visits = wanted;
    const std::size_t open = OpenVisitsAtEnd(ReadLines(Make(plan)));
    EXPECT_GT(open, wanted / 2) << wanted;
    EXPECT_LT(open, wanted * 2) << wanted;
  }
}

}  // namespace
}  // namespace sample_logs
