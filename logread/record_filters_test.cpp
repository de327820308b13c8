// Records that filters skip or errors drop, and what the diagnostic log says of them.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "logread/reader_fixture.h"

namespace {

class FilteredRecords : public ReaderTest {
 protected:
  static void Include(const std::string& field, const std::string& pattern) {
    mdlFilters::SetFilter("In" + std::to_string(mdlFilters::Rules().size()), true, field, pattern);
  }
  static void Exclude(const std::string& field, const std::string& pattern) {
    mdlFilters::SetFilter("Ex" + std::to_string(mdlFilters::Rules().size()), false, field, pattern);
  }
};

TEST_F(FilteredRecords, EveryFilterableField) {
  const std::vector<std::pair<std::string, std::string>> fields = {
      {"c-ip", "10.0.0.1"},    {"cs-method", "GET"},      {"cs-uri-stem", "/x"},
      {"cs-uri-query", "a=b"}, {"cs(User-Agent)", "Moz"}, {"cs(Referer)", "http://e.com/?a=b"},
      {"sc-status", "200"},    {"cs-username", "alice"}};
  std::string header = "#Fields:";
  std::string record;
  for (const auto& [field, value] : fields) {
    header += " " + field;
    record += value + " ";
  }
  AddLines("ex070115.log", {header, record});
  Read(1, 2007);
  ASSERT_EQ(Month().TotalHits, 1.0F);
  for (const auto& [field, value] : fields) {
    mdlFilters::Reset();
    Exclude(field, value.substr(0, value.find('?')) + "*");
    Read(1, 2007);
    EXPECT_EQ(Month().TotalHits, 0.0F) << field;
  }
}

TEST_F(FilteredRecords, NumbersAndOtherFieldsAreNotChecked) {
  for (const char* field : {"sc-bytes", "cs-bytes", "time-taken", "cs-host", "s-computername",
                            "date", "time", "s-port"}) {
    Exclude(field, "*");
  }
  ReadLines(
      {"#Fields: date time c-ip cs-uri-stem sc-bytes cs-bytes time-taken cs-host "
       "s-computername s-port",
       "2007-01-15 10:00:00 a /x 1 2 3 h WEB1 80"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

TEST_F(FilteredRecords, FieldThatTheLogLacksIsNotChecked) {
  Include("c-ip", "10.*");
  ReadLines({"#Fields: cs-uri-stem", "/x"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

TEST_F(FilteredRecords, MissingTokenIsCheckedAsEmpty) {
  Include("cs-method", "GET");
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method", "a /x"});
  EXPECT_EQ(Month().TotalHits, 0.0F);
}

TEST_F(FilteredRecords, AddressIsCheckedAfterItsReplacement) {
  Exclude("c-ip", "127.0.0.1");
  ReadLines({"#Fields: c-ip cs-uri-stem", "::1 /x", "::2 /y"});
  EXPECT_EQ(Urls(), List{"/y"});
}

TEST_F(FilteredRecords, ValuesAreCheckedAfterTheirReplacement) {
  Exclude("cs-uri-stem", "*_script_*");
  ReadLines({"#Fields: c-ip cs-uri-stem", "a /<script>", "a /script"});
  EXPECT_EQ(Urls(), List{"/script"});
}

TEST_F(FilteredRecords, ReferrerIsCheckedWhole) {
  Exclude("cs(Referer)", "*spam*");
  ReadLines({"#Fields: c-ip cs-uri-stem cs(Referer)", "a /1 http://e.com/?q=spam",
             "a /2 http://e.com/", "a /3 http://e.com/#spam"});
  EXPECT_EQ(Urls(), List{"/2"});
}

TEST_F(FilteredRecords, SearchWordsAreCheckedAsAQuery) {
  Exclude("cs-uri-query", "bad words");
  ReadLines({"#Fields: c-ip cs-uri-stem cs(Referer)", "a /1 http://e.com/?q=bad+words",
             "a /2 http://e.com/?q=good+words"});
  EXPECT_EQ(Urls(), List{"/2"});
}

TEST_F(FilteredRecords, EmptySearchWordsAreCheckedWhenThereIsAQuery) {
  Include("cs-uri-query", "?*");
  ReadLines({"#Fields: c-ip cs-uri-stem cs-uri-query cs(Referer)", "a /1 q http://e.com/?no=words",
             "a /2 q http://e.com/", "a /3 q -", "a /4 q ?"});
  EXPECT_EQ(Urls(), (List{"/2", "/3", "/4"}));
}

TEST_F(FilteredRecords, SkippedRecordLeavesNoCounts) {
  Exclude("cs-method", "POST");
  ReadLines({"#Fields: cs-method c-ip cs-uri-stem cs-host s-computername", "POST a /x h WEB1"});
  EXPECT_EQ(Month().TotalHits, 0.0F);
  EXPECT_EQ(Month().HostLabel, "");
  EXPECT_EQ(mdlW3C::ServerName(), "WEB1") << "later fields are still read";
}

// The filter windows may change the rules whenever pending events are processed: once a file.
class ChangingRules : public FilteredRecords {
 protected:
  // The URLs of three files of two records each; `change` runs at the opening of file 1, 2, 3.
  List UrlsWhile(const std::function<void(int)>& change) {
    int file = 0;
    State().Ui.process_pending_events = [&] { change(++file); };
    AddLines("ex070114.log", {"#Fields: cs-method cs-uri-stem", "GET /get1", "POST /post1"});
    AddLines("ex070115.log", {"GET /get2", "POST /post2"});
    AddLines("ex070116.log", {"GET /get3", "POST /post3"});
    Read(1, 2007);
    return Urls();
  }
};

TEST_F(ChangingRules, NewRuleHoldsFromTheFileAtWhoseOpeningItCame) {
  EXPECT_EQ(UrlsWhile([](int file) {
              if (file == 2) Exclude("cs-method", "POST");
            }),
            (List{"/get1", "/post1", "/get2", "/get3"}));
}

TEST_F(ChangingRules, DeletedRuleHoldsNoLonger) {
  Exclude("cs-method", "POST");
  EXPECT_EQ(UrlsWhile([](int file) {
              if (file == 3) mdlFilters::DeleteFilter(1);
            }),
            (List{"/get1", "/get2", "/get3", "/post3"}));
}

TEST_F(ChangingRules, ChangedRuleIsAskedAnewAboutValuesSeenBefore) {
  Exclude("cs-method", "POST");
  EXPECT_EQ(UrlsWhile([](int file) {
              if (file == 2) mdlFilters::SetFilter("Ex0", false, "cs-method", "GET");
            }),
            (List{"/get1", "/post2", "/post3"}));
}

using Diagnostics = FilteredRecords;

TEST_F(Diagnostics, FilteredRecordsAreNotedWhenAskedFor) {
  Exclude("cs-method", "POST");
  const List lines = {"#Fields: cs-method c-ip cs-uri-stem", "POST a /x", "GET a /x"};
  ReadLines(lines);
  EXPECT_TRUE(log_.entries.empty());
  State().LogTranslations = true;
  Read(1, 2007);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kInformation);
  EXPECT_EQ(log_.entries[0].text, "Hitwick: Skipping log record because of filter rule");
}

TEST_F(Diagnostics, FailedFieldIsNamedWhenAskedFor) {
  const List lines = {"#Fields: c-ip cs-uri-stem sc-bytes cs-bytes time-taken",
                      "a /x 2147483648 0 0", "a /x 0 2147483648 0", "a /x 0 0 2147483648",
                      "a /x 0 0 0"};
  ReadLines(lines);
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_EQ(Month().TotalHits, 1.0F);
  State().LogTranslations = true;
  Read(1, 2007);
  EXPECT_EQ(log_.Texts(), (List{"HitwickError processing field sc-bytes : Overflow",
                                "HitwickError processing field cs-bytes : Overflow",
                                "HitwickError processing field time-taken : Overflow"}));
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
}

TEST_F(Diagnostics, OverlongLineNamesTheFieldThatPassedTheLimit) {
  State().LogTranslations = true;
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method", "a /" + std::string(33000, 'x') + " GET",
             "a /x " + std::string(33000, 'G')});
  EXPECT_EQ(log_.Texts(), (List{"HitwickError processing field cs-uri-stem : Overflow",
                                "HitwickError processing field cs-method : Overflow"}));
}

TEST_F(Diagnostics, BadPatternIsAnErrorOfEveryRecordWithItsField) {
  State().LogTranslations = true;
  Exclude("cs-method", "[a");
  ReadLines(
      {"#Fields: c-ip cs-uri-stem cs-method", "a /x GET", "#Fields: c-ip cs-uri-stem", "a /y"});
  EXPECT_EQ(log_.Texts(), List{"HitwickError processing field cs-method : Invalid pattern string"});
  EXPECT_EQ(Urls(), List{"/y"});
}

TEST_F(Diagnostics, BadPatternMetBySearchWordsIsAnErrorOfTheReferrer) {
  State().LogTranslations = true;
  Exclude("cs-uri-query", "[a");
  ReadLines({"#Fields: c-ip cs-uri-stem cs(Referer)", "a /x http://e.com/?q=some+words",
             "a /y http://e.com/"});
  EXPECT_EQ(log_.Texts(),
            List{"HitwickError processing field cs(Referer) : Invalid pattern string"});
  EXPECT_EQ(Urls(), List{"/y"});
}

TEST_F(Diagnostics, ErrorWinsOverASkip) {
  State().LogTranslations = true;
  Exclude("cs-method", "GET");
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method sc-bytes", "a /x GET 2147483648"});
  EXPECT_EQ(log_.Texts(), List{"HitwickError processing field sc-bytes : Overflow"});
}

TEST_F(Diagnostics, ErrorsInsideTheStatisticsAreReportedOnceWithOrWithout) {
  const List lines = {"#Fields: c-ip cs-uri-stem time", "a /x 75:00:00"};
  ReadLines(lines);
  EXPECT_EQ(log_.Texts(), List{"HitwickError adding hit counters : Subscript out of range"});
  log_.Clear();
  State().LogTranslations = true;
  Read(1, 2007);
  EXPECT_EQ(log_.Texts(), List{"HitwickError adding hit counters : Subscript out of range"});
}

}  // namespace
