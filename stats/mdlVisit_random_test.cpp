// The visits against their literal form, hit for hit.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <random>
#include <set>
#include <string>

#include "config/text.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/visit_fixture.h"
#include "tests/reference/literal_tally.h"
#include "tests/reference/literal_visits.h"

namespace {

using mdlMonth::Month;
using mdlVisit::AllVisitLengths;
using mdlVisit::CloseAllVisits;
using mdlVisit::InitVisits;
using mdlVisit::NonRobotVisitLengths;
using mdlVisit::SlotCapacity;
using mdlVisit::SlotCount;

// Random hits on the real visits and on the literal ones side by side.
struct Traffic {
  const char* name;
  unsigned seed;
  int hits;
  unsigned visitors;
  unsigned step;          // hits are 0..step-1 seconds apart
  unsigned gap_of;        // one hit in so many follows a long silence; 0 for none
  unsigned gap;           // its length, up to so many seconds
  unsigned backwards_of;  // one hit in so many comes from the past; 0 for none
  unsigned burst_of;      // one visitor in so many sends a series of hits; 0 for none
  unsigned period;        // the time starts again, in a new month, after so many seconds
};

void PrintTo(const Traffic& traffic, std::ostream* out) { *out << traffic.name; }

class RandomVisits : public VisitTest, public testing::WithParamInterface<Traffic> {
 protected:
  RandomVisits()
      : literal_([this](const std::string& agent) { return IsKnownRobot(agent); }, SlotCapacity()) {
    literal_.InitVisits();
  }

  bool IsKnownRobot(const std::string& agent) const {
    return text::ContainsIgnoringCase(agent, "bot") || robots_txt_agents_.count(agent) != 0;
  }

  bool OneIn(unsigned n) { return n != 0 && random_() % n == 0; }
  std::int32_t Below(unsigned n) { return static_cast<std::int32_t>(random_() % n); }

  std::string AnyAgent() {
    static const char* const kAgents[] = {"Mozilla/5.0", "Googlebot", "Opera",
                                          "msnBOT/1",    "Stealth",   "mozilla/5.0"};
    return kAgents[random_() % std::size(kAgents)];
  }

  void TrackBoth(const std::string& ip, const std::string& agent) {
    // Addresses and agents that are made anew for every hit, as in a log.
    const std::string uri = "/page" + std::to_string(random_() % 40);
    const std::int32_t bytes = Below(100'000);
    mdlVisit::TrackVisit(ip, agent, time_, uri, bytes);
    literal_.TrackVisit(ip, agent, time_, uri, bytes);
  }

  void FetchRobotsTxt(const std::string& agent) {
    mdlMonth::TallyAdd(agent, Month().RobotsTxtAgents, 1);
    robots_txt_agents_.insert(agent);
  }

  int HitsOfOneVisitor(const Traffic& traffic) {
    // Some visitors are far more frequent than others.
    const unsigned reach = OneIn(3) ? traffic.visitors : traffic.visitors / 5 + 1;
    const std::string ip = "10.1." + std::to_string(random_() % reach);
    const std::string agent = OneIn(8) ? AnyAgent() : "Mozilla/5.0";
    const int hits = OneIn(traffic.burst_of) ? 1 + Below(60) : 1;
    for (int i = 0; i < hits; ++i) TrackBoth(ip, agent);
    return hits;
  }

  void MoveTime(const Traffic& traffic) {
    time_ += Below(traffic.step);
    if (OneIn(traffic.gap_of)) time_ += Below(traffic.gap);
    if (OneIn(traffic.backwards_of)) time_ -= std::min(time_, Below(200'000));
    if (time_ >= static_cast<std::int32_t>(traffic.period)) NewMonth();
  }

  void NewMonth() {
    CloseBoth();
    Compare();
    time_ = 86400;
    mdlMonth::InitMonth();
    InitVisits();
    literal_.InitVisits();
    for (reference::TallyTable* table : {&literal_.all_entry, &literal_.all_exit,
                                         &literal_.non_robot_entry, &literal_.non_robot_exit}) {
      table->Clear();
    }
  }

  void CloseBoth() {
    CloseAllVisits();
    literal_.CloseAllVisits();
  }

  void Compare() {
    ASSERT_EQ(SlotCount(), literal_.slot_count());
    ASSERT_EQ(SlotCapacity(), literal_.slot_capacity());
    CompareBreakdown(AllVisitLengths(), literal_.all_lengths());
    CompareBreakdown(NonRobotVisitLengths(), literal_.non_robot_lengths());
    CompareTable(Month().Visits.AllEntry, literal_.all_entry);
    CompareTable(Month().Visits.AllExit, literal_.all_exit);
    CompareTable(Month().Visits.NonRobotEntry, literal_.non_robot_entry);
    CompareTable(Month().Visits.NonRobotExit, literal_.non_robot_exit);
  }

  static void CompareBreakdown(const mdlVisit::Breakdown& real,
                               const reference::Breakdown& literal) {
    for (std::size_t row = 0; row < literal.size(); ++row) {
      ASSERT_EQ(real[row].Visits, literal[row].Visits) << "row " << row;
      ASSERT_EQ(real[row].Seconds, literal[row].Seconds) << "row " << row;
      ASSERT_EQ(real[row].Fetches, literal[row].Fetches) << "row " << row;
      ASSERT_EQ(Bits(real[row].SecondsSquares), Bits(literal[row].SecondsSquares));
      ASSERT_EQ(Bits(real[row].FetchesSquares), Bits(literal[row].FetchesSquares));
    }
  }

  static void CompareTable(mdlMonth::TallyTable& real, const reference::TallyTable& literal) {
    ASSERT_EQ(real.Count(), literal.Count());
    for (std::int32_t rank = 1; rank <= literal.Count(); ++rank) {
      const mdlMonth::TallyEntry entry = real.At(rank);
      const reference::TallyEntry& expected = literal.entries[static_cast<std::size_t>(rank)];
      ASSERT_EQ(entry.Key, expected.Key) << "rank " << rank;
      ASSERT_EQ(entry.Count, expected.Count) << "rank " << rank;
      ASSERT_EQ(Bits(entry.Metric), Bits(expected.Metric)) << "rank " << rank;
    }
  }

  static std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

  std::mt19937 random_;
  std::int32_t time_ = 86400;
  std::set<std::string> robots_txt_agents_;
  reference::LiteralVisits literal_;
};

TEST_P(RandomVisits, AgreeWithTheLiteralVisits) {
  const Traffic& traffic = GetParam();
  random_.seed(traffic.seed);
  int next_checkpoint = 0;
  for (int hits = 0; hits < traffic.hits && !HasFatalFailure();) {
    hits += HitsOfOneVisitor(traffic);
    MoveTime(traffic);
    if (hits > traffic.hits / 2 && robots_txt_agents_.empty()) FetchRobotsTxt("Stealth");
    if (hits >= next_checkpoint) {
      Compare();
      next_checkpoint = hits + 997;
    }
  }
  CloseBoth();
  Compare();
}

INSTANTIATE_TEST_SUITE_P(
    Traffic, RandomVisits,
    testing::Values(Traffic{"FewVisitors", 11, 300'000, 5, 900, 0, 1, 0, 0, 2'764'800},
                    Traffic{"SteadySite", 12, 250'000, 150, 40, 200, 4000, 0, 20, 2'764'800},
                    Traffic{"LongGaps", 13, 200'000, 60, 300, 30, 90'000, 0, 10, 2'764'800},
                    Traffic{"Bursts", 14, 200'000, 400, 60, 100, 3000, 0, 3, 2'764'800},
                    Traffic{"TimeGoesBackwards", 15, 150'000, 80, 200, 300, 5000, 6, 15, 2'764'800},
                    Traffic{"ManyVisitors", 16, 50'000, 4000, 2, 0, 1, 0, 0, 2'764'800},
                    Traffic{"ManyVisitorsShortMonths", 17, 50'000, 3000, 4, 0, 1, 50, 40, 100'000}),
    [](const testing::TestParamInfo<Traffic>& instance) {
      return std::string(instance.param.name);
    });

}  // namespace
