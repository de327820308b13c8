#include "report/domains.h"

#include <string>
#include <vector>

#include "report/report_fixture_test.h"

namespace {

using page_text::Cells;
using page_text::RankedRows;

class Domains : public ReportTest {
 protected:
  // "key=hits" of each entry in the order of its table.
  static std::vector<std::string> Entries(stats::TallyTable& table) {
    std::vector<std::string> entries;
    for (std::int32_t rank = 1; rank <= table.Count(); ++rank) {
      entries.push_back(std::string(table.At(rank).Key) + "=" +
                        std::to_string(static_cast<int>(table.At(rank).Metric)));
    }
    return entries;
  }
  std::vector<std::string> Countries() { return Entries(domains_.countries); }
  std::vector<std::string> Companies() { return Entries(domains_.companies); }

  // One reader per name, the first with the most hits.
  void AddReaders(const std::vector<std::string>& names) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string address = "192.0.2." + std::to_string(i + 1);
      resolver_.names[address] = names[i];
      for (std::size_t hit = i; hit < names.size(); ++hit) {
        stats::LogRecord record = Fetch("/");
        record.clientAddress = address;
        Add(record);
      }
    }
  }

  report::DomainTallies domains_;
};

using Strings = std::vector<std::string>;

TEST_F(Domains, ListedTopLevelNamesTheCompanyByTwoLabels) {
  report::AddHost(domains_, "a.b.example.com", 3);
  EXPECT_EQ(Countries(), Strings{"com=3"});
  EXPECT_EQ(Companies(), Strings{"example.com=3"});
  EXPECT_EQ(domains_.attributed_hits, 3);
}

TEST_F(Domains, OtherTopLevelNamesTheCompanyByThreeLabels) {
  report::AddHost(domains_, "www.shop.example.co.uk", 2);
  EXPECT_EQ(Countries(), Strings{"uk=2"});
  EXPECT_EQ(Companies(), Strings{"example.co.uk=2"});
}

TEST_F(Domains, LetterCaseDoesNotMatterForTheListButStaysInTheKey) {
  report::AddHost(domains_, "gate.Example.COM", 1);
  EXPECT_EQ(Countries(), Strings{"COM=1"});
  EXPECT_EQ(Companies(), Strings{"Example.COM=1"});
}

TEST_F(Domains, ShortNamesCountForTheCountryAlone) {
  report::AddHost(domains_, "example.com", 5);    // two labels
  report::AddHost(domains_, "example.co.uk", 4);  // three below a domain that is not listed
  EXPECT_EQ(Countries(), (Strings{"com=5", "uk=4"}));
  EXPECT_EQ(Companies(), Strings{});
  EXPECT_EQ(domains_.attributed_hits, 9);
}

TEST_F(Domains, NamesWithoutTopLevelCountNowhere) {
  for (const char* host : {"", "a.de", "localhost", ".example", "example.com."}) {
    report::AddHost(domains_, host, 1);
  }
  EXPECT_EQ(domains_.countries.Count(), 0);
  EXPECT_EQ(domains_.companies.Count(), 0);
  EXPECT_EQ(domains_.attributed_hits, 0);
}

TEST_F(Domains, FiveCharactersAreEnough) {
  report::AddHost(domains_, "ab.de", 1);
  EXPECT_EQ(Countries(), Strings{"de=1"});
}

// The dot before the second label stands at the first place and is not moved.
TEST_F(Domains, NameThatBeginsWithADot) {
  report::AddHost(domains_, ".co.uk", 1);
  EXPECT_EQ(Countries(), Strings{"uk=1"});
  EXPECT_EQ(Companies(), Strings{"co.uk=1"});
}

TEST_F(Domains, TableRanksBySummedHits) {
  AddReaders({"a.one.org", "b.two.com", "c.three.com", "d.two.com"});  // 4, 3, 2, 1 hits
  const std::vector<Cells> rows = RankedRows(JanuaryPage(), "<a name=countries>");
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0], (Cells{"1", "com", "60&nbsp;%", "two.com", "40&nbsp;%"}));
  EXPECT_EQ(rows[1], (Cells{"2", "org", "40&nbsp;%", "one.org", "40&nbsp;%"}));
  EXPECT_EQ(rows[2], (Cells{"3", "", "", "three.com", "20&nbsp;%"}));
}

TEST_F(Domains, EmptyCellsOfEitherSide) {
  Settings().GenerateCSV = true;
  AddReaders({"one.org", "www.two.com"});  // 2, 1 hits
  const std::string page = JanuaryPage();
  EXPECT_TRUE(page_text::Contains(
      page,
      "<tr><td align=right>1</td><td>org</td><td align=right>67&nbsp;%</td><td>two.com</td>"
      "<td align=right>33&nbsp;%</td></tr>\r\n"
      "<tr><td align=right>2</td><td>com</td><td align=right>33&nbsp;%</td><td></td><td></td></tr>"
      "\r\n</tbody></table>"));
  EXPECT_EQ(Csv("Domains"),
            "\"Rank\",\"Country\",\"CountryPctPct\",\"Company\",\"CompanyPct\"\r\n"
            ",\"Unaccounted\",0,\"Unaccounted\",0\r\n"
            "1,\"org\",67,\"two.com\",33\r\n"
            "2,\"com\",33,\"\",\r\n");
}

// An address with a country but without a company counts as attributed on both sides.
TEST_F(Domains, UnaccountedIsTheSameOnBothSides) {
  AddReaders({"one.org", "nameless"});
  EXPECT_TRUE(page_text::Contains(
      JanuaryPage(),
      "<tr><td></td><td>Unaccounted</td><td align=right>33&nbsp;%</td><td>Unaccounted</td>"
      "<td align=right>33&nbsp;%</td></tr>\r\n"));
}

TEST_F(Domains, MonthWithoutNamesIsAllUnaccounted) {
  Add(Fetch("/"));
  EXPECT_TRUE(page_text::Contains(
      JanuaryPage(),
      "<tr><td></td><td>Unaccounted</td><td align=right>100&nbsp;%</td><td>Unaccounted</td>"
      "<td align=right>100&nbsp;%</td></tr>\r\n</tbody></table>"));
}

TEST_F(Domains, OnlyListedAddressesAreLookedUpAndCounted) {
  AddReaders({"a.one.org", "b.two.com", "c.three.com"});  // 3, 2, 1 hits
  Settings().MaxListSize = 2;
  const std::vector<Cells> rows = RankedRows(JanuaryPage(), "<a name=countries>");
  EXPECT_EQ(resolver_.Asked(), (Strings{"192.0.2.1", "192.0.2.2"}));
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1], (Cells{"2", "com", "33&nbsp;%", "two.com", "33&nbsp;%"}));
}

TEST_F(Domains, FailedLookupCountsAsNoName) {
  AddReaders({"a.one.org", "b.two.com"});  // 2, 1 hits
  resolver_.failures["192.0.2.1"] = "Broken resolver";
  const std::string page = JanuaryPage();
  EXPECT_EQ(RankedRows(page, "<a name=readers>")[0][6], "");
  EXPECT_EQ(RankedRows(page, "<a name=countries>")[0],
            (Cells{"1", "com", "33&nbsp;%", "two.com", "33&nbsp;%"}));
  EXPECT_TRUE(page_text::Contains(page, "<td>Unaccounted</td><td align=right>67&nbsp;%</td>"));
}

// Grouping sees the name as it came; only the page escapes it, and the CSV file does not.
TEST_F(Domains, NamesAreEscapedOnThePageOnly) {
  Settings().GenerateCSV = true;
  AddReaders({"x.<b>&\"q.com"});
  const std::string page = JanuaryPage();
  EXPECT_EQ(RankedRows(page, "<a name=readers>")[0][6], "x.&lt;b&gt;&amp;&quot;q.com");
  EXPECT_EQ(RankedRows(page, "<a name=countries>")[0][3], "&lt;b&gt;&amp;&quot;q.com");
  EXPECT_TRUE(page_text::Contains(Csv("Domains"), "1,\"com\",100,\"<b>&\"\"q.com\",100\r\n"));
}

}  // namespace
