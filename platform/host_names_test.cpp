#include "platform/host_names.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/service.h"
#include "tests/fakes/fake_host_names.h"

namespace platform {
namespace {

// What holds for every resolver; the parameter tells whether a fake stands in. What a real one
// answers for an address depends on the machine's network and is not tested.
class HostNamesTest : public testing::TestWithParam<bool> {
 protected:
  HostNamesTest() {
    fake_.names["127.0.0.1"] = "localhost";
    if (GetParam()) replacement_ = std::make_unique<Replacement<HostNames>>(fake_);
  }

 private:
  fakes::FakeHostNames fake_;
  std::unique_ptr<Replacement<HostNames>> replacement_;
};

TEST_P(HostNamesTest, StartsAndStops) {
  EXPECT_TRUE(TheHostNames().Start());
  TheHostNames().Stop();
}

TEST_P(HostNamesTest, WhatIsNoAddressIsNotAskedFor) {
  ASSERT_TRUE(TheHostNames().Start());
  for (const std::string& address :
       {std::string("-"), std::string(), std::string("not an address"), std::string("1.2.3.4.5"),
        std::string("300.1.1.1"), std::string("09.1.1.1"), std::string("1.65536.1"),
        std::string("4294967296"), std::string("255.255.255.255"), std::string("12:34"),
        std::string("127.0.0.1\0x", 11)}) {
    std::string name = "untouched";
    std::string error;
    EXPECT_EQ(TheHostNames().NameOf(address, &name, &error), LookupResult::kNotAddress) << address;
    EXPECT_EQ(name, "untouched");
  }
  TheHostNames().Stop();
}

// The result and the name that a spelling of an address leads to.
std::string Outcome(const std::string& address) {
  std::string name;
  std::string error;
  const LookupResult result = TheHostNames().NameOf(address, &name, &error);
  return std::to_string(static_cast<int>(result)) + " " + name;
}

// 127.0.0.1 has a name on most machines, and all spellings have the same outcome on any.
TEST_P(HostNamesTest, VersionFourAddressMayBeSpeltAsInetAddrTakesIt) {
  ASSERT_TRUE(TheHostNames().Start());
  const std::string outcome = Outcome("127.0.0.1");
  EXPECT_NE(outcome, Outcome("-"));
  for (const char* spelling :
       {"127.1", "0177.0.0.1", "0x7f.0.1", "2130706433", "127.000.000.001"}) {
    EXPECT_EQ(Outcome(spelling), outcome) << spelling;
  }
  TheHostNames().Stop();
}

TEST_P(HostNamesTest, LookupsMayRunAtTheSameTime) {
  const std::string outcome = Outcome("127.0.0.1");
  std::vector<std::thread> threads;
  std::atomic<int> same = 0;
  HostNames& resolver = TheHostNames();
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      std::string name;
      std::string error;
      if (!resolver.Start()) return;
      const LookupResult result = resolver.NameOf("127.0.0.1", &name, &error);
      same += std::to_string(static_cast<int>(result)) + " " + name == outcome;
      resolver.Stop();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, 8);
}

TEST_P(HostNamesTest, LocalNameStandsInABufferFilledUpWithZeros) {
  ASSERT_TRUE(TheHostNames().Start());
  std::string buffer;
  ASSERT_TRUE(TheHostNames().LocalNameBuffer(&buffer));
  ASSERT_EQ(buffer.size(), 256u);
  const std::size_t end = buffer.find('\0');
  ASSERT_NE(end, std::string::npos);
  EXPECT_GT(end, 0u);
  EXPECT_EQ(buffer.find_first_not_of('\0', end), std::string::npos);
  TheHostNames().Stop();
}

INSTANTIATE_TEST_SUITE_P(FakeAndReal, HostNamesTest, testing::Values(true, false),
                         [](const auto& suite) { return suite.param ? "Fake" : "Real"; });

TEST(FakeHostNamesTest, AnswersFromItsTables) {
  fakes::FakeHostNames fake;
  fake.names["10.0.0.1"] = "one.example";
  fake.timing_out.insert("10.0.0.2");
  fake.failures["10.0.0.3"] = "The resolver is broken";
  std::string name;
  std::string error;
  EXPECT_EQ(fake.NameOf("10.0.0.1", &name, &error), LookupResult::kFound);
  EXPECT_EQ(name, "one.example");
  EXPECT_EQ(fake.NameOf("10.0.0.2", &name, &error), LookupResult::kTimedOut);
  EXPECT_EQ(fake.NameOf("10.0.0.3", &name, &error), LookupResult::kFailed);
  EXPECT_EQ(error, "The resolver is broken");
  EXPECT_EQ(fake.asked.size(), 3u);
}

}  // namespace
}  // namespace platform
