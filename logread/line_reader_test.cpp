// The lines of a log file, seen through the records that come of them.
#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "logread/line_reader.h"
#include "logread/reader_fixture.h"
#include "platform/file_system.h"

namespace {

class ReadingLoop : public ReaderTest {
 protected:
  // The URLs counted from a file of exactly these bytes after a field list of its own.
  List UrlsOf(std::string_view bytes) {
    AddLog("ex070114.log", "#Fields: c-ip cs-uri-stem\n");
    AddLog("ex070115.log", bytes);
    Read(1, 2007);
    return Urls();
  }
};

TEST_F(ReadingLoop, LinesEndAtLineFeeds) { EXPECT_EQ(UrlsOf("a /1\na /2\n"), (List{"/1", "/2"})); }

TEST_F(ReadingLoop, CarriageReturnBeforeTheLineFeedBelongsToTheLineEnd) {
  EXPECT_EQ(UrlsOf("a /1\r\na /2\r\n"), (List{"/1", "/2"}));
}

TEST_F(ReadingLoop, OnlyOneCarriageReturnBelongsToTheLineEnd) {
  EXPECT_EQ(UrlsOf("a /1\r\r\n"), List{"/1\r"});
}

TEST_F(ReadingLoop, CarriageReturnElsewhereIsAnOrdinaryCharacter) {
  EXPECT_EQ(UrlsOf("a /1\ra /2\na /3\n"), (List{"/1\ra", "/3"}));
}

TEST_F(ReadingLoop, LastLineCountsWithoutItsLineFeed) {
  EXPECT_EQ(UrlsOf("a /1\na /2"), (List{"/1", "/2"}));
  EXPECT_EQ(Month().TotalHits, 2.0F);
}

TEST_F(ReadingLoop, FieldListOnTheLastLineCountsWithoutItsLineFeed) {
  AddLog("ex070114.log", "#Fields: cs-uri-stem");
  AddLog("ex070115.log", "/1\n");
  Read(1, 2007);
  EXPECT_EQ(Urls(), List{"/1"});
}

TEST_F(ReadingLoop, EmptyLinesAreSkipped) {
  EXPECT_EQ(UrlsOf("\n\r\na /1\n\n\na /2\n\n"), (List{"/1", "/2"}));
  EXPECT_EQ(Month().TotalHits, 2.0F);
}

TEST_F(ReadingLoop, EmptyFile) { EXPECT_EQ(UrlsOf(""), List{}); }

// A log to which the web server adds a line between the moment in which its end was seen and the
// next look.
class GrowingLog : public platform::InputFile {
 public:
  int Read(char* buffer, std::size_t, std::size_t* got) override {
    const std::string_view piece = kPieces[next_];
    next_ = (next_ + 1) % std::size(kPieces);
    piece.copy(buffer, piece.size());
    *got = piece.size();
    return 0;
  }

 private:
  static constexpr std::string_view kPieces[] = {"a /1\na b c /2 and no", "", " end\na /3\n", ""};
  std::size_t next_ = 0;
};

TEST(LineReaderTest, TheEndIsFinal) {
  GrowingLog log;
  logread::LineReader reader;
  reader.Start(log);
  std::vector<std::string> lines;
  logread::Line line;
  while (reader.NextBlock()) {
    while (reader.Next(&line)) lines.emplace_back(line.text);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"a /1", "a b c /2 and no"}));
  EXPECT_FALSE(reader.NextBlock());
}

// The day of the "date" field outlives its line, so a line that reaches the parser without one
// shows in the next record.
TEST_F(ReadingLoop, LineOfBlanksReachesTheParser) {
  ReadLines({"#Fields: date c-ip cs-uri-stem", "2007-01-20 a /1", "   ",
             "#Fields: c-ip cs-uri-stem", "a /2"});
  EXPECT_EQ(Urls(), List{"/1"}) << "the day of the last record is 0";
}

TEST_F(ReadingLoop, EmptyLineDoesNotReachTheParser) {
  ReadLines({"#Fields: date c-ip cs-uri-stem", "2007-01-20 a /1", "", "#Fields: c-ip cs-uri-stem",
             "a /2"});
  EXPECT_EQ(Urls(), (List{"/1", "/2"}));
  EXPECT_EQ(DaysWithHits(), std::vector<int>{20});
}

TEST_F(ReadingLoop, ZeroBytesAreOrdinaryCharacters) {
  const std::string bytes("a /1\0x\na /2\0y\n", 14);
  EXPECT_EQ(UrlsOf(bytes), (List{std::string("/1\0x", 4), std::string("/2\0y", 4)}));
}

TEST_F(ReadingLoop, AllByteValuesPassUnchanged) {
  std::string url = "/";
  for (int c = 1; c < 256; ++c) {
    static constexpr std::string_view kReplacedOrSeparating = " \n\"'<>";
    const char byte = static_cast<char>(c);
    if (kReplacedOrSeparating.find(byte) == std::string_view::npos) url += byte;
  }
  EXPECT_EQ(UrlsOf("a " + url + "\n"), List{url});
}

TEST_F(ReadingLoop, LinesMayBeReadInAnyPieces) {
  const std::string bytes = "a /1\r\n\r\na /" + std::string(3000, 'x') + "\r\na /3\na /4";
  for (const std::size_t piece : {1U, 2U, 3U, 7U, 64U, 4096U}) {
    files_.read_size_limit = piece;
    EXPECT_EQ(UrlsOf(bytes), (List{"/1", "/" + std::string(3000, 'x'), "/3", "/4"})) << piece;
  }
}

TEST_F(ReadingLoop, LinesThatCrossAnyBufferEndStayWhole) {
  std::string bytes;
  List expected;
  // Some 2 MB of lines whose lengths share no factor with a buffer size.
  for (int i = 0; i < 2000; ++i) {
    const std::string url =
        "/" + std::to_string(i) + std::string(static_cast<std::size_t>(i * 37 % 2003), 'x');
    bytes += "a " + url + "\r\n";
    expected.push_back(url);
  }
  EXPECT_TRUE(UrlsOf(bytes) == expected);
}

TEST_F(ReadingLoop, VeryLongLineIsReadPast) {
  const std::string long_line = "a /long " + std::string(5'000'000, 'x') + "\n";
  EXPECT_EQ(UrlsOf("a /1\n" + long_line + "a /2\n"), (List{"/1", "/long", "/2"}));
}

TEST_F(ReadingLoop, FileOfOneEndlessLine) {
  EXPECT_EQ(UrlsOf("a " + std::string(3'000'000, 'x')), List{});
}

TEST_F(ReadingLoop, FileAfterOneThatEndsInAVeryLongLineIsReadFromItsFirstLine) {
  AddLog("ex070116.log", "a /next\na /last\n");
  EXPECT_EQ(UrlsOf("a /1\na /long " + std::string(1'000'000, 'x')),
            (List{"/1", "/long", "/next", "/last"}));
}

using FieldList = ReaderTest;

TEST_F(FieldList, NothingCountsBeforeTheFirstOne) {
  ReadLines({"a /lost", "#Fields: c-ip cs-uri-stem", "a /kept"});
  EXPECT_EQ(Urls(), List{"/kept"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(FieldList, OutlivesItsFile) {
  AddLines("ex070114.log", {"#Fields: c-ip cs-uri-stem", "a /1"});
  AddLines("u_ex070101.log", {"b /2"});
  Read(1, 2007);
  EXPECT_EQ(Urls(), (List{"/1", "/2"}));
}

TEST_F(FieldList, OutlivesItsMonth) {
  AddLines("ex070114.log", {"#Fields: c-ip cs-uri-stem"});
  AddLines("ex070314.log", {"b /2"});
  Read(1, 2007);
  Read(3, 2007);
  EXPECT_EQ(Urls(), List{"/2"});
}

TEST_F(FieldList, IsReplacedByTheNextOne) {
  ReadLines({"#Fields: c-ip cs-uri-stem cs-method", "a /1 GET", "#Fields: cs-method cs-uri-stem",
             "POST /2 x"});
  EXPECT_EQ(Urls(), (List{"/1", "/2"}));
  EXPECT_EQ(Keys(Month().Methods), (List{"GET", "POST"}));
  EXPECT_EQ(Month().ClientAddresses.Count(), 1);
}

TEST_F(FieldList, EmptyOneDropsEveryRecord) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "#Fields:", "a /1"});
  EXPECT_EQ(Month().TotalHits, 0.0F);
}

TEST_F(FieldList, LetterCaseOfTheMarkIsIgnored) {
  ReadLines(
      {"#fields: c-ip cs-uri-stem", "a /1", "#FIELDS: cs-uri-stem", "/2", "#fIeLdS: c-ip", "b /3"});
  EXPECT_EQ(Urls(), (List{"/1", "/2"}));
  EXPECT_EQ(Keys(Month().ClientAddresses), (List{"a", "b"}));
}

TEST_F(FieldList, NoBlankIsNeededAfterTheMark) {
  ReadLines({"#Fields:c-ip   cs-uri-stem  ", "a /1"});
  EXPECT_EQ(Urls(), List{"/1"});
  EXPECT_EQ(Keys(Month().ClientAddresses), List{"a"});
}

TEST_F(FieldList, OtherHeaderLinesAreIgnored) {
  ReadLines({"#Fields: c-ip cs-uri-stem", "#Software: IIS", "#Field: x", "#Fields c-ip", "#",
             "# Fields: x", "a /1"});
  EXPECT_EQ(Urls(), List{"/1"});
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

TEST_F(FieldList, MarkNotAtTheStartOfTheLineIsARecord) {
  ReadLines({"#Fields: c-ip cs-uri-stem", " #Fields: cs-method", "a /1"});
  EXPECT_EQ(Urls(), (List{"cs-method", "/1"}));
}

}  // namespace
