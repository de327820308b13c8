#include "tools/demo_logs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "tests/fakes/temp_dir.h"
#include "tools/logs_for_test.h"

namespace sample_logs {
namespace {

constexpr platform::DateTime kNow{2026, 1, 31, 15, 30, 0};

class DemoLogs : public testing::Test {
 protected:
  // The logs that `now` gives, made once.
  static const std::map<std::string, std::string>& Files() {
    static const std::map<std::string, std::string> files = Make(kNow);
    return files;
  }
  static const std::vector<Fields>& Lines() {
    static const std::vector<Fields> lines = ReadLines(Files());
    return lines;
  }
  static std::map<std::string, std::string> Make(const platform::DateTime& now) {
    const fakes::ScopedTempDir folder;
    WriteDemoLogs(folder.path(), now);
    return ReadFolder(folder.path());
  }
  static std::ptrdiff_t CountHours(char tens, char units) {
    return std::count_if(Lines().begin(), Lines().end(), [=](const Fields& line) {
      return line[kTime][0] == tens && line[kTime][1] == units;
    });
  }
};

TEST_F(DemoLogs, SameMomentGivesTheSameBytes) { EXPECT_EQ(Make(kNow), Files()); }

TEST_F(DemoLogs, HoldAboutAHundredAndFiftyThousandLines) {
  EXPECT_GT(Lines().size(), 135000U);
  EXPECT_LT(Lines().size(), 170000U);
}

TEST_F(DemoLogs, LinesAreCompleteAndInTimeOrder) {
  EXPECT_TRUE(AreCompleteAndInTimeOrder(Lines()));
}

TEST_F(DemoLogs, ReachFromTheMonthAYearAgoToThePresentMoment) {
  EXPECT_EQ(Files().begin()->first, "u_ex250101.log");
  EXPECT_EQ(Files().rbegin()->first, "u_ex260131.log");
  EXPECT_EQ(Files().size(), 396U);
  EXPECT_LE(Moment(Lines().back()), "2026-01-31 15:30:00");
}

TEST_F(DemoLogs, EarlierMomentOfTheDayGivesTheBeginningOfTheSameLogs) {
  auto earlier = Make({2026, 1, 31, 9, 0, 0});
  auto later = Files();
  const std::string today = "u_ex260131.log";
  EXPECT_LT(earlier[today].size(), later[today].size());
  EXPECT_TRUE(later[today].starts_with(earlier[today]));
  earlier.erase(today);
  later.erase(today);
  EXPECT_EQ(earlier, later);
}

TEST_F(DemoLogs, NightsAreQuiet) { EXPECT_GT(CountHours('1', '1'), 4 * CountHours('0', '3')); }

TEST_F(DemoLogs, LaterMonthsHaveMoreLines) {
  const auto count = [](const std::string& month) {
    return std::count_if(Lines().begin(), Lines().end(),
                         [&](const Fields& line) { return line[kDate].starts_with(month); });
  };
  EXPECT_GT(count("2025-12"), count("2025-01"));
}

TEST_F(DemoLogs, HoldWhatAReportShows) {
  std::set<std::string> statuses;
  std::set<std::string> methods;
  std::set<std::string> users;
  bool robots_txt = false;
  bool words = false;
  bool internal_link = false;
  for (const Fields& line : Lines()) {
    methods.insert(line[3]);
    users.insert(line[7]);
    statuses.insert(line[11]);
    robots_txt = robots_txt || line[kStem] == "/robots.txt";
    words = words || line[kReferrer].find("?q=ship%27s+bell") != std::string::npos;
    internal_link = internal_link || line[kReferrer] == "http://www.museum.example/visit/";
  }
  for (const char* status : {"200", "206", "301", "302", "304", "401", "403", "404", "500"}) {
    EXPECT_EQ(statuses.count(status), 1U) << status;
  }
  EXPECT_EQ(methods, (std::set<std::string>{"GET", "POST"}));
  EXPECT_GE(users.size(), 4U);
  EXPECT_TRUE(robots_txt && words && internal_link);
}

}  // namespace
}  // namespace sample_logs
