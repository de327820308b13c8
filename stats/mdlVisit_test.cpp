#include "stats/mdlVisit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "stats/log_record.h"
#include "stats/mdlMonth.h"
#include "stats/visit_fixture.h"

namespace {

using mdlMonth::Month;
using mdlVisit::AddToBreakdown;
using mdlVisit::AllVisitLengths;
using mdlVisit::CloseAllVisits;
using mdlVisit::CloseVisit;
using mdlVisit::InitVisits;
using mdlVisit::LengthBucket;
using mdlVisit::NonRobotVisitLengths;
using mdlVisit::SlotCapacity;
using mdlVisit::SlotCount;

constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr int kMaxSlots = 32767;

using VisitSlots = VisitTest;
using TrackVisit = VisitTest;
using VisitLengths = VisitTest;
using VisitRobots = VisitTest;
using VisitErrors = VisitTest;
using KeyList = std::vector<std::string>;

// The capacity never shrinks in a process, so the first test alone can see the first growth.
TEST_F(VisitSlots, OneHundredAtFirstAndTwoHundredForOneHundredAndOneVisits) {
  if (SlotCapacity() != 100) GTEST_SKIP() << "an earlier test has already grown the slots";
  OpenVisitors(1, 99, 0);
  EXPECT_EQ(SlotCapacity(), 100);
  OpenVisitors(100, 101, 0);
  EXPECT_EQ(SlotCapacity(), 200);
  EXPECT_EQ(SlotCount(), 101);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 101);
}

TEST_F(VisitSlots, GrowWhenTheCountReachesTheCapacity) {
  const int capacity = SlotCapacity();
  if (capacity == kMaxSlots) GTEST_SKIP() << "an earlier test has grown the slots to their limit";
  OpenVisitors(1, capacity - 1, 0);
  EXPECT_EQ(SlotCapacity(), capacity);
  OpenVisitors(capacity, capacity, 0);
  EXPECT_EQ(SlotCapacity(), std::min(2 * capacity, kMaxSlots));
  EXPECT_EQ(SlotCount(), capacity);
}

TEST_F(VisitSlots, OpenVisitsSurviveTheGrowth) {
  const int capacity = SlotCapacity();
  if (capacity == kMaxSlots) GTEST_SKIP() << "an earlier test has grown the slots to their limit";
  OpenVisitors(1, capacity + 1, 0);
  OpenVisitors(1, capacity + 1, 30);
  EXPECT_EQ(SlotCount(), capacity + 1);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), capacity + 1);
  EXPECT_EQ(AllVisitLengths()[0].Fetches, 2 * (capacity + 1));
  EXPECT_EQ(AllVisitLengths()[2].Visits, capacity + 1);
}

TEST_F(VisitSlots, InitVisitsForgetsTheCountAndKeepsTheCapacity) {
  OpenVisitors(1, 120, 0);
  const int capacity = SlotCapacity();
  InitVisits();
  EXPECT_EQ(SlotCount(), 0);
  EXPECT_EQ(SlotCapacity(), capacity);
}

TEST_F(VisitSlots, VisitsDoNotCarryOverToTheNextPeriod) {
  Hit("a", 0, "/old");
  InitVisits();
  Hit("a", 1, "/new");
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 1);
  EXPECT_EQ(AllVisitLengths()[0].Fetches, 1);
  EXPECT_EQ(Keys(Month().Visits.AllEntry), KeyList{"/new"});
}

TEST_F(VisitSlots, CountIsTheLargestNumberOpenAtOneTime) {
  OpenVisitors(1, 5, 0);
  Hit("later1", 5000);
  Hit("later2", 5000);
  EXPECT_EQ(SlotCount(), 5);
}

TEST_F(VisitSlots, LowestFreeSlotIsReusedFirst) {
  Hit("a", 0, "/a");
  Hit("b", 0, "/b");
  Hit("c", 1000, "/c");
  Hit("d", 1300, "/d");
  Hit("e", 1300, "/e");
  EXPECT_EQ(SlotCount(), 3);
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/a", "/b", "/d", "/e", "/c"}));
}

TEST_F(TrackVisit, OwnHitNeverTimesTheVisitOut) {
  Hit("a", 0);
  Hit("a", 5000);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 1);
  EXPECT_EQ(AllVisitLengths()[0].Fetches, 2);
  EXPECT_EQ(AllVisitLengths()[0].Seconds, 5000);
}

TEST_F(TrackVisit, AnotherVisitorsHitClosesAnIdleVisit) {
  Hit("a", 0);
  Hit("b", 1211);
  EXPECT_EQ(VisitsSoFar(), 1);
  Hit("a", 5000);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 3);
}

TEST_F(TrackVisit, PauseOfExactlyTheTimeoutDoesNotClose) {
  Hit("a", 0);
  Hit("b", 1210);
  EXPECT_EQ(VisitsSoFar(), 0);
  Hit("a", 5000);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Seconds, 5000) << "b's visit has no duration";
  EXPECT_EQ(VisitsSoFar(), 2);
}

TEST_F(TrackVisit, PauseCountsFromTheLatestHit) {
  Hit("a", 0);
  Hit("a", 1000);
  Hit("b", 1211);
  EXPECT_EQ(VisitsSoFar(), 0);
  Hit("b", 2211);
  EXPECT_EQ(VisitsSoFar(), 1);
}

TEST_F(TrackVisit, SlotsAfterTheMatchAreNotExamined) {
  Hit("a", 0);
  Hit("b", 0);
  Hit("a", 5000);
  EXPECT_EQ(VisitsSoFar(), 0);
  Hit("b", 5001);
  EXPECT_EQ(VisitsSoFar(), 0);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 2);
  EXPECT_EQ(AllVisitLengths()[0].Seconds, 10001);
}

TEST_F(TrackVisit, IdleSlotsBeforeTheMatchAreClosed) {
  Hit("a", 0);
  Hit("b", 0);
  Hit("b", 5000);
  EXPECT_EQ(VisitsSoFar(), 1);
}

TEST_F(TrackVisit, ReturningVisitorTakesTheLowestFreeSlot) {
  Hit("a", 0, "/a");
  Hit("b", 0, "/b");
  Hit("b", 2000, "/b2");  // closes a's visit
  Hit("a", 2001, "/a2");
  EXPECT_EQ(SlotCount(), 2);
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/a", "/a2", "/b"}));
}

TEST_F(TrackVisit, TwoAgentsOfOneAddressAreTwoVisits) {
  Hit("a", 0, "/", "Mozilla");
  Hit("a", 0, "/", "Opera");
  EXPECT_EQ(SlotCount(), 2);
}

TEST_F(TrackVisit, AddressAndAgentCompareExactly) {
  Hit("fe::a", 0, "/", "Mozilla");
  Hit("FE::A", 0, "/", "Mozilla");
  Hit("fe::a", 0, "/", "mozilla");
  EXPECT_EQ(SlotCount(), 3);
}

TEST_F(TrackVisit, AddressAndAgentAreNotRunTogether) {
  Hit("ab", 0, "/", "c");
  Hit("a", 0, "/", "bc");
  Hit("", 0, "/", "abc");
  Hit("abc", 0, "/", "");
  EXPECT_EQ(SlotCount(), 4);
}

TEST_F(TrackVisit, EntryIsTheFirstAndExitTheLatestUri) {
  Hit("a", 0, "/in");
  Hit("a", 1, "/between");
  Hit("a", 2, "/out");
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), KeyList{"/in"});
  EXPECT_EQ(Keys(Month().Visits.AllExit), KeyList{"/out"});
  EXPECT_EQ(Keys(Month().Visits.NonRobotEntry), KeyList{"/in"});
  EXPECT_EQ(Keys(Month().Visits.NonRobotExit), KeyList{"/out"});
  EXPECT_EQ(Month().Visits.AllEntry.At(1).Metric, 1.0F);
}

TEST_F(TrackVisit, PagesOfVisitsAreRankedByVisits) {
  Hit("a", 0, "/once");
  Hit("b", 0, "/twice");
  Hit("c", 0, "/twice");
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/twice", "/once"}));
  EXPECT_EQ(Month().Visits.AllEntry.At(1).Metric, 2.0F);
}

TEST_F(TrackVisit, CloseVisitEndsOneSlotOnly) {
  Hit("a", 0, "/a");
  Hit("b", 0, "/b");
  CloseVisit(1);
  EXPECT_EQ(Keys(Month().Visits.AllEntry), KeyList{"/b"});
  Hit("b", 1, "/b2");
  EXPECT_EQ(SlotCount(), 2);
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/b", "/a", "/b2"}));
}

TEST_F(TrackVisit, ClosingAllTwiceCountsOnce) {
  Hit("a", 0);
  CloseAllVisits();
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), 1);
}

TEST_F(VisitLengths, BoundsAndLabelsOfBothBreakdowns) {
  const std::vector<std::string_view> labels = {
      "Total",    "very short <3 Secs", "short <1 Min", "< 10 Minutes",
      "< 1 Hour", "< 8 Hours",          "Continuous"};
  const std::vector<std::int32_t> bounds = {0, 3, 60, 600, 3600, 28800, 2764800};
  for (std::size_t row = 0; row < labels.size(); ++row) {
    EXPECT_EQ(AllVisitLengths()[row].Label, labels[row]);
    EXPECT_EQ(NonRobotVisitLengths()[row].Label, labels[row]);
    if (row == 0) continue;
    EXPECT_EQ(AllVisitLengths()[row].UpperBound, bounds[row]);
    EXPECT_EQ(NonRobotVisitLengths()[row].UpperBound, bounds[row]);
  }
}

TEST_F(VisitLengths, InitVisitsZeroesTheSums) {
  Hit("a", 0);
  Hit("a", 100);
  CloseAllVisits();
  InitVisits();
  for (const LengthBucket& bucket : {AllVisitLengths()[0], NonRobotVisitLengths()[3]}) {
    EXPECT_EQ(bucket.Visits, 0);
    EXPECT_EQ(bucket.Seconds, 0);
    EXPECT_EQ(bucket.SecondsSquares, 0.0F);
    EXPECT_EQ(bucket.Fetches, 0);
    EXPECT_EQ(bucket.FetchesSquares, 0.0F);
  }
}

// The row (1..6) that a visit of that duration falls in; 0 when it is in row 0 only.
int RowOfDuration(std::int32_t duration) {
  InitVisits();
  mdlVisit::TrackVisit("a", "Mozilla", 0, "/", 1);
  mdlVisit::TrackVisit("a", "Mozilla", duration, "/", 1);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Visits, 1);
  int found = 0;
  for (int row = 1; row <= 6; ++row) {
    if (AllVisitLengths()[static_cast<std::size_t>(row)].Visits == 1) found = found * 10 + row;
  }
  return found;
}

TEST_F(VisitLengths, UpperBoundsAreExclusive) {
  EXPECT_EQ(RowOfDuration(0), 1);
  EXPECT_EQ(RowOfDuration(2), 1);
  EXPECT_EQ(RowOfDuration(3), 2);
  EXPECT_EQ(RowOfDuration(59), 2);
  EXPECT_EQ(RowOfDuration(60), 3);
  EXPECT_EQ(RowOfDuration(599), 3);
  EXPECT_EQ(RowOfDuration(600), 4);
  EXPECT_EQ(RowOfDuration(3599), 4);
  EXPECT_EQ(RowOfDuration(3600), 5);
  EXPECT_EQ(RowOfDuration(28799), 5);
  EXPECT_EQ(RowOfDuration(28800), 6);
  EXPECT_EQ(RowOfDuration(2764799), 6);
}

TEST_F(VisitLengths, ThirtyTwoDaysAndMoreCountInTheTotalOnly) {
  EXPECT_EQ(RowOfDuration(2764800), 0);
  EXPECT_EQ(RowOfDuration(9000000), 0);
}

TEST_F(VisitLengths, OneHitHasNoDuration) {
  Hit("a", 77);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[1].Visits, 1);
  EXPECT_EQ(AllVisitLengths()[1].Seconds, 0);
}

TEST_F(VisitLengths, NegativeDurationGetsThirtyOneDays) {
  Hit("a", 1000);
  Hit("a", 999);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Seconds, 2678399);
  EXPECT_EQ(AllVisitLengths()[6].Visits, 1);
}

TEST_F(VisitLengths, SumsAndSquaresOfSeveralVisits) {
  Hit("a", 0);
  Hit("a", 10);
  Hit("a", 20);
  Hit("b", 0);
  Hit("b", 30);
  CloseAllVisits();
  for (const std::size_t row : {0U, 2U}) {
    const LengthBucket& bucket = NonRobotVisitLengths()[row];
    EXPECT_EQ(bucket.Visits, 2);
    EXPECT_EQ(bucket.Fetches, 5);
    EXPECT_EQ(bucket.FetchesSquares, 13.0F);
    EXPECT_EQ(bucket.Seconds, 50);
    EXPECT_EQ(bucket.SecondsSquares, 1300.0F);
  }
}

TEST_F(VisitLengths, SquaresAreTakenOfTheSinglePrecisionValue) {
  AddToBreakdown(AllVisitLengths(), 0, 16777217, 0);
  EXPECT_EQ(AllVisitLengths()[0].FetchesSquares, 16777216.0F * 16777216.0F);
  AddToBreakdown(AllVisitLengths(), 0, 1, 33554433);
  EXPECT_EQ(AllVisitLengths()[0].SecondsSquares, 33554432.0F * 33554432.0F);
}

TEST_F(VisitRobots, CountInTheFiguresOfAllVisitsOnly) {
  Hit("a", 0, "/robot", "Googlebot/2.1");
  Hit("b", 0, "/human", "Mozilla");
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Visits, 2);
  EXPECT_EQ(AllVisitLengths()[1].Visits, 2);
  EXPECT_EQ(NonRobotVisitLengths()[0].Visits, 1);
  EXPECT_EQ(NonRobotVisitLengths()[1].Visits, 1);
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/robot", "/human"}));
  EXPECT_EQ(Keys(Month().Visits.AllExit), (KeyList{"/robot", "/human"}));
  EXPECT_EQ(Keys(Month().Visits.NonRobotEntry), KeyList{"/human"});
  EXPECT_EQ(Keys(Month().Visits.NonRobotExit), KeyList{"/human"});
}

TEST_F(VisitRobots, AreRecognisedWhenTheVisitCloses) {
  Hit("a", 0, "/", "Stealth");
  mdlMonth::TallyAdd("Stealth", Month().RobotsTxtAgents, 1);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Visits, 1);
  EXPECT_EQ(NonRobotVisitLengths()[0].Visits, 0);
}

// Pages of closed visits are added after the hits of a batch; the visitor's /robots.txt, fetched
// later in it, is too late for the visit that was closed.
TEST_F(VisitRobots, AreNotRecognisedByWhatFollowsInTheSameBatch) {
  std::vector<stats::LogRecord> batch(3);
  for (stats::LogRecord& record : batch) record.day = 1;
  batch[0].uriStem = "/first";
  batch[0].clientAddress = batch[2].clientAddress = "a";
  batch[0].userAgent = batch[2].userAgent = "Stealth";
  batch[1].hour = batch[2].hour = 1;
  batch[1].uriStem = "/other";
  batch[1].clientAddress = "b";
  batch[2].uriStem = "/robots.txt";
  mdlMonth::AddHits(batch);
  EXPECT_EQ(Keys(Month().Visits.NonRobotEntry), KeyList{"/first"});
  EXPECT_EQ(NonRobotVisitLengths()[0].Visits, 1);
  CloseAllVisits();
  EXPECT_EQ(Keys(Month().Visits.AllEntry), (KeyList{"/first", "/other", "/robots.txt"}));
  EXPECT_EQ(Keys(Month().Visits.NonRobotEntry), (KeyList{"/first", "/other"}));
}

TEST_F(VisitErrors, OverflowOfSecondsEndsTheCallAndKeepsWhatWasAdded) {
  AddToBreakdown(AllVisitLengths(), 0, 2, kMaxInt);
  const float squares = AllVisitLengths()[0].SecondsSquares;
  AddToBreakdown(AllVisitLengths(), 0, 3, 1);
  const LengthBucket& bucket = AllVisitLengths()[0];
  EXPECT_EQ(bucket.Visits, 2);
  EXPECT_EQ(bucket.Fetches, 5);
  EXPECT_EQ(bucket.FetchesSquares, 13.0F);
  EXPECT_EQ(bucket.Seconds, kMaxInt);
  EXPECT_EQ(bucket.SecondsSquares, squares);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "HitwickError adding visit to 'Total' : Overflow");
}

TEST_F(VisitErrors, OverflowOfFetchesLeavesTheDurationOut) {
  AddToBreakdown(AllVisitLengths(), 1, kMaxInt, 1);
  const float squares = AllVisitLengths()[1].FetchesSquares;
  AddToBreakdown(AllVisitLengths(), 1, 1, 1);
  const LengthBucket& bucket = AllVisitLengths()[1];
  EXPECT_EQ(bucket.Visits, 2);
  EXPECT_EQ(bucket.Fetches, kMaxInt);
  EXPECT_EQ(bucket.FetchesSquares, squares);
  EXPECT_EQ(bucket.Seconds, 1);
  EXPECT_EQ(bucket.SecondsSquares, 1.0F);
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError adding visit to 'very short <3 Secs' : Overflow"});
}

TEST_F(VisitErrors, SmallerVisitsStillFitAfterAnOverflow) {
  AddToBreakdown(AllVisitLengths(), 0, 1, kMaxInt - 5);
  AddToBreakdown(AllVisitLengths(), 0, 1, 6);
  AddToBreakdown(AllVisitLengths(), 0, 1, 5);
  EXPECT_EQ(AllVisitLengths()[0].Visits, 3);
  EXPECT_EQ(AllVisitLengths()[0].Seconds, kMaxInt);
}

TEST_F(VisitErrors, OneWarningPerRowAndMonth) {
  for (int i = 0; i < 4; ++i) {
    AddToBreakdown(AllVisitLengths(), 0, 1, kMaxInt);
    AddToBreakdown(AllVisitLengths(), 6, 1, kMaxInt);
    AddToBreakdown(NonRobotVisitLengths(), 0, 1, kMaxInt);
  }
  EXPECT_EQ(log_.Texts(), (KeyList{"HitwickError adding visit to 'Total' : Overflow",
                                   "HitwickError adding visit to 'Continuous' : Overflow",
                                   "HitwickError adding visit to 'Total' : Overflow"}));
  InitVisits();
  log_.Clear();
  AddToBreakdown(AllVisitLengths(), 0, 1, kMaxInt);
  AddToBreakdown(AllVisitLengths(), 0, 1, kMaxInt);
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError adding visit to 'Total' : Overflow"});
}

TEST_F(VisitErrors, OverflowOfTheTotalDoesNotKeepAVisitFromItsRowAndPages) {
  AddToBreakdown(AllVisitLengths(), 0, 1, kMaxInt);
  Hit("a", 0, "/in");
  Hit("a", 100, "/out");
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Visits, 2);
  EXPECT_EQ(AllVisitLengths()[0].Seconds, kMaxInt);
  EXPECT_EQ(AllVisitLengths()[3].Visits, 1);
  EXPECT_EQ(AllVisitLengths()[3].Seconds, 100);
  EXPECT_EQ(NonRobotVisitLengths()[0].Seconds, 100);
  EXPECT_EQ(Keys(Month().Visits.NonRobotExit), KeyList{"/out"});
}

TEST_F(VisitErrors, HitBeyondTheLastSlotJoinsNoVisit) {
  OpenVisitors(1, kMaxSlots, 0);
  EXPECT_EQ(SlotCount(), kMaxSlots);
  EXPECT_EQ(SlotCapacity(), kMaxSlots);
  EXPECT_TRUE(log_.entries.empty());
  Hit("one too many", 1);
  Hit("another", 1);
  EXPECT_EQ(SlotCount(), kMaxSlots);
  ASSERT_EQ(log_.entries.size(), 1U) << "one warning a month";
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "HitwickError tracking visit : Overflow");
  Hit("10.0.5", 2);
  CloseAllVisits();
  EXPECT_EQ(AllVisitLengths()[0].Visits, kMaxSlots);
  EXPECT_EQ(AllVisitLengths()[0].Fetches, kMaxSlots + 1);
}

TEST_F(VisitErrors, SlotsFreedByTheTimeoutAreUsedAgainAfterTheLimit) {
  OpenVisitors(1, kMaxSlots, 0);
  Hit("too early", 1210);
  EXPECT_EQ(VisitsSoFar(), 0);
  Hit("in time", 1211);
  EXPECT_EQ(VisitsSoFar(), kMaxSlots);
  CloseAllVisits();
  EXPECT_EQ(VisitsSoFar(), kMaxSlots + 1);
  EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(VisitErrors, FullSlotsAreReportedAgainInTheNextMonth) {
  for (int month = 0; month < 2; ++month) {
    InitVisits();
    OpenVisitors(1, kMaxSlots + 2, 0);
  }
  EXPECT_EQ(log_.Texts(), (KeyList{"HitwickError tracking visit : Overflow",
                                   "HitwickError tracking visit : Overflow"}));
}

TEST_F(VisitErrors, HitWithoutAVisitStillCounts) {
  OpenVisitors(1, kMaxSlots, 90000);
  stats::LogRecord record;
  record.day = 1;
  record.hour = 1;
  record.uriStem = "/counted";
  record.clientAddress = "one too many";
  record.status = "200";
  record.hostLabel = " [host] ";
  mdlMonth::AddHit(record);
  EXPECT_EQ(Month().TotalHits, 1.0F);
  EXPECT_EQ(Month().HostLabel, " [host] ");
  EXPECT_EQ(log_.Texts(), KeyList{"HitwickError tracking visit : Overflow"});
}

}  // namespace
