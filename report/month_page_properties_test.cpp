// What holds for the page of any month: checked on a random month full of markup-like texts.

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/mdlYear.h"
#include "report/report_fixture_test.h"

namespace {

using page_text::Cells;
using page_text::Contains;
using page_text::RankedRows;

// Checks that tags are properly written and nested. End tags that HTML lets out (rows, cells,
// table sections, paragraphs) may be missing where the next tag implies them; so may the start
// tag of a table body. "<" in a text is fine where it cannot begin a tag.
class TagChecker {
 public:
  explicit TagChecker(std::string_view page) : page_(page) {}

  // The first mistake with the text around it; empty when there is none.
  std::string Check() {
    std::size_t at = 0;
    while (error_.empty() && (at = page_.find('<', at)) != std::string_view::npos) {
      at = CheckMarkup(at);
    }
    if (error_.empty() && !open_.empty()) error_ = "not closed: " + open_.back();
    return error_;
  }

 private:
  std::size_t CheckMarkup(std::size_t at) {
    const std::string_view rest = page_.substr(at);
    const char next = rest.size() > 1 ? rest[1] : ' ';
    if (rest.substr(0, 4) == "<!--") return at + rest.find("-->") + 3;
    if (rest.substr(0, 9) == "<!DOCTYPE") return at + rest.find('>') + 1;
    if (next != '/' && !std::isalpha(static_cast<unsigned char>(next))) return at + 1;
    std::size_t end = 1;
    for (bool quoted = false; end < rest.size() && (quoted || rest[end] != '>'); ++end) {
      if (rest[end] == '"') quoted = !quoted;
      if (rest[end] == '<') Fail("tag in a tag", at);
    }
    if (end == rest.size()) Fail("tag without end", at);
    if (error_.empty()) CheckTag(std::string(rest.substr(1, end - 1)), at);
    return at + end + 1;
  }

  void CheckTag(const std::string& tag, std::size_t at) {
    std::size_t length = tag[0] == '/' ? 1 : 0;
    std::string name;
    while (length < tag.size() && std::isalnum(static_cast<unsigned char>(tag[length]))) {
      name += static_cast<char>(std::tolower(static_cast<unsigned char>(tag[length++])));
    }
    if (!AttributesAreFine(tag.substr(length))) Fail("attributes", at);
    if (tag[0] == '/') {
      Close(name, at);
    } else {
      Open(name);
    }
  }

  // Blank-separated names, each alone or with a value; one in double quotes may hold anything but
  // these, another one no blanks, quotes or "=".
  static bool AttributesAreFine(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size()) {
      if (text[at] != ' ') return false;
      at = text.find_first_not_of(' ', at);
      const std::size_t name = at;
      while (at < text.size() &&
             (std::isalnum(static_cast<unsigned char>(text[at])) || text[at] == '-')) {
        ++at;
      }
      if (at == name) return false;
      if (at == text.size() || text[at] != '=') continue;
      ++at;
      if (at < text.size() && text[at] == '"') {
        at = text.find('"', at + 1);
        if (at == std::string::npos) return false;
        ++at;
        continue;
      }
      const std::size_t value = at;
      at = std::min(text.size(), text.find(' ', at));
      if (at == value ||
          text.substr(value, at - value).find_first_of("\"'=<>`") != std::string::npos) {
        return false;
      }
    }
    return true;
  }

  static bool IsOneOf(const std::string& name, std::initializer_list<std::string_view> names) {
    for (const std::string_view each : names) {
      if (name == each) return true;
    }
    return false;
  }
  static bool EndIsOptional(const std::string& name) {
    return IsOneOf(name, {"tr", "td", "th", "tbody", "p"});
  }

  void CloseImplied(std::initializer_list<std::string_view> names) {
    while (!open_.empty() && IsOneOf(open_.back(), names)) open_.pop_back();
  }

  void Open(const std::string& name) {
    if (IsOneOf(name, {"br", "hr", "meta", "p"})) return;
    if (IsOneOf(name, {"td", "th"})) CloseImplied({"td", "th"});
    if (name == "tr") CloseImplied({"td", "th", "tr"});
    if (IsOneOf(name, {"tbody", "tfoot", "thead"})) CloseImplied({"td", "th", "tr", "tbody"});
    open_.push_back(name);
  }

  void Close(const std::string& name, std::size_t at) {
    while (!open_.empty() && open_.back() != name && EndIsOptional(open_.back())) open_.pop_back();
    if (!open_.empty() && open_.back() == name) {
      open_.pop_back();
    } else if (name != "tbody" || open_.empty() || open_.back() != "table") {
      Fail("closed without being open", at);
    }
  }

  void Fail(const std::string& what, std::size_t at) {
    if (error_.empty()) error_ = what + ": " + std::string(page_.substr(at, 120));
  }

  std::string_view page_;
  std::vector<std::string> open_;
  std::string error_;
};

TEST(TagCheckerItself, FindsMistakes) {
  EXPECT_EQ(TagChecker("<table><tr><td>a<b>x</b></table><p>1 < 2").Check(), "");
  EXPECT_NE(TagChecker("<b>x").Check(), "");
  EXPECT_NE(TagChecker("x</b>").Check(), "");
  EXPECT_NE(TagChecker("<b><i>x</b></i>").Check(), "");
  EXPECT_NE(TagChecker("<a href=\"x>y</a>").Check(), "");
  EXPECT_NE(TagChecker("<a href=\"x\"y\">z</a>").Check(), "");
  EXPECT_NE(TagChecker("<a <b>").Check(), "");
}

std::vector<std::vector<std::string>> ParseCsv(const std::string& text) {
  std::vector<std::vector<std::string>> records;
  for (const std::string& line : page_text::Lines(text)) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (const char c : line) {
      if (c == '"') {
        quoted = !quoted;
      } else if (c == ',' && !quoted) {
        fields.emplace_back();
      } else {
        fields.back() += c;
      }
    }
    records.push_back(fields);
  }
  return records;
}

void Replace(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

// A cell's content without link and percent sign.
std::string Bare(std::string cell) {
  if (cell.rfind("<a ", 0) == 0) {
    cell = cell.substr(cell.find('>') + 1);
    cell.resize(cell.size() - 4);
  }
  for (const std::string& unit : {std::string("&nbsp;%"), std::string("&nbsp;")}) {
    if (cell.size() >= unit.size() && cell.substr(cell.size() - unit.size()) == unit) {
      cell.resize(cell.size() - unit.size());
    }
  }
  return cell;
}

// A URL as the page's text shows it.
std::string Shown(std::string url) {
  Replace(url, "+", " ");
  Replace(url, "%7E", "~");
  return url;
}

class RandomMonth : public ReportTest {
 protected:
  // What the tokeniser leaves of hostile log text: quotes and angle brackets arrive as "_".
  RandomMonth() {
    const std::vector<std::string> odd = {
        "/a_b__script_", "/x&lt;y",   "/q&quot;", "javascript:alert()", "/%7Ea+b", "&#106;s:1",
        "/--_",          "/\xff\xfe", "/t\tt"};
    const std::vector<std::string> types = {".htm", ".gif", ".zip", ".css"};
    for (int hit = 0; hit < 600; ++hit) {
      const std::string url = Text(odd, 40, types[static_cast<std::size_t>(Pick(4))]);
      const std::string referrer = Pick(5) == 0 ? "-" : "http://h" + Text(odd, 20, "");
      const std::string agent = "Agent" + Text(odd, 30, Pick(3) == 0 ? "bot" : " Opera Linux");
      const std::string user = Text(odd, 10, "");
      const std::string address = "192.0.2." + std::to_string(Pick(30));
      const std::string words = Text(odd, 15, "");
      stats::LogRecord record = Fetch(url);
      record.day = static_cast<std::int16_t>(1 + hit / 20);
      record.hour = static_cast<std::int16_t>(Pick(24));
      record.clientAddress = address;
      record.status = Pick(4) == 0 ? "404" : "200";
      record.bytesSent = Pick(90000);
      record.timeTaken = Pick(500);
      record.userAgent = agent;
      record.referrer = referrer;
      record.userName = user;
      record.searchKeywords = words;
      Add(record);
      if (Pick(2) == 0) resolver_.names[address] = "h" + std::to_string(Pick(4)) + ".<i>.com";
    }
    mdlVisit::CloseAllVisits();
    mdlFilters::SetFilter("Odd", true, "<f>", "\"&<p>");
    mdlConfigs::Run().SiteName = "s\"<&>";
    Settings().ShowUsernames = true;
    Settings().GenerateCSV = true;
  }

  int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
  std::string Text(const std::vector<std::string>& odd, int kinds, const std::string& end) {
    const int kind = Pick(kinds);
    if (static_cast<std::size_t>(kind) < odd.size()) return odd[static_cast<std::size_t>(kind)];
    return "/" + std::to_string(kind) + end;
  }

  std::mt19937 random_{20260101};
};

const std::vector<std::string> kRankedCaptions = {
    "name=urls",       " 2026 by Kbytes</b> <small><a href=\"Jan-URL",
    "Top pages",       "Slowest pages",
    "name=FileTypes",  "Top file type for",
    "name=readers",    "Top referrers",
    "Top referring",   "name=queries",
    "Broken links in", "Broken referrer references",
    "name=usernames",  "name=browsers"};

TEST_F(RandomMonth, PageIsWellFormed) {
  const std::string page = JanuaryPage();
  EXPECT_EQ(TagChecker(page).Check(), "");
  EXPECT_FALSE(Contains(page, "<i>"));
  EXPECT_FALSE(Contains(page, "href=\"javascript"));
}

TEST_F(RandomMonth, YearPageIsWellFormed) {
  mdlYear::LoadHistory();
  mdlYear::AddHistoryRow({2, 2026, 1e9, 1e5, 3, 4, 5, 6, 7, 8});
  std::string page;
  mdlYear::WriteLast12Months(page);
  EXPECT_EQ(TagChecker(page).Check(), "");
}

TEST_F(RandomMonth, RowsAreRankedByTheirFigure) {
  const std::string page = JanuaryPage();
  for (const std::string& caption : kRankedCaptions) {
    const std::size_t column = Contains(caption, "by Kbytes") || caption == "Top file type for" ? 3
                               : caption == "Slowest pages"                                     ? 2
                                                                                                : 1;
    const std::vector<Cells> rows = RankedRows(page, caption);
    ASSERT_GT(rows.size(), 2u) << caption;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(rows[i][0], std::to_string(i + 1)) << caption;
      if (i > 0) {
        EXPECT_GE(std::atof(rows[i - 1][column].c_str()), std::atof(rows[i][column].c_str()))
            << caption;
      }
    }
  }
}

TEST_F(RandomMonth, ShorterListsAreTheBeginningOfLongerOnes) {
  Settings().MaxListSize = 100;
  mdlMonth::SortTallyByMetric(mdlMonth::Month().SuccessUrls);
  const std::string whole = JanuaryPage();
  for (const int size : {0, 1, 3, 7}) {
    Settings().MaxListSize = size;
    const std::string page = JanuaryPage();
    for (const std::string& caption : kRankedCaptions) {
      if (caption == "name=FileTypes") continue;  // ranked by bytes since the first page
      std::vector<Cells> expected = RankedRows(whole, caption);
      expected.resize(std::min(expected.size(), static_cast<std::size_t>(size)));
      EXPECT_EQ(RankedRows(page, caption), expected) << caption << " " << size;
    }
  }
}

TEST_F(RandomMonth, RankedRowsEqualTheirCsvRecords) {
  const std::string page = JanuaryPage();
  const std::vector<std::pair<std::string, std::string>> tables = {
      {"name=urls", "URLbyHits"},           {kRankedCaptions[1], "URLbyKBytes"},
      {"Top pages", "PageByHits"},          {"Slowest pages", "PageTimes"},
      {"name=FileTypes", "FileTypebyHits"}, {"Top file type for", "FileTypebyKBytes"},
      {"name=browsers", "Browsers"},        {"Top referring", "ReferrerSites"},
      {"name=queries", "Queries"}};
  for (const auto& [caption, name] : tables) {
    const bool key_first = name == "ReferrerSites" || name == "Queries";
    const bool urls = Contains(name, "URL") || Contains(name, "Page");
    const std::vector<Cells> rows = RankedRows(page, caption);
    const auto records = ParseCsv(Csv(name));
    ASSERT_EQ(records.size(), rows.size() + 1) << name;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      Cells cells;
      for (const std::string& cell : rows[i]) cells.push_back(Bare(cell));
      std::vector<std::string> record = records[i + 1];
      if (urls) record.back() = Shown(record.back());
      if (key_first) {
        record.push_back(record.front());
        record.front() = std::to_string(i + 1);
      }
      EXPECT_EQ(record, cells) << name;
    }
  }
}

TEST_F(RandomMonth, UsageTablesEqualTheirCsvRecords) {
  const std::string page = JanuaryPage();
  std::vector<Cells> rows;
  for (const std::string& line : page_text::Lines(page)) {
    if (line.rfind("<tr align=right>", 0) == 0) rows.push_back(page_text::CellsOf(line));
  }
  std::vector<std::vector<std::string>> records = ParseCsv(Csv("DailyUsage"));
  records.erase(records.begin());
  const auto hourly = ParseCsv(Csv("HourlyUsage"));
  records.insert(records.end(), hourly.begin() + 1, hourly.end());
  ASSERT_EQ(rows.size(), 31u + 24);
  for (Cells& row : rows) {
    for (std::string& cell : row) {
      Replace(cell, "<font color=\"blue\">", "");
      Replace(cell, "</font>", "");
      Replace(cell, "%", "");
    }
  }
  EXPECT_EQ(rows, records);
}

// Rounded shares of 31 days may miss the whole by half a percent each.
TEST_F(RandomMonth, DaysAddUpToTheTotals) {
  JanuaryPage();
  double hits = 0;
  double share = 0;
  for (const auto& record : ParseCsv(Csv("DailyUsage"))) {
    hits += std::atof(record[1].c_str());
    share += std::atof(record[2].c_str());
  }
  EXPECT_EQ(hits, 600);
  EXPECT_NEAR(share, 100, 15.5);
}

TEST_F(RandomMonth, RobotsAndOthersAddUpToTheWhole) {
  JanuaryPage();
  const auto records = ParseCsv(Csv("Robots"));
  ASSERT_EQ(records.size(), 3u);
  for (const std::size_t column : {1u, 2u}) {
    const double sum =
        std::atof(records[1][column].c_str()) + std::atof(records[2][column].c_str());
    EXPECT_NEAR(sum, 100, 1);
  }
}

TEST_F(RandomMonth, BrowsersAndSystemsAddUpToTheWhole) {
  JanuaryPage();
  double browsers = 0;
  double systems = 0;
  const auto records = ParseCsv(Csv("BrowserClassifier"));
  for (std::size_t i = 1; i < records.size(); ++i) {
    browsers += std::atof(records[i][1].c_str());
    systems += std::atof(records[i][3].c_str());
  }
  EXPECT_NEAR(browsers, 100, 2);
  EXPECT_NEAR(systems, 100, 2);
}

// Classifying starts anew with every page.
TEST_F(RandomMonth, WritingTwiceCountsBrowsersOnce) {
  JanuaryPage();
  const std::string first = Csv("BrowserClassifier") + Csv("Robots") + Csv("OneRow") +
                            Csv("Domains") + Csv("ReferrerSites");
  JanuaryPage();
  EXPECT_EQ(Csv("BrowserClassifier") + Csv("Robots") + Csv("OneRow") + Csv("Domains") +
                Csv("ReferrerSites"),
            first);
}

// Listing a hundred rows must not cost a sort of everything.
TEST_F(ReportTest, ManyDistinctUrlsAreListedQuickly) {
  for (int i = 0; i < 200000; ++i) {
    const std::string url = "/page" + std::to_string(i) + ".htm";
    stats::LogRecord record = Fetch(url);
    Add(record);
  }
  const auto start = std::chrono::steady_clock::now();
  const std::string page = JanuaryPage();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(RankedRows(page, "name=urls").size(), 100u);
  EXPECT_LT(seconds.count(), 3);  // far above what it takes, on a busy machine and with sanitizers
}

}  // namespace
