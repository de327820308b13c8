#include "report/page_names.h"

#include <gtest/gtest.h>

#include "platform/environment.h"

namespace {

using report::FileNamePart;
using report::LinkTo;

TEST(PageNames, NamesOfMonthsThatFitStayAsTheyAre) {
  for (const char* name :
       {"Jan", "janv.",
        "d\xE2\x80\x99"
        "ag.",
        "\xD1\x8F\xD0\xBD\xD0\xB2", "\xD9\x83\xD8\xA7\xD9\x86\xD9\x88\xD9\x86 \xD8\xA7\xD9\x84"}) {
    EXPECT_EQ(FileNamePart(name), name);
  }
}

TEST(PageNames, BlanksAtTheEndsAreDropped) {
  EXPECT_EQ(FileNamePart(" 1\xE6\x9C\x88"), "1\xE6\x9C\x88");
  EXPECT_EQ(FileNamePart("  de gen.  "), "de gen.");
  EXPECT_EQ(FileNamePart("  "), "");
}

TEST(PageNames, WhatAFileNameCannotHoldIsReplaced) {
  EXPECT_EQ(FileNamePart("\xE1\x88\x9D/\xE1\x89\xB5"), "\xE1\x88\x9D_\xE1\x89\xB5");
  EXPECT_EQ(FileNamePart(" / "), "_");
  EXPECT_EQ(FileNamePart(std::string_view("a\0b", 3)), "a_b");
}

TEST(PageNames, MonthsPageBearsTheAbbreviatedName) {
  EXPECT_EQ(report::MonthPageName(1), FileNamePart(platform::MonthAbbreviation(1)));
  EXPECT_EQ(report::MonthPageName(12), FileNamePart(platform::MonthAbbreviation(12)));
}

TEST(PageNames, PlainNamesAreTheirOwnLinks) {
  for (const char* name : {"Jan.htm", "Dec-OneRow.csv", "A-Z_a~z.0189"})
    EXPECT_EQ(LinkTo(name), name);
}

TEST(PageNames, LinksEncodeEveryOtherByte) {
  EXPECT_EQ(LinkTo("f\xC3\xA9vr..htm"), "f%C3%A9vr..htm");
  EXPECT_EQ(LinkTo("1\xE6\x9C\x88-Summary.csv"), "1%E6%9C%88-Summary.csv");
  EXPECT_EQ(LinkTo("a b\"c<d>&'%#?:;=+@[`{/\\\x7F"),
            "a%20b%22c%3Cd%3E%26%27%25%23%3F%3A%3B%3D%2B%40%5B%60%7B%2F%5C%7F");
  EXPECT_EQ(LinkTo("\x01\xFF"), "%01%FF");
}

}  // namespace
