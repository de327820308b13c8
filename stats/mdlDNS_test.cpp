#include "stats/mdlDNS.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/mdlConfigs.h"
#include "platform/service.h"
#include "tests/fakes/fake_host_names.h"
#include "tests/fakes/recording_event_log.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HostNames : public testing::Test {
 protected:
  HostNames() {
    mdlConfigs::ResetRun();
    mdlDNS::Reset();
    resolver_.names = {{"192.0.2.1", "one.example.org"}, {"2001:db8::7", "seven.example.org"}};
    resolver_.timing_out = {"203.0.113.1", "203.0.113.2", "203.0.113.3", "203.0.113.4"};
  }
  ~HostNames() override {
    mdlDNS::Reset();
    mdlConfigs::ResetRun();
  }

  fakes::FakeHostNames resolver_;
  fakes::RecordingEventLog log_;
  platform::Replacement<platform::HostNames> use_resolver_{resolver_};
  platform::Replacement<platform::EventLog> use_log_{log_};
};

const char kGaveUp[] =
    "Hitwick: Name lookups timed out; this run asks for no more names and shows addresses without";

TEST_F(HostNames, NameIsGivenWithoutBlanksAtItsEnds) {
  resolver_.names["192.0.2.2"] = "  two words.example.org ";
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.2"), "two words.example.org");
}

TEST_F(HostNames, VersionSixAddressIsLookedUpToo) {
  EXPECT_EQ(mdlDNS::HostNameOf("2001:db8::7"), "seven.example.org");
}

TEST_F(HostNames, AddressWithoutNameGivesNothing) {
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.99"), "");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(HostNames, EachAddressIsAskedForOnce) {
  for (int page = 0; page < 13; ++page) {
    mdlDNS::LookUpPage({"192.0.2.1", "192.0.2.99", "192.0.2.1"});
    EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
    EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.99"), "");
  }
  EXPECT_THAT(resolver_.Asked(), ElementsAre("192.0.2.1", "192.0.2.99"));
}

TEST_F(HostNames, NetworkingIsStartedAndStoppedAroundEachRealLookup) {
  mdlDNS::HostNameOf("192.0.2.1");
  mdlDNS::HostNameOf("192.0.2.99");
  mdlDNS::HostNameOf("192.0.2.1");
  EXPECT_EQ(resolver_.starts, 2);
  EXPECT_EQ(resolver_.stops, 2);
}

TEST_F(HostNames, WithoutNetworkingNothingIsAskedNorRemembered) {
  resolver_.can_start = false;
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "");
  EXPECT_THAT(resolver_.asked, IsEmpty());
  EXPECT_EQ(resolver_.stops, 1);
  resolver_.can_start = true;
  mdlDNS::LookUpPage({"192.0.2.1"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
}

TEST_F(HostNames, FailureIsWarnedOfOnceAndGivesNothing) {
  resolver_.failures["192.0.2.66"] = "Broken resolver";
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.66"), "");
  mdlDNS::LookUpPage({"192.0.2.66"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.66"), "");
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_TRUE(log_.ContainsWarning(
      "Hitwick: Couldn't lookup name for IP address 192.0.2.66. Code: Broken resolver"));
}

TEST_F(HostNames, TranslationsAreLoggedForEveryCall) {
  mdlConfigs::Run().LogTranslations = true;
  mdlDNS::HostNameOf("192.0.2.1");
  mdlDNS::HostNameOf("192.0.2.99");
  mdlDNS::HostNameOf("192.0.2.1");
  EXPECT_THAT(log_.Texts(),
              ElementsAre("Hitwick : Translated IP '192.0.2.1' to 'one.example.org'",
                          "Hitwick : Translated IP '192.0.2.99' to ''",
                          "Hitwick : Translated IP '192.0.2.1' to 'one.example.org'"));
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kInformation);
}

std::vector<std::string> Addresses(const std::string& network, int count) {
  std::vector<std::string> addresses;
  for (int i = 1; i <= count; ++i) addresses.push_back(network + std::to_string(i));
  return addresses;
}

TEST_F(HostNames, EveryAddressOfAPageIsAskedForBeforeItsRowsAreWritten) {
  const std::vector<std::string> page = Addresses("198.51.100.", 100);
  for (const std::string& ip : page) resolver_.names[ip] = "host-" + ip;
  mdlDNS::LookUpPage(page);
  EXPECT_EQ(resolver_.asked.size(), page.size());
  for (const std::string& ip : page) EXPECT_EQ(mdlDNS::HostNameOf(ip), "host-" + ip);
  EXPECT_EQ(resolver_.asked.size(), page.size());
  EXPECT_EQ(resolver_.stops, 100);
}

TEST_F(HostNames, EntriesStandInTheOrderOfTheRows) {
  mdlConfigs::Run().LogTranslations = true;
  resolver_.failures = {{"192.0.2.66", "Broken resolver"}, {"192.0.2.67", "Out of handles"}};
  mdlDNS::LookUpPage({"192.0.2.66", "192.0.2.1", "192.0.2.67"});
  EXPECT_THAT(log_.entries, IsEmpty());
  for (const char* ip : {"192.0.2.67", "192.0.2.1", "192.0.2.66"}) mdlDNS::HostNameOf(ip);
  EXPECT_THAT(
      log_.Texts(),
      ElementsAre("Hitwick: Couldn't lookup name for IP address 192.0.2.67. Code: Out of handles",
                  "Hitwick : Translated IP '192.0.2.67' to ''",
                  "Hitwick : Translated IP '192.0.2.1' to 'one.example.org'",
                  "Hitwick: Couldn't lookup name for IP address 192.0.2.66. Code: Broken resolver",
                  "Hitwick : Translated IP '192.0.2.66' to ''"));
}

TEST_F(HostNames, OneAnswerKeepsAPageFromGivingUp) {
  resolver_.names["198.51.100.1"] = "first.example.org";
  std::vector<std::string> page = Addresses("198.51.100.", 50);
  resolver_.timing_out.insert(page.begin() + 1, page.end() - 1);
  resolver_.names[page.back()] = "last.example.org";
  mdlDNS::HostNameOf(page.front());
  mdlDNS::LookUpPage(page);
  EXPECT_EQ(resolver_.asked.size(), 50U);
  EXPECT_EQ(mdlDNS::HostNameOf(page.back()), "last.example.org");
  mdlDNS::LookUpPage({"192.0.2.1"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(HostNames, TimedOutAddressIsAskedForOnceARun) {
  for (int page = 0; page < 3; ++page) {
    mdlDNS::LookUpPage({"192.0.2.1", "203.0.113.1"});
    EXPECT_EQ(mdlDNS::HostNameOf("203.0.113.1"), "");
  }
  EXPECT_THAT(resolver_.Asked(), ElementsAre("192.0.2.1", "203.0.113.1"));
}

TEST_F(HostNames, PageThatNobodyAnswersEndsTheLookupsOfTheRun) {
  mdlDNS::LookUpPage({"203.0.113.1", "203.0.113.2"});
  const std::size_t asked = resolver_.asked.size();
  mdlDNS::LookUpPage({"192.0.2.1", "203.0.113.3"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "");
  EXPECT_EQ(mdlDNS::HostNameOf("203.0.113.2"), "");
  EXPECT_EQ(resolver_.asked.size(), asked);
  EXPECT_THAT(log_.Texts(), ElementsAre(kGaveUp));
  EXPECT_TRUE(log_.ContainsWarning(kGaveUp));
}

TEST_F(HostNames, OwnAddressesAndWhatIsNoneDoNotSpeakForANameServer) {
  resolver_.names["127.0.0.1"] = "localhost";
  mdlDNS::LookUpPage({"127.0.0.1", "-", "203.0.113.1"});
  EXPECT_TRUE(log_.ContainsWarning(kGaveUp));
  EXPECT_EQ(mdlDNS::HostNameOf("127.0.0.1"), "localhost");
  mdlDNS::LookUpPage({"192.0.2.1"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "");
}

TEST_F(HostNames, OwnAddressesAloneAreNoReasonToGiveUp) {
  mdlDNS::LookUpPage({"127.0.0.1", "-"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(HostNames, FailureIsAnAnswer) {
  resolver_.failures["192.0.2.66"] = "Broken resolver";
  mdlDNS::HostNameOf("192.0.2.66");
  mdlDNS::LookUpPage({"192.0.2.66", "203.0.113.1"});
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  EXPECT_EQ(log_.CountWith("timed out"), 0);
}

TEST_F(HostNames, KnownNamesAreGivenAfterTheRunHasGivenUp) {
  mdlDNS::HostNameOf("192.0.2.1");
  mdlDNS::LookUpPage({"203.0.113.1"});
  ASSERT_TRUE(log_.ContainsWarning(kGaveUp));
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
}

TEST_F(HostNames, NextRunAsksAgain) {
  mdlDNS::LookUpPage({"203.0.113.1"});
  mdlDNS::BeginRun();
  resolver_.timing_out.erase("203.0.113.1");
  resolver_.names["203.0.113.1"] = "late.example.org";
  mdlDNS::LookUpPage({"203.0.113.1"});
  EXPECT_EQ(mdlDNS::HostNameOf("203.0.113.1"), "late.example.org");
  mdlDNS::LookUpPage({"203.0.113.2"});
  EXPECT_EQ(log_.CountWith("timed out"), 2);
}

TEST_F(HostNames, WithoutTimeoutNothingIsGivenUp) {
  mdlDNS::LookUpPage(Addresses("198.51.100.", 40));
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(HostNames, LocalNameComesFromTheZeroPaddedBuffer) {
  EXPECT_EQ(mdlDNS::LocalHostName(), "reporter");
  EXPECT_EQ(resolver_.starts, 1);
  EXPECT_EQ(resolver_.stops, 0);
}

TEST_F(HostNames, LocalNameKeepsCharactersFromDashToLowerZ) {
  resolver_.local_name =
      "my host-1,{2}.\xC3\xA9"
      "z";
  EXPECT_EQ(mdlDNS::LocalHostName(), "myhost-12.z");
}

TEST_F(HostNames, LocalNameIsTakenFromTheWholeBuffer) {
  resolver_.local_name = std::string("web1\0old", 8);
  EXPECT_EQ(mdlDNS::LocalHostName(), "web1old");
}

TEST_F(HostNames, LocalNameThatCannotBeHadIsLocalhost) {
  resolver_.has_local_name = false;
  EXPECT_EQ(mdlDNS::LocalHostName(), "localhost");
}

TEST_F(HostNames, LocalNameIsGivenEvenWhenNetworkingDoesNotStart) {
  resolver_.can_start = false;
  EXPECT_EQ(mdlDNS::LocalHostName(), "reporter");
  EXPECT_FALSE(mdlDNS::StartNetworking());
}

}  // namespace
