#include "ui/filter_editor.h"

#include <gtest/gtest.h>

#include "ui/window_fixture.h"

namespace ui {
namespace {

class FilterEditor : public WindowTest {
 protected:
  FilterEditor() { UseAbsoluteSettings(); }

  // Presses OK and returns whether the editor closed.
  bool Ok() { return btnOK_Click(&entry_); }
  std::string OnlyBox() const { return boxes_.shown.size() == 1 ? boxes_.shown.front() : "none"; }

  const std::string note_ = "(a suggestion has been inserted).\n";
  const std::string name_wanted_ = "Please supply an alphanumeric name for the filter.";
  FilterEntry entry_ = {"name", false, 6, "*robot*"};
};

using FilterFields = FilterEditor;

TEST_F(FilterFields, AreOfferedInOrder) {
  EXPECT_EQ(OfferedFields("W3C"),
            (List{"Client IP", "Method", "Referrer", "HTTP status", "Query", "URL", "Browser"}));
  EXPECT_EQ(OfferedFields("w3c"), List{});
}

TEST_F(FilterFields, StandForW3CFields) {
  const List w3c = {"c-ip",         "cs-method",   "cs(Referer)",   "sc-status",
                    "cs-uri-query", "cs-uri-stem", "cs(User-Agent)"};
  const List offered = OfferedFields("W3C");
  for (std::size_t i = 0; i < w3c.size(); ++i) {
    EXPECT_EQ(W3CFieldOf(offered[i], "W3C"), w3c[i]);
    EXPECT_EQ(OfferedFieldOf(w3c[i]), static_cast<int>(i));
  }
}

TEST_F(FilterFields, OtherNamesAndFormatsAreAnError) {
  EXPECT_EQ(W3CFieldOf("Cookie", "W3C"), "ERROR");
  EXPECT_EQ(W3CFieldOf("", "W3C"), "ERROR");
  EXPECT_EQ(W3CFieldOf("URL", "NCSA"), "ERROR");
  EXPECT_EQ(OfferedFieldOf("cs-username"), kNoField);
  EXPECT_EQ(OfferedFieldOf("C-IP"), kNoField);
}

TEST_F(FilterEditor, ANewRuleExcludesByTheFirstField) {
  const FilterEntry entry = NewFilter();
  EXPECT_EQ(entry.name, "");
  EXPECT_FALSE(entry.includes);
  EXPECT_EQ(entry.field, 0);
  EXPECT_EQ(entry.pattern, "");
}

TEST_F(FilterEditor, ARuleIsShownAsItIs) {
  const FilterEntry entry = FilterToEdit({"Robots", true, "cs(User-Agent)", "*bot*"});
  EXPECT_EQ(entry.name, "Robots");
  EXPECT_TRUE(entry.includes);
  EXPECT_EQ(entry.field, 6);
  EXPECT_EQ(entry.pattern, "*bot*");
}

TEST_F(FilterEditor, AFieldThatIsNotOfferedIsNotSelected) {
  EXPECT_EQ(FilterToEdit({"Users", false, "cs-username", "x"}).field, kNoField);
}

TEST_F(FilterEditor, SuggestionsNameRuleFieldAndPattern) {
  EXPECT_EQ(SuggestedFilterName(entry_), "Ex_Browser_*robot*");
  entry_.includes = true;
  entry_.field = 0;
  EXPECT_EQ(SuggestedFilterName(entry_), "In_Client IP_*robot*");
  entry_.field = kNoField;
  EXPECT_EQ(SuggestedFilterName(entry_), "In__*robot*");
}

TEST_F(FilterEditor, CleaningReplacesWhatPatternsHold) {
  EXPECT_EQ(CleanFilterName(" )(.-*?#=[]{}"), "_____Xxneq____");
  EXPECT_EQ(CleanFilterName("Ex_Browser_*robot*"), "Ex_Browser_XrobotX");
  EXPECT_EQ(CleanFilterName("a=b"), "aeqb");
  EXPECT_EQ(CleanFilterName("a/b+\xC3\xA9"), "a/b+\xC3\xA9");
}

TEST_F(FilterEditor, StoresANamedRuleAndCloses) {
  EXPECT_TRUE(Ok());
  ASSERT_EQ(mdlFilters::Rules().size(), 1U);
  const mdlFilters::FilterRule& rule = mdlFilters::Rules().front();
  EXPECT_EQ(rule.name, "name");
  EXPECT_FALSE(rule.includes);
  EXPECT_EQ(rule.field, "cs(User-Agent)");
  EXPECT_EQ(rule.pattern, "*robot*");
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(FilterEditor, ASuggestionIsStoredWhenItIsAccepted) {
  entry_.name = "";
  EXPECT_FALSE(Ok());
  EXPECT_EQ(entry_.name, "Ex_Browser_XrobotX");
  EXPECT_EQ(OnlyBox(), note_ + name_wanted_);
  EXPECT_TRUE(mdlFilters::Rules().empty());
  EXPECT_TRUE(Ok());
  EXPECT_EQ(mdlFilters::Rules().front().name, "Ex_Browser_XrobotX");
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

// The "/" of such a pattern is not cleaned away, so the suggestion needs the user's hand.
TEST_F(FilterEditor, ASuggestionFromAPathNeedsEditing) {
  entry_ = {"", false, 5, "/a b(c)"};
  EXPECT_FALSE(Ok());
  EXPECT_EQ(entry_.name, "Ex_URL_/a_b_c_");
  EXPECT_EQ(OnlyBox(), note_ + name_wanted_);
  EXPECT_FALSE(Ok());
  EXPECT_EQ(boxes_.shown.back(), name_wanted_) << "without the note this time";
}

TEST_F(FilterEditor, ANameIsCleanedAndTaken) {
  entry_.name = "my robots (all)";
  EXPECT_TRUE(Ok());
  EXPECT_EQ(entry_.name, "my_robots__all_");
  EXPECT_EQ(mdlFilters::Rules().front().name, "my_robots__all_");
}

TEST_F(FilterEditor, OtherCharactersInTheNameAreTold) {
  entry_.name = "a+b c";
  EXPECT_FALSE(Ok());
  EXPECT_EQ(entry_.name, "a+b_c");
  EXPECT_EQ(OnlyBox(), name_wanted_);
}

TEST_F(FilterEditor, AFieldIsWantedBeforeAPattern) {
  entry_ = {"name", false, kNoField, ""};
  EXPECT_FALSE(Ok());
  EXPECT_EQ(OnlyBox(), "Please select field");
}

TEST_F(FilterEditor, APatternIsWanted) {
  entry_.pattern = "";
  EXPECT_FALSE(Ok());
  EXPECT_EQ(OnlyBox(), "Please enter a pattern to match field against.");
  EXPECT_TRUE(mdlFilters::Rules().empty());
}

TEST_F(FilterEditor, AnotherNameMakesAnotherRule) {
  EXPECT_TRUE(Ok());
  entry_.name = "other";
  EXPECT_TRUE(Ok());
  ASSERT_EQ(mdlFilters::Rules().size(), 2U);
  EXPECT_EQ(mdlFilters::Rules()[0].name, "name");
}

TEST_F(FilterEditor, TheSameNameReplacesTheRule) {
  EXPECT_TRUE(Ok());
  entry_.includes = true;
  EXPECT_TRUE(Ok());
  ASSERT_EQ(mdlFilters::Rules().size(), 1U);
  EXPECT_TRUE(mdlFilters::Rules().front().includes);
}

TEST_F(FilterEditor, HelpHasTenLines) {
  btnHelp_Click();
  EXPECT_EQ(
      OnlyBox(),
      "This dialog defines a rule that will be applied to incoming IIS log records.\n"
      "With 'Exclude', field values that match the pattern are discarded from processing, \n"
      "and with 'Include' non-matching values are discarded.\n"
      "The fields that can be filtered are Client IP, Method, Referrer, HTTP status, Query, URL or "
      "Browser.\n"
      "The 'pattern' in 'matches' is put together from primitives below to capture the whole field "
      "-:\n"
      "    ?       Match any single character\n"
      "    *       Match zero or more characters, as in *robot*\n"
      "    [list]  Any single character in list, e.g. [a-zA-Z]\n"
      "    [!list] Any single character not in the list.\n"
      "All filters have to have a unique name on this site.");
}

}  // namespace
}  // namespace ui
