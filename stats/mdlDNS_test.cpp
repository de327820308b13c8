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

  // Asks for the first `count` of the addresses that get no answer.
  void TimeOut(int count) {
    for (int i = 1; i <= count; ++i) {
      EXPECT_EQ(mdlDNS::HostNameOf("203.0.113." + std::to_string(i)), "");
    }
  }

  fakes::FakeHostNames resolver_;
  fakes::RecordingEventLog log_;
  platform::Replacement<platform::HostNames> use_resolver_{resolver_};
  platform::Replacement<platform::EventLog> use_log_{log_};
};

const char kGaveUp[] =
    "Hitwick: Name lookups timed out; the remaining addresses of this page are shown without "
    "names";

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
    mdlDNS::BeginPage();
    EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
    EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.99"), "");
  }
  EXPECT_THAT(resolver_.asked, ElementsAre("192.0.2.1", "192.0.2.99"));
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
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
}

TEST_F(HostNames, FailureIsWarnedOfOnceAndGivesNothing) {
  resolver_.failures["192.0.2.66"] = "Broken resolver";
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.66"), "");
  mdlDNS::BeginPage();
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

TEST_F(HostNames, TimedOutAddressIsAskedForOnceAPage) {
  TimeOut(1);
  TimeOut(1);
  EXPECT_THAT(resolver_.asked, ElementsAre("203.0.113.1"));
  mdlDNS::BeginPage();
  resolver_.timing_out.clear();
  resolver_.names["203.0.113.1"] = "late.example.org";
  EXPECT_EQ(mdlDNS::HostNameOf("203.0.113.1"), "late.example.org");
}

TEST_F(HostNames, ThreeTimeoutsInARowEndThePagesLookups) {
  TimeOut(3);
  EXPECT_EQ(log_.entries.size(), 1U);
  EXPECT_TRUE(log_.ContainsWarning(kGaveUp));
  TimeOut(4);
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "");
  EXPECT_EQ(resolver_.asked.size(), 3U);
  EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(HostNames, KnownNamesAreGivenAfterTheLookupsHaveEnded) {
  mdlDNS::HostNameOf("192.0.2.1");
  TimeOut(3);
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
}

TEST_F(HostNames, AnswerInBetweenStartsTheCountAnew) {
  TimeOut(2);
  mdlDNS::HostNameOf("192.0.2.99");
  TimeOut(4);
  EXPECT_EQ(resolver_.asked.size(), 5U);
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(HostNames, NextPageAsksAgain) {
  TimeOut(3);
  mdlDNS::BeginPage();
  EXPECT_EQ(mdlDNS::HostNameOf("192.0.2.1"), "one.example.org");
  TimeOut(3);
  EXPECT_EQ(log_.CountWith("timed out"), 2);
}

TEST_F(HostNames, AfterAPageWithoutAnswersOneMoreTimeoutEndsTheNextPages) {
  TimeOut(3);
  for (int page = 2; page <= 4; ++page) {
    mdlDNS::BeginPage();
    TimeOut(4);
    EXPECT_EQ(resolver_.asked.size(), 2U + static_cast<std::size_t>(page));
  }
  EXPECT_EQ(log_.CountWith("timed out"), 4);
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
