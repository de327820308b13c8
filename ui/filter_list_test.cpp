#include "ui/filter_list.h"

#include <gtest/gtest.h>

#include "ui/window_fixture.h"

namespace ui::filter_list {
namespace {

class FilterListTest : public WindowTest {
 protected:
  FilterListTest() {
    UseAbsoluteSettings();
    Store("One", "c-ip", "10.*");
    Store("Two", "cs(User-Agent)", "*bot*");
    Form_Load();
  }

  void Store(const std::string& name, const std::string& field, const std::string& pattern) {
    const std::string key = "web1\\Filters\\" + name;
    store_.Put(key, "name", name);
    store_.Put(key, "includes", "False");
    store_.Put(key, "field", field);
    store_.Put(key, "pattern", pattern);
  }
  bool IsStored(const std::string& name) const { return store_.HasKey("web1\\Filters\\" + name); }
  static void Add(const std::string& name) { mdlFilters::SetFilter(name, true, "c-ip", "1*"); }
};

TEST_F(FilterListTest, ShowsTheStoredRulesInOrder) {
  EXPECT_EQ(FilterNames(), (List{"One", "Two"}));
}

TEST_F(FilterListTest, ANewRuleIsPreparedEmpty) {
  EXPECT_EQ(btnAdd_Click().name, "");
  EXPECT_EQ(btnAdd_Click().field, 0);
}

TEST_F(FilterListTest, ARowIsPreparedForEditing) {
  EXPECT_EQ(btnEdit_Click(1).name, "Two");
  EXPECT_EQ(btnEdit_Click(1).field, 6);
  EXPECT_EQ(btnEdit_Click(2).name, "");
}

TEST_F(FilterListTest, DeletingTakesTheRuleFromTheListOnly) {
  btnDelete_Click(0);
  EXPECT_EQ(FilterNames(), List{"Two"});
  EXPECT_TRUE(IsStored("One"));
  EXPECT_TRUE(boxes_.questions.empty());
}

TEST_F(FilterListTest, DeletingWithoutARuleDoesNothing) {
  btnDelete_Click(2);
  btnDelete_Click(65536);
  EXPECT_EQ(FilterNames(), (List{"One", "Two"}));
}

TEST_F(FilterListTest, CommitStoresTheList) {
  btnDelete_Click(0);
  Add("Three");
  btnOK_Click();
  EXPECT_FALSE(IsStored("One"));
  EXPECT_TRUE(IsStored("Two"));
  EXPECT_EQ(store_.Get("web1\\Filters\\Three", "includes"), "True");
}

TEST_F(FilterListTest, AfterCancellingWhatWasStoredComesBackAndWhatWasAddedStays) {
  btnDelete_Click(0);
  Add("Two");
  Add("Three");
  Form_Load();
  EXPECT_EQ(FilterNames(), (List{"Two", "Three", "One"}));
  EXPECT_FALSE(mdlFilters::Rules()[0].includes) << "changed, then loaded again";
  EXPECT_FALSE(IsStored("Three"));
}

}  // namespace
}  // namespace ui::filter_list
