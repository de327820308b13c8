#include "report/csv.h"

#include <gtest/gtest.h>

namespace {

TEST(CsvTable, StartsWithTheColumnNames) {
  EXPECT_EQ(csv::Table({"Rank", "URL"}).content(), "\"Rank\",\"URL\"\r\n");
}

TEST(CsvTable, TextIsQuotedAndNumbersAreNot) {
  csv::Table table;
  table.Number("1").Text("a,b").Number("2.5").EndRecord();
  table.Text("").Number("").EndRecord();
  EXPECT_EQ(table.content(), "1,\"a,b\",2.5\r\n\"\",\r\n");
}

TEST(CsvTable, AnEmptyFirstNumberStillTakesItsPlace) {
  csv::Table table;
  table.Number("").Text("Unaccounted").Number("17").EndRecord();
  EXPECT_EQ(table.content(), ",\"Unaccounted\",17\r\n");
}

TEST(CsvTable, QuotesInsideTextAreDoubled) {
  csv::Table table;
  table.Text("say \"x\"").EndRecord();
  EXPECT_EQ(table.content(), "\"say \"\"x\"\"\"\r\n");
}

TEST(CsvFileName, IsBaseNameDashTableName) {
  EXPECT_EQ(csv::FileName("Jan", "URLbyHits"), "Jan-URLbyHits.csv");
  EXPECT_EQ(csv::FileName("Custom", "Summary"), "Custom-Summary.csv");
}

}  // namespace
