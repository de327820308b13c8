// The fields of a record and what is dropped. Dates, times and filters have test files of their
// own.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "logread/reader_fixture.h"

namespace {

class RecordFields : public ReaderTest {
 protected:
  // Reads one record of an address, a URL and the given fields.
  void ReadRecord(const std::string& fields, const std::string& values) {
    files_.files.clear();
    ReadLines({"#Fields: c-ip cs-uri-stem " + fields, "10.0.0.1 /x " + values});
  }
  std::string HostLabelOf(const std::string& values) {
    ReadRecord("cs-host", values);
    return Month().HostLabel;
  }
  List AddressesOf(const std::string& address) {
    files_.files.clear();
    ReadLines({"#Fields: c-ip cs-uri-stem", address + " /x"});
    return Keys(Month().ClientAddresses);
  }
};

TEST_F(RecordFields, EveryFieldReachesTheStatistics) {
  ReadLines(
      {"#Fields: date time s-sitename s-ip cs-method cs-uri-stem cs-uri-query s-port cs-username "
       "c-ip cs(User-Agent) cs(Referer) cs-host sc-status sc-bytes cs-bytes time-taken",
       "2007-01-15 10:00:00 W3SVC1 192.168.0.1 GET /index.htm a=b 80 alice 10.0.0.1 Mozilla "
       "http://e.com/s?q=words www.e.com 200 1234 99 56"});
  EXPECT_EQ(Keys(Month().Methods), List{"GET"});
  EXPECT_EQ(Urls(), List{"/index.htm"});
  EXPECT_EQ(Keys(Month().UserNames), List{"alice"});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"10.0.0.1"});
  EXPECT_EQ(Keys(Month().UserAgents), List{"Mozilla"});
  EXPECT_EQ(Keys(Month().Referrers), List{"http://e.com/s"});
  EXPECT_EQ(Keys(Month().Queries), List{"words"});
  EXPECT_EQ(Keys(Month().StatusCodes), List{"200"});
  EXPECT_EQ(Month().HostLabel, " [www.e.com] ");
  EXPECT_EQ(Month().TotalBytes, 1234.0F);
  EXPECT_EQ(Month().TotalTimeTaken, 56.0F);
}

TEST_F(RecordFields, NamesCompareExactly) {
  ReadLines({"#Fields: C-IP cs-URI-stem cs(user-agent) sc-bytes", "a /x Mozilla 10"});
  EXPECT_EQ(Month().TotalHits, 1.0F) << "only the bytes are known";
  EXPECT_EQ(Month().TotalBytes, 10.0F);
  EXPECT_EQ(Month().ClientAddresses.Count(), 0);
  EXPECT_EQ(Month().SuccessUrls.Count(), 0);
  EXPECT_EQ(Month().UserAgents.Count(), 0);
}

TEST_F(RecordFields, UnknownNamesTakeTheirToken) {
  ReadLines({"#Fields: x c-ip y z cs-uri-stem", "1 a 2 3 /u"});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"a"});
  EXPECT_EQ(Urls(), List{"/u"});
}

TEST_F(RecordFields, LastOfARepeatedNameCounts) {
  ReadLines({"#Fields: c-ip cs-uri-stem cs-uri-stem", "a /1 /2"});
  EXPECT_EQ(Urls(), List{"/2"});
}

TEST_F(RecordFields, MissingTokensLeaveFieldsEmpty) {
  ReadRecord("cs-method sc-status sc-bytes time-taken cs(User-Agent)", "GET");
  EXPECT_EQ(Month().TotalHits, 1.0F);
  EXPECT_EQ(Keys(Month().Methods), List{"GET"});
  EXPECT_EQ(Month().StatusCodes.Count(), 0);
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(Month().UserAgents.Count(), 0);
}

TEST_F(RecordFields, NothingIsLeftOverFromTheRecordBefore) {
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method cs(Referer) sc-bytes time-taken cs-username",
             "a /1 GET http://e.com/?q=words 100 50 alice", "a /2"});
  EXPECT_EQ(Month().TotalHits, 2.0F);
  EXPECT_EQ(Month().TotalBytes, 100.0F);
  for (mdlMonth::TallyTable* table :
       {&Month().Methods, &Month().Referrers, &Month().Queries, &Month().UserNames}) {
    ASSERT_EQ(table->Count(), 1);
    EXPECT_EQ(table->At(1).Count, 1);
  }
}

TEST_F(RecordFields, SurplusTokensAreIgnored) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "a /x more and more"});
  EXPECT_EQ(Urls(), List{"/x"});
}

TEST_F(RecordFields, HyphensStayInTextsAndAreZeroInNumbers) {
  ReadRecord("cs-method sc-status sc-bytes time-taken cs(User-Agent) cs(Referer) cs-username",
             "- - - - - - -");
  EXPECT_EQ(Keys(Month().Methods), List{"-"});
  EXPECT_EQ(Keys(Month().StatusCodes), List{"-"});
  EXPECT_EQ(Keys(Month().UserAgents), List{"-"});
  EXPECT_EQ(Keys(Month().Referrers), List{"-"});
  EXPECT_EQ(Keys(Month().UserNames), List{"Anonymous"});
  EXPECT_EQ(Month().TotalBytes, 0.0F);
  EXPECT_EQ(Month().TotalTimeTaken, 0.0F);
}

TEST_F(RecordFields, LoopbackAndLinkLocalAddressesAreTheLocalMachine) {
  for (const char* address :
       {"::1", "::1%4", "::1234", "fe80::1", "FE80::1", "fe80:", "Fe80:abc"}) {
    EXPECT_EQ(AddressesOf(address), List{"127.0.0.1"}) << address;
  }
  for (const char* address : {"::2", "::", "fe8::1", "fe801::1", "1::1", "10.0.0.1"}) {
    EXPECT_EQ(AddressesOf(address), List{address});
  }
}

TEST_F(RecordFields, RequestsOwnQueryIsNotStored) {
  ReadRecord("cs-uri-query", "q=words");
  EXPECT_EQ(Month().Queries.Count(), 0);
  EXPECT_EQ(Urls(), List{"/x"});
}

TEST_F(RecordFields, HostLabelIsDecorated) {
  EXPECT_EQ(HostLabelOf("www.e.com:8080"), " [www.e.com:8080] ");
  EXPECT_EQ(HostLabelOf("-"), " [-] ");
  EXPECT_EQ(HostLabelOf(""), " [] ") << "the token is missing";
}

TEST_F(RecordFields, NoHostLabelWithoutItsField) {
  ReadRecord("cs-method", "GET");
  EXPECT_EQ(Month().HostLabel, "");
}

TEST_F(RecordFields, ServerNameIsKept) {
  EXPECT_EQ(mdlW3C::ServerName(), "");
  ReadRecord("s-computername", "WEB1");
  EXPECT_EQ(mdlW3C::ServerName(), "WEB1");
  ReadRecord("cs-method", "GET");
  EXPECT_EQ(mdlW3C::ServerName(), "WEB1");
}

using Referrers = RecordFields;

TEST_F(Referrers, QueryAndFragmentAreCut) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"/a/b?q=x#y", "/a/b"},
      {"/a/b#y", "/a/b"},
      {"/a#b?c", "/a"},
      {"/a?b?c", "/a"},
      {"/a#b#c", "/a"},
      {"http://e.com/", "http://e.com/"},
      {"?", "?"},
      {"#", "#"},
      {"-", "-"}};
  for (const auto& [referrer, stored] : cases) {
    ReadRecord("cs(Referer)", referrer);
    EXPECT_EQ(Keys(Month().Referrers), List{stored}) << referrer;
  }
}

TEST_F(Referrers, ReferrerOfAQueryAloneIsEmpty) {
  for (const char* referrer : {"?q=x", "#a", "??"}) {
    ReadRecord("cs(Referer)", referrer);
    EXPECT_EQ(Month().Referrers.Count(), 0) << referrer;
  }
}

TEST_F(Referrers, SearchWordsComeFromTheQueryWithItsFragment) {
  ReadRecord("cs(Referer)", "/a/b?q=x#y");
  EXPECT_EQ(Keys(Month().Queries), List{"x#y"});
  ReadRecord("cs(Referer)", "http://e.com/s?hl=en&q=cheap+flights%21&oq=x");
  EXPECT_EQ(Keys(Month().Queries), List{"cheap flights&#033;"});
}

TEST_F(Referrers, NoSearchWordsWithoutAQuery) {
  for (const char* referrer : {"-", "/a#?", "/q=x", "/a?Q=x", "?"}) {
    ReadRecord("cs(Referer)", referrer);
    EXPECT_EQ(Month().Queries.Count(), 0) << referrer;
  }
}

using Tokens = RecordFields;

TEST_F(Tokens, SeveralBlanksSeparateLikeOne) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "   a     /x   "});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"a"});
  EXPECT_EQ(Urls(), List{"/x"});
}

TEST_F(Tokens, TabIsAnOrdinaryCharacter) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "a\tb /x\t"});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"a\tb"});
  EXPECT_EQ(Urls(), List{"/x\t"});
}

TEST_F(Tokens, QuotesAndAngleBracketsBecomeUnderscores) {
  ReadLines({"#Fields: c-ip cs-uri-stem cs(User-Agent)", "a /\"x'<b>/ Moz+illa&\"'<>"});
  EXPECT_EQ(Urls(), List{"/_x__b_/"});
  EXPECT_EQ(Keys(Month().UserAgents), List{"Moz+illa&____"});
}

TEST_F(Tokens, SearchWordsAreMadeOfReplacedCharacters) {
  ReadRecord("cs(Referer)", "http://e.com/?q=\"<b>\"%3C");
  EXPECT_EQ(Keys(Month().Queries), List{"__b__&#060;"});
}

TEST_F(Tokens, FieldNamesAreReplacedToo) {
  ReadLines({"#Fields: c-ip cs-uri-stem \"cs-method\"", "a /x GET"});
  EXPECT_EQ(Month().Methods.Count(), 0);
  EXPECT_EQ(Urls(), List{"/x"});
}

class Cursor : public ReaderTest {
 protected:
  // Whether a record counts whose last token ends a line of `length` characters.
  bool LineOfLengthCounts(std::size_t length, const std::string& line_end) {
    files_.files.clear();
    mdlW3C::Reset();
    const std::string start = "a /";
    AddLog("ex070115.log", "#Fields: c-ip cs-uri-stem\n" + start +
                               std::string(length - start.size(), 'x') + line_end);
    Read(1, 2007);
    return Month().TotalHits == 1.0F;
  }
};

TEST_F(Cursor, LineOfThirtyTwoThousandSevenHundredSixtySixCharactersIsTheLongest) {
  for (const std::string line_end : {"\n", "\r\n", ""}) {
    EXPECT_TRUE(LineOfLengthCounts(32765, line_end));
    EXPECT_TRUE(LineOfLengthCounts(32766, line_end));
    EXPECT_FALSE(LineOfLengthCounts(32767, line_end));
    EXPECT_FALSE(LineOfLengthCounts(32768, line_end));
    EXPECT_FALSE(LineOfLengthCounts(65536 + 100, line_end));
  }
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(Cursor, TokensBeforeTheLimitOfALongLineCount) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "a /x " + std::string(70000, 'y')});
  EXPECT_EQ(Urls(), List{"/x"});
}

TEST_F(Cursor, TokenThatEndsAtTheLimitOfALongerLineCounts) {
  // The blank after the token stands at 32,767 or one further.
  for (const auto& [blank_at, urls] :
       std::vector<std::pair<std::size_t, std::size_t>>{{32767, 1}, {32768, 0}}) {
    files_.files.clear();
    ReadLines({"#Fields: c-ip cs-uri-stem", "a /" + std::string(blank_at - 4, 'x') + " more"});
    EXPECT_EQ(Urls().size(), urls) << blank_at;
  }
}

TEST_F(Cursor, BlanksMoveItToo) {
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method", "a /short" + std::string(100, ' '),
             "a /long" + std::string(40000, ' ')});
  EXPECT_EQ(Urls(), List{"/short"});
}

TEST_F(Cursor, FieldListEndsWhereItPassesTheLimit) {
  ReadLines({"#Fields: c-ip cs-uri-stem " + std::string(33000, 'x') + " cs-method", "a /x y GET"});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"a"});
  EXPECT_EQ(Urls(), List{"/x"});
  EXPECT_EQ(Month().Methods.Count(), 0);
}

class Numbers : public RecordFields {
 protected:
  // The bytes counted for a token; -1 when the record was dropped.
  double BytesOf(const std::string& token) {
    ReadRecord("sc-bytes", token);
    return Month().TotalHits == 0 ? -1 : static_cast<double>(Month().TotalBytes);
  }
};

TEST_F(Numbers, LeadingDigitsCount) {
  EXPECT_EQ(BytesOf("123"), 123);
  EXPECT_EQ(BytesOf("0012"), 12);
  EXPECT_EQ(BytesOf("12abc"), 12);
  EXPECT_EQ(BytesOf("1e3"), 1);
  EXPECT_EQ(BytesOf("1,000"), 1);
}

TEST_F(Numbers, NoLeadingDigitIsZero) {
  for (const char* token : {"-", "-5", "+5", "x12", ".5", "_9", ""}) {
    EXPECT_EQ(BytesOf(token), 0) << token;
  }
}

TEST_F(Numbers, FractionsAreRoundedHalfToEven) {
  EXPECT_EQ(BytesOf("2.5"), 2);
  EXPECT_EQ(BytesOf("3.5"), 4);
  EXPECT_EQ(BytesOf("2.51"), 3);
  EXPECT_EQ(BytesOf("2.4999"), 2);
  EXPECT_EQ(BytesOf("0.5"), 0);
  EXPECT_EQ(BytesOf("1.5"), 2);
  EXPECT_EQ(BytesOf("5."), 5);
  EXPECT_EQ(BytesOf("7.x"), 7);
  EXPECT_EQ(BytesOf("1.5.9"), 2);
}

TEST_F(Numbers, LimitsOfThirtyTwoBits) {
  EXPECT_EQ(BytesOf("2147483647"), 2147483648.0) << "the nearest single-precision number";
  EXPECT_EQ(BytesOf("2147483647.4"), 2147483648.0);
  EXPECT_EQ(BytesOf("2147483647.5"), -1);
  EXPECT_EQ(BytesOf("2147483648"), -1);
  EXPECT_EQ(BytesOf("99999999999999999999"), -1);
  EXPECT_EQ(BytesOf(std::string(5000, '9')), -1);
  EXPECT_EQ(BytesOf(std::string(5000, '0') + "7"), 7);
}

TEST_F(Numbers, ReceivedBytesOverflowDropsTheRecordToo) {
  ReadRecord("cs-bytes", "2147483648");
  EXPECT_EQ(Month().TotalHits, 0.0F);
}

class TimeTaken : public RecordFields {
 protected:
  float TimeOf(const std::string& fields, const std::string& values) {
    ReadRecord(fields, values);
    EXPECT_EQ(Month().TotalHits, 1.0F);
    return Month().TotalTimeTaken;
  }
};

TEST_F(TimeTaken, AboveTwentyMinutesCountsForStatusTwoHundredOnly) {
  EXPECT_EQ(TimeOf("sc-status time-taken", "404 1200000"), 1200000.0F);
  EXPECT_EQ(TimeOf("sc-status time-taken", "404 1200001"), 0.0F);
  EXPECT_EQ(TimeOf("sc-status time-taken", "200 1200001"), 1200001.0F);
  EXPECT_EQ(TimeOf("sc-status time-taken", "206 1200001"), 0.0F);
}

TEST_F(TimeTaken, OrderOfTheFieldsDoesNotMatter) {
  EXPECT_EQ(TimeOf("time-taken sc-status", "1200001 200"), 1200001.0F);
  EXPECT_EQ(TimeOf("time-taken sc-status", "1200001 404"), 0.0F);
  EXPECT_EQ(TimeOf("time-taken", "1200001"), 0.0F);
}

using DroppedRecords = RecordFields;

TEST_F(DroppedRecords, WithoutUrlAddressAndBytes) {
  ReadLines({"#Fields: cs-method sc-bytes", "GET 0", "GET -", "GET"});
  EXPECT_EQ(Month().TotalHits, 0.0F);
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(DroppedRecords, AnyOfTheThreeKeepsARecord) {
  ReadLines({"#Fields: sc-bytes", "1"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
  files_.files.clear();
  ReadLines({"#Fields: c-ip", "a"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
  files_.files.clear();
  ReadLines({"#Fields: cs-uri-stem", "-"});
  EXPECT_EQ(Month().TotalHits, 1.0F) << "a hyphen is not empty";
}

TEST_F(DroppedRecords, OutsideTheDaysOfThePeriod) {
  State().LogTranslations = true;
  AddLines("ex070115.log", {"#Fields: date c-ip cs-uri-stem", "2007-01-09 a /9", "2007-01-10 a /10",
                            "2007-01-20 a /20", "2007-01-21 a /21"});
  Read(1, 2007, 10, 20);
  EXPECT_EQ(Urls(), (List{"/10", "/20"}));
  EXPECT_TRUE(log_.entries.empty());
}

}  // namespace
