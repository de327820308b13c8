// How lines are cut into fields by the list of blanks, and which of them count as regular.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "logread/field_list.h"
#include "logread/line_reader.h"
#include "logread/reader_fixture.h"
#include "tests/fakes/fake_file_system.h"

namespace {

// Calls `look` with every line of a text, read in blocks of that size.
template <class Look>
void ForEachLine(std::string_view text, std::size_t block_size, Look look) {
  fakes::FakeFileSystem files;
  files.AddFile(platform::JoinPath("logs", "x"), text);
  int error = 0;
  const auto file = files.OpenForReading(platform::JoinPath("logs", "x"), &error);
  logread::LineReader lines(block_size);
  lines.Start(*file);
  logread::Line line;
  while (lines.NextBlock()) {
    while (lines.Next(&line)) look(line);
  }
}

std::vector<std::size_t> FieldsOf(std::string_view text, std::size_t block_size) {
  std::vector<std::size_t> fields;
  ForEachLine(text, block_size, [&](const logread::Line& line) { fields.push_back(line.fields); });
  return fields;
}

TEST(LineFields, AreCountedWhereSingleBlanksPartThem) {
  for (std::size_t block_size = 1; block_size < 40; ++block_size) {
    EXPECT_EQ(FieldsOf(" a b\na b\na  b\na b \na\n\n b\nlonger than-a-block c\na b", block_size),
              (std::vector<std::size_t>{0, 2, 0, 0, 1, 0, 0, 3, 0}))
        << block_size;
  }
}

TEST(LineFields, AreTheTextsBetweenTheBlanks) {
  for (const std::size_t block_size : {1U, 2U, 5U, 64U, 1000U}) {
    std::vector<std::string> fields;
    ForEachLine("a\nfirst <2nd> 3\r\nx y\n", block_size, [&](const logread::Line& line) {
      for (std::size_t i = 0; i < line.fields; ++i) fields.emplace_back(line.Field(i));
    });
    EXPECT_EQ(fields, (std::vector<std::string>{"a", "first", "_2nd_", "3", "x", "y"}));
  }
}

// What follows a cut line begins anew.
TEST(LineFields, AreFoundBehindALineThatWasCut) {
  const std::string cut(200'000, 'x');
  for (const std::size_t block_size : {100U, 4096U, 65536U}) {
    std::vector<std::size_t> fields = FieldsOf(cut + "  y \na b c\n", block_size);
    ASSERT_EQ(fields.size(), 2U);
    EXPECT_EQ(fields[1], 3U);
  }
}

bool IsRegular(std::string_view line) {
  const mdlW3C::RegularColumns columns({{mdlW3C::Field::kDate, "date"},
                                        {mdlW3C::Field::kTime, "time"},
                                        {mdlW3C::Field::kOther, "x"}});
  bool regular = false;
  ForEachLine(line, 65536, [&](const logread::Line& read) { regular = columns.Fit(read); });
  return regular;
}

TEST(RegularLine, HasOneTokenForEachName) {
  EXPECT_TRUE(IsRegular("2007-01-01 10:00:00 x\r\n"));
  EXPECT_FALSE(IsRegular("2007-01-01 10:00:00\r\n"));
  EXPECT_FALSE(IsRegular("2007-01-01 10:00:00 x y\r\n"));
}

TEST(RegularLine, HasNoLastTokenThatIsOnlyAReturn) {
  EXPECT_FALSE(IsRegular("2007-01-01 10:00:00 \r\n"));
}

TEST(RegularLine, IsShorterThanTheCursorReaches) {
  const std::string start = "2007-01-01 10:00:00 ";
  EXPECT_TRUE(IsRegular(start + std::string(32766 - start.size(), 'x') + "\n"));
  EXPECT_FALSE(IsRegular(start + std::string(32767 - start.size(), 'x') + "\n"));
}

using RegularRecord = ReaderTest;

TEST_F(RegularRecord, OutsideThePeriodNamesTheServerOnlyBeforeItsTime) {
  ReadLines({"#Fields: s-computername date time c-ip", "WEB1 2007-01-15 10:00:00 a",
             "WEB2 2007-02-15 10:00:00 a"});
  EXPECT_EQ(mdlW3C::ServerName(), "WEB2");
  ReadLines({"#Fields: date time s-computername c-ip", "2007-01-15 10:00:00 WEB3 a",
             "2007-02-15 10:00:00 WEB4 a"});
  EXPECT_EQ(mdlW3C::ServerName(), "WEB3");
}

TEST_F(RegularRecord, OutsideThePeriodMovesTheDayOfTheFile) {
  ReadLines(
      {"#Fields: date time c-ip", "2007-02-20 10:00:00 a", "#Fields: time c-ip", "10:00:00 a"});
  EXPECT_EQ(DaysWithHits(), std::vector<int>{20});
}

TEST_F(RegularRecord, OutsideThePeriodIsDroppedWhateverItsNumbersHold) {
  ReadLines({"#Fields: date time s-computername sc-bytes c-ip", "2007-01-15 10:00:00 WEB1 5 a",
             "2007-02-15 10:00:00 WEB2 99999999999 a", "2007-01-15 10:00:00 WEB1 99999999999 a"});
  EXPECT_EQ(mdlW3C::ServerName(), "WEB1");
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

}  // namespace
