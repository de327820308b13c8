#include "ui/site_selection.h"

#include <gtest/gtest.h>

#include "ui/window_fixture.h"

namespace ui::site_selection {
namespace {

class SiteSelection : public WindowTest {
 protected:
  const std::string branch_{platform::kSettingsBranch};
};

TEST_F(SiteSelection, OffersEverySiteAndForgetsTheOneInUse) {
  State().SiteName = "before";
  EXPECT_EQ(Form_Load(), (List{"INI", "web1"}));
  EXPECT_EQ(State().SiteName, "");
}

TEST_F(SiteSelection, AStoreThatCannotBeReadIsTold) {
  store_.Fail({fakes::FakeSettingsStore::Operation::kOpenKey, 5});
  EXPECT_EQ(Form_Load(), List{});
  EXPECT_EQ(boxes_.shown, List{"Error in reading site configuration from registry : RegOpenKeyEx(" +
                               branch_ + ")\n5"});
}

TEST_F(SiteSelection, SitesThatCannotBeReadAreLeftOut) {
  store_.Fail({fakes::FakeSettingsStore::Operation::kEnumKey, 5, "", 0, 1});
  EXPECT_EQ(Form_Load(), List{"web1"});
}

TEST_F(SiteSelection, SelectTakesTheTextOfTheList) {
  btnGo_Click("web1");
  EXPECT_EQ(State().SiteName, "web1");
}

TEST_F(SiteSelection, AddTakesTheTextOfTheBox) {
  btnAdd_Click("web2");
  EXPECT_EQ(State().SiteName, "web2");
}

TEST_F(SiteSelection, CancelLeavesTheDefaultSite) {
  State().SiteName = "web1";
  btnQuit_Click();
  EXPECT_EQ(State().SiteName, "");
}

TEST_F(SiteSelection, NewNamesLoseWhatTheyMayNotHold) {
  EXPECT_EQ(txtAdd_Change("web 1/a"), "web1a");
  EXPECT_EQ(txtAdd_Change(" a\\b "), "ab");
  EXPECT_EQ(txtAdd_Change("web1"), "web1");
  EXPECT_EQ(txtAdd_Change("a;b\"c"), "a;b\"c");
}

TEST_F(SiteSelection, RemovingAsksFirst) {
  EXPECT_EQ(btnRemove_Click("web1"), (List{"INI", "web1"}));
  EXPECT_EQ(boxes_.questions,
            (std::vector<fakes::RecordingMessageBoxes::Question>{
                {"Confirm delete of web1",
                 "Are you sure you want to delete configuration for site 'web1'"}}));
  EXPECT_TRUE(store_.HasKey("web1"));
}

TEST_F(SiteSelection, ARemovedSiteIsGoneFromTheListAtOnce) {
  boxes_.answers = {true};
  EXPECT_EQ(btnRemove_Click("web1"), List{"INI"});
  EXPECT_FALSE(store_.HasKey("web1"));
  EXPECT_TRUE(log_.ContainsInformation("Hitwick : Deleted configuration of site 'web1'"));
}

TEST_F(SiteSelection, AFailedRemovalFillsTheListAfreshToo) {
  boxes_.answers = {true};
  store_.Fail({fakes::FakeSettingsStore::Operation::kDeleteKey, 5, "web1"});
  EXPECT_EQ(btnRemove_Click("web1"), (List{"INI", "web1"}));
  EXPECT_TRUE(log_.ContainsWarning("Hitwick : Unable to delete configuration of site 'web1'"));
}

// Its key would be the branch that holds them all.
TEST_F(SiteSelection, WithoutANameNothingIsRemoved) {
  boxes_.answers = {true};
  EXPECT_EQ(btnRemove_Click(""), (List{"INI", "web1"}));
  EXPECT_TRUE(boxes_.questions.empty());
  EXPECT_EQ(store_.changes(), 0);
}

}  // namespace
}  // namespace ui::site_selection
