#include "stats/name_lookups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "config/mdlConfigs.h"
#include "platform/service.h"
#include "tests/fakes/fake_host_names.h"

namespace {

using name_lookups::Answer;
using name_lookups::AskAll;
using name_lookups::kAtOnce;
using platform::LookupResult;
using Answers = std::vector<std::optional<Answer>>;
using std::chrono::milliseconds;

// For lookups that all hang, and for those of which some have to be answered in time.
constexpr milliseconds kShort{50};
constexpr milliseconds kInTime{1000};

class NameLookups : public testing::Test {
 protected:
  // `count` addresses from number `first` on.
  static std::vector<std::string> Addresses(std::size_t count, std::size_t first = 1) {
    std::vector<std::string> addresses;
    for (std::size_t i = first; i < first + count; ++i) {
      addresses.push_back("10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256));
    }
    return addresses;
  }
  static std::size_t CountOf(const Answers& answers, LookupResult result) {
    std::size_t count = 0;
    for (const std::optional<Answer>& answer : answers) count += answer && answer->result == result;
    return count;
  }
  static std::size_t NotAsked(const Answers& answers) {
    return static_cast<std::size_t>(std::count(answers.begin(), answers.end(), std::nullopt));
  }

  fakes::FakeHostNames resolver_;
  platform::Replacement<platform::HostNames> use_resolver_{resolver_};
};

TEST_F(NameLookups, AnswersStandInTheOrderOfTheAddresses) {
  const std::vector<std::string> addresses = Addresses(200);
  for (const std::string& address : addresses) resolver_.names[address] = "host-" + address;
  resolver_.names.erase(addresses[7]);
  resolver_.failures[addresses[9]] = "Broken";
  const Answers answers = AskAll(addresses);
  ASSERT_EQ(answers.size(), 200u);
  for (std::size_t i = 0; i < answers.size(); ++i) {
    ASSERT_TRUE(answers[i]) << i;
    EXPECT_EQ(answers[i]->name, i == 7 || i == 9 ? "" : "host-" + addresses[i]);
  }
  EXPECT_EQ(answers[7]->result, LookupResult::kNoName);
  EXPECT_EQ(answers[9]->result, LookupResult::kFailed);
  EXPECT_EQ(answers[9]->error, "Broken");
}

TEST_F(NameLookups, WindowsStayResponsiveWhileTheResolverIsSilent) {
  int calls = 0;
  mdlConfigs::Run().Ui.stay_responsive = [&calls] { ++calls; };
  resolver_.hanging = {Addresses(1).front()};
  AskAll(Addresses(1), false, milliseconds(300));
  mdlConfigs::ResetRun();
  EXPECT_GE(calls, 3);
}

TEST_F(NameLookups, NothingToAskIsNoTrouble) { EXPECT_TRUE(AskAll({}).empty()); }

TEST_F(NameLookups, ThirtyTwoRunAtTheSameTimeAndNoMore) {
  resolver_.gather = kAtOnce;
  AskAll(Addresses(200));
  EXPECT_EQ(resolver_.most_at_once, 32u);
  EXPECT_EQ(resolver_.asked.size(), 200u);
}

TEST_F(NameLookups, EachLookupStartsAndStopsTheSocketsLibrary) {
  AskAll(Addresses(40));
  EXPECT_EQ(resolver_.starts, 40);
  EXPECT_EQ(resolver_.stops, 40);
}

TEST_F(NameLookups, WithoutTheSocketsLibraryNothingIsAsked) {
  resolver_.can_start = false;
  EXPECT_EQ(NotAsked(AskAll(Addresses(40))), 40u);
  EXPECT_TRUE(resolver_.asked.empty());
  EXPECT_EQ(resolver_.stops, 40);
}

TEST_F(NameLookups, TimeoutBeforeAnyAnswerEndsTheAsking) {
  const std::vector<std::string> addresses = Addresses(100);
  resolver_.timing_out.insert(addresses.begin(), addresses.end());
  const Answers answers = AskAll(addresses);
  const std::size_t timed_out = CountOf(answers, LookupResult::kTimedOut);
  EXPECT_GE(timed_out, 1u);
  EXPECT_LE(timed_out, kAtOnce);
  EXPECT_EQ(NotAsked(answers), 100 - timed_out);
}

TEST_F(NameLookups, TimeoutAfterAnAnswerDoesNot) {
  const std::vector<std::string> addresses = Addresses(100);
  resolver_.timing_out.insert(addresses.begin(), addresses.end());
  EXPECT_EQ(NotAsked(AskAll(addresses, /*answered=*/true)), 0u);
  EXPECT_EQ(resolver_.asked.size(), 100u);
}

TEST_F(NameLookups, NobodyWaitsForAResolverThatHangs) {
  const std::vector<std::string> addresses = Addresses(3);
  resolver_.hanging.insert(addresses[1]);
  resolver_.names[addresses[2]] = "third";
  const Answers answers = AskAll(addresses, true, kInTime);
  EXPECT_EQ(answers[1]->result, LookupResult::kTimedOut);
  EXPECT_EQ(answers[2]->name, "third");
}

// The threads that hang are replaced, so that the others are asked for all the same; what they
// bring in the end is too late.
TEST_F(NameLookups, EveryAddressIsAskedForThoughManyHang) {
  const std::vector<std::string> addresses = Addresses(120);
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    if (i % 2 == 0) resolver_.hanging.insert(addresses[i]);
  }
  const Answers answers = AskAll(addresses, true, kInTime);
  EXPECT_EQ(CountOf(answers, LookupResult::kTimedOut), 60u);
  EXPECT_EQ(CountOf(answers, LookupResult::kNoName), 60u);
}

TEST_F(NameLookups, ThreadsLeftBehindAreLimited) {
  const std::vector<std::string> addresses = Addresses(2 * name_lookups::kMostThreads);
  resolver_.hanging.insert(addresses.begin(), addresses.end());
  const Answers answers = AskAll(addresses, true, kShort);
  EXPECT_EQ(CountOf(answers, LookupResult::kTimedOut), name_lookups::kMostThreads);
  EXPECT_EQ(NotAsked(answers), name_lookups::kMostThreads);
  // Not one more either, but no waiting.
  EXPECT_EQ(NotAsked(AskAll({"192.0.2.1"}, true, kShort)), 1u);
}

class OutOfMemory : public fakes::FakeHostNames {
 public:
  LookupResult NameOf(const std::string&, std::string*, std::string*) override {
    throw std::bad_alloc();
  }
};

TEST_F(NameLookups, ErrorInALookupIsItsAnswer) {
  OutOfMemory resolver;
  const platform::Replacement<platform::HostNames> use_resolver(resolver);
  const Answers answers = AskAll({"192.0.2.1"});
  ASSERT_TRUE(answers[0]);
  EXPECT_EQ(answers[0]->result, LookupResult::kFailed);
  EXPECT_EQ(answers[0]->error, "std::bad_alloc");
  EXPECT_EQ(resolver.stops, 1);
}

TEST_F(NameLookups, OnlyAnAnswerFromOutsideShowsLife) {
  EXPECT_TRUE(name_lookups::ShowsLife("192.0.2.1", {.result = LookupResult::kFound}));
  EXPECT_TRUE(name_lookups::ShowsLife("192.0.2.1", {.result = LookupResult::kNoName}));
  EXPECT_TRUE(name_lookups::ShowsLife("192.0.2.1", {.result = LookupResult::kFailed}));
  EXPECT_FALSE(name_lookups::ShowsLife("192.0.2.1", {.result = LookupResult::kTimedOut}));
  EXPECT_FALSE(name_lookups::ShowsLife("-", {.result = LookupResult::kNotAddress}));
  EXPECT_FALSE(name_lookups::ShowsLife("127.0.0.1", {.result = LookupResult::kFound}));
}

}  // namespace
