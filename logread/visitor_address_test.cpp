// Which address a balancer's field gives, and how a record takes it over.
#include "logread/visitor_address.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "logread/reader_fixture.h"
#include "logread/record_parser.h"

namespace {

using logread::FirstAddress;

TEST(FirstAddress, LosesPortAndBrackets) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"203.0.113.7", "203.0.113.7"},
      {"203.0.113.7:33453", "203.0.113.7"},
      {"2001:db8::7", "2001:db8::7"},
      {"[2001:DB8::7]", "2001:DB8::7"},
      {"[2001:db8::7]:33453", "2001:db8::7"},
      {"::1", "::1"},
      {"::", "::"},
      {"1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8"},
      {"::ffff:203.0.113.7", "::ffff:203.0.113.7"},
      {"1:2:3:4:5:6:203.0.113.7", "1:2:3:4:5:6:203.0.113.7"},
      {"255.0.0.255", "255.0.0.255"},
  };
  for (const auto& [list, address] : cases) EXPECT_EQ(FirstAddress(list), address) << list;
}

TEST(FirstAddress, IsTheFirstOfTheList) {
  EXPECT_EQ(FirstAddress("203.0.113.7:33453,+10.0.0.1:49770"), "203.0.113.7");
  EXPECT_EQ(FirstAddress("+203.0.113.7+,10.0.0.1"), "203.0.113.7");
  EXPECT_EQ(FirstAddress("[2001:db8::7]:1,203.0.113.7"), "2001:db8::7");
  EXPECT_EQ(FirstAddress("unknown,+,-,203.0.113.7"), "203.0.113.7");
  EXPECT_EQ(FirstAddress("203.0.113.7,"), "203.0.113.7");
}

TEST(FirstAddress, IsEmptyWithoutAny) {
  for (const char* list : {"",
                           "-",
                           ",",
                           "+",
                           "unknown",
                           "203.0.113",
                           "203.0.113.7.1",
                           "203.0.113.256",
                           "203.0.113.",
                           "203.0.113.1234",
                           "203.0.113.x",
                           ":80",
                           ":::",
                           "1::2::3",
                           "12345::",
                           "1:2:3:4:5:6:7",
                           "1:2:3:4:5:6:7:8:9",
                           "1:2:3:4:5:6:7::8",
                           "g::1",
                           "203.0.113.7::1",
                           "::203.0.113.7:1",
                           "[",
                           "[]",
                           "[203.0.113.7",
                           "[x]:80",
                           "1:2:3:4:5:6:7:203.0.113.7"}) {
    EXPECT_EQ(FirstAddress(list), "") << list;
  }
}

class VisitorField : public ReaderTest {
 protected:
  VisitorField() { State().Settings.ClientIPField = "X-Forwarded-For"; }

  // The visitors of a log with these columns and this record.
  List Visitors(const std::string& columns, const std::string& record) {
    ReadLines({"#Fields: cs-uri-stem " + columns, "/x " + record});
    return stats::Keys(Month().ClientAddresses);
  }
};

TEST_F(VisitorField, HoldsTheAddressWhereverItStands) {
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "10.0.0.1 203.0.113.7:33453,+10.0.0.1:49770"),
            List{"203.0.113.7"});
  EXPECT_EQ(Visitors("X-Forwarded-For c-ip", "203.0.113.8 10.0.0.1"), List{"203.0.113.8"});
  EXPECT_EQ(Visitors("X-Forwarded-For", "203.0.113.9"), List{"203.0.113.9"});
  EXPECT_EQ(Visitors("c-ip x-forwarded-for", "10.0.0.1 [2001:db8::7]:80"), List{"2001:db8::7"});
}

TEST_F(VisitorField, FallsBackToTheConnectionsAddress) {
  for (const char* value : {"-", "", "unknown", "10.0.0"}) {
    EXPECT_EQ(Visitors("c-ip X-Forwarded-For", std::string("10.0.0.1 ") + value), List{"10.0.0.1"})
        << value;
  }
  EXPECT_EQ(Visitors("c-ip X-Other", "10.0.0.1 203.0.113.7"), List{"10.0.0.1"});
  EXPECT_EQ(Visitors("X-Forwarded-For", "-"), List{});
}

TEST_F(VisitorField, OwnAddressesOfTheMachineCountAsOne) {
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "10.0.0.1 ::1"), List{"127.0.0.1"});
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "FE80::1 -"), List{"127.0.0.1"});
}

TEST_F(VisitorField, FiltersSeeTheVisitorAndNotTheBalancer) {
  mdlFilters::SetFilter("Balancer", false, "c-ip", "10.*");
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "10.0.0.1 203.0.113.7"), List{"203.0.113.7"});
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "10.0.0.1 -"), List{});
  mdlFilters::Reset();
  mdlFilters::SetFilter("Visitor", false, "c-ip", "203.*");
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", "10.0.0.1 203.0.113.7"), List{});
}

TEST_F(VisitorField, FieldOfTheReportServesBothWays) {
  State().Settings.ClientIPField = "cs-username";
  EXPECT_EQ(Visitors("c-ip cs-username", "10.0.0.1 203.0.113.7"), List{"203.0.113.7"});
  EXPECT_EQ(stats::Keys(Month().UserNames), List{"203.0.113.7"});
}

TEST_F(VisitorField, IsLookedForAgainWhenTheSettingHasChanged) {
  const std::string record = "10.0.0.1 203.0.113.7";
  EXPECT_EQ(Visitors("c-ip X-Forwarded-For", record), List{"203.0.113.7"});
  State().Settings.ClientIPField = "c-ip";
  ReadLines({"/x " + record});  // a file without a field list of its own
  EXPECT_EQ(stats::Keys(Month().ClientAddresses), List{"10.0.0.1"});
}

// The default keeps the fast road of regular lines.
TEST_F(VisitorField, DefaultChangesNothing) {
  for (const char* field : {"c-ip", ""}) {
    State().Settings.ClientIPField = field;
    ReadLines({"#Fields: date time c-ip X-Forwarded-For cs-uri-stem",
               "2007-01-15 10:00:00 10.0.0.1 203.0.113.7 /x"});
    EXPECT_EQ(stats::Keys(Month().ClientAddresses), List{"10.0.0.1"});
    EXPECT_TRUE(mdlW3C::Reading().regular.possible());
  }
}

TEST_F(VisitorField, RegularAndOtherLinesGiveTheSameVisitors) {
  ReadLines({"#Fields: date time c-ip cs-uri-stem X-Forwarded-For",
             "2007-01-15 10:00:00 10.0.0.1 /x 203.0.113.7",
             "2007-01-15 10:00:00 10.0.0.1  /x 203.0.113.7"});
  EXPECT_EQ(stats::Keys(Month().ClientAddresses), List{"203.0.113.7"});
  EXPECT_EQ(Month().TotalHits, 2.0F);
}

}  // namespace
