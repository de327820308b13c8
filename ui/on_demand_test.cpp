#include "ui/on_demand.h"

#include <gtest/gtest.h>

#include "platform/environment.h"
#include "ui/window_fixture.h"

namespace ui::on_demand {
namespace {

class OnDemandTest : public WindowTest {
 protected:
  OnDemandTest() {
    UseAbsoluteSettings();
    SetToday(2026, 3, 14);
    years_ = YearEntries();
  }

  // Days and month as the user sees them.
  void Build(int from, int to, int month, int year_index, const std::string& name = "Custom") {
    btnGoMonth_Click({from - 1, to - 1, month - 1, year_index}, years_, name);
    EXPECT_FALSE(State().OnDemandMode);
  }

  std::vector<YearEntry> years_;
};

TEST_F(OnDemandTest, OffersDaysMonthsAndYears) {
  const List days = DayEntries();
  ASSERT_EQ(days.size(), 31U);
  EXPECT_EQ(days.front(), "1");
  EXPECT_EQ(days.back(), "31");
  const List months = on_demand::MonthEntries();
  ASSERT_EQ(months.size(), 12U);
  EXPECT_EQ(months[0], platform::MonthName(1));
  EXPECT_EQ(months[11], platform::MonthName(12));
  ASSERT_EQ(years_.size(), 5U);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(years_[static_cast<std::size_t>(i)].year, 2026 - i);
    EXPECT_EQ(years_[static_cast<std::size_t>(i)].text, std::to_string(2026 - i));
  }
}

TEST_F(OnDemandTest, TheMonthSoFarIsSelectedFirst) {
  const Selection selection = FirstSelection();
  EXPECT_EQ(selection.from_day, 0);
  EXPECT_EQ(selection.to_day, 13);
  EXPECT_EQ(selection.month, 2);
  EXPECT_EQ(selection.year, 0);
}

TEST_F(OnDemandTest, NamesBecomeFileNamesAsTheyAreTyped) {
  EXPECT_EQ(txtRepName_Change("a/b.c"), "a_b_c");
  EXPECT_EQ(txtRepName_Change("\\'\""), "___");
  EXPECT_EQ(txtRepName_Change("Custom 1"), "Custom 1");
}

TEST_F(OnDemandTest, ABackwardRangeIsInvalid) {
  Build(5, 4, 1, 0);
  EXPECT_EQ(boxes_.shown, List{"Invalid day range."});
  EXPECT_TRUE(files_.committed.empty());
}

TEST_F(OnDemandTest, WithoutDaysTheRangeIsInvalid) {
  Build(0, 4, 1, 0);
  Build(1, 0, 1, 0);
  Build(1, 32, 1, 0);
  EXPECT_EQ(boxes_.shown, (List{"Invalid day range.", "Invalid day range.", "Invalid day range."}));
}

TEST_F(OnDemandTest, DaysAreCheckedBeforeTheMonthAndThatBeforeTheYear) {
  Build(2, 1, 0, kNoSelection);
  Build(1, 1, 0, kNoSelection);
  Build(1, 1, 1, kNoSelection);
  EXPECT_EQ(boxes_.shown,
            (List{"Invalid day range.", "Please select a month.", "Please select a year"}));
  EXPECT_TRUE(shell_.asked.empty());
}

TEST_F(OnDemandTest, AYearBefore1980IsNone) {
  years_ = {{"1979", 1979}, {"1980", 1980}};
  Build(1, 1, 1, 0);
  EXPECT_EQ(boxes_.shown, List{"Please select a year"});
  EXPECT_TRUE(IsValid({0, 0, 0, 1}, years_));
  EXPECT_FALSE(IsValid({0, 0, 0, 0}, years_));
  EXPECT_FALSE(IsValid({0, 0, 0, 2}, years_));
}

TEST_F(OnDemandTest, BuildsThePageUnderTheTypedNameAndOpensIt) {
  Build(10, 20, 1, 0, "a_b_c");
  EXPECT_EQ(files_.committed, List{Page("a_b_c.htm")});
  EXPECT_EQ(shell_.asked, List{Page("a_b_c.htm")});
  EXPECT_EQ(mdlMonth::Month().TotalHits, 1.0F);
  EXPECT_NE(files_.Content(Page("a_b_c.htm")).find("10 - 20 "), std::string::npos);
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(OnDemandTest, OnlyTheDaysOfTheRangeCount) {
  Build(16, 20, 1, 0);
  EXPECT_EQ(mdlMonth::Month().TotalHits, 0.0F);
  EXPECT_EQ(shell_.asked, List{Page("Custom.htm")});
}

TEST_F(OnDemandTest, ARangeBehindTheMonthsEndIsAccepted) {
  Build(31, 31, 4, 0);
  EXPECT_EQ(files_.committed, List{Page("Custom.htm")});
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(OnDemandTest, HistoryAndIndexAreLeftAlone) {
  files_.AddFile(Page("History.txt"), "11,2025,1000,7,3,2,50,4,5,6\r\n");
  Build(1, 31, 1, 0);
  EXPECT_EQ(files_.Content(Page("History.txt")), "11,2025,1000,7,3,2,50,4,5,6\r\n");
  EXPECT_FALSE(files_.Exists(Page("index.htm")));
  EXPECT_EQ(log_.Texts(), (List{"Hitwick: Logfiles will be read from " + logs_,
                                "Hitwick: month report created : " + Page("Custom.htm")}));
}

TEST_F(OnDemandTest, APageThatCannotBeWrittenIsNotOpened) {
  files_.AddFile(Page("Custom.htm"), "old");
  files_.commit_failures[Page("Custom.htm")] = 5;
  Build(1, 31, 1, 0);
  EXPECT_TRUE(shell_.asked.empty());
  EXPECT_EQ(files_.Content(Page("Custom.htm")), "old");
}

TEST_F(OnDemandTest, AnUnknownFormatWritesAndOpensNothing) {
  Build(1, 31, 1, 0);
  shell_.asked.clear();
  State().Settings.LogFormat = "w3c";
  Build(1, 31, 1, 0);
  EXPECT_TRUE(shell_.asked.empty()) << "the page of the report before";
}

TEST_F(OnDemandTest, QuittingMeanwhileWritesAndOpensNothing) {
  State().Ui.process_pending_events = [] { State().Ui.quit_requested = true; };
  Build(1, 31, 1, 0);
  EXPECT_TRUE(files_.committed.empty());
  EXPECT_TRUE(shell_.asked.empty());
}

TEST_F(OnDemandTest, ALaterRunHasItsOwnPageNames) {
  Build(1, 31, 1, 0);
  EXPECT_EQ(mdlConfigs::WriteMonthReport(1, 31, 1, 2026), 0);
  EXPECT_EQ(files_.committed.back(), Page(platform::MonthAbbreviation(1) + ".htm"));
}

}  // namespace
}  // namespace ui::on_demand
