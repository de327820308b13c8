#include "config/mdlRegistry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/mdlConfigs.h"
#include "platform/event_log.h"
#include "platform/message_box.h"
#include "platform/service.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/recording_message_boxes.h"

namespace {

using Operation = fakes::FakeSettingsStore::Operation;
using List = std::vector<std::string>;

const std::string kBranch(platform::kSettingsBranch);

class RegistryTest : public testing::Test {
 protected:
  RegistryTest() { mdlConfigs::ResetRun(); }
  ~RegistryTest() override { EXPECT_EQ(store_.open_keys(), 0u) << "keys left open"; }

  // Makes every call of an operation fail, or those on one key or name.
  void Fail(Operation operation, std::int32_t code, const std::string& name = "") {
    store_.Fail({operation, code, name});
  }
  // A site with two levels of subkeys and values everywhere.
  void MakeNestedSite() {
    store_.Put("web1", "UsageDir", "/u");
    store_.Put("web1", "MaxListSize", "10");
    store_.Put("web1\\Filters", "order", "1");
    store_.Put("web1\\Filters\\a", "field", "c-ip");
    store_.Put("web1\\Filters\\b", "field", "c-ip");
    store_.Put("web2", "UsageDir", "/other");
  }
  // The text of a value of web1 as the filters read it.
  std::string Read(const std::string& name) {
    const auto key = mdlRegistry::OpenKey(kBranch, "web1");
    return mdlRegistry::GetStringValue(key.key(), name, "fallback");
  }
  List Entries() const { return log_.Texts(); }
  void ExpectNothingTold() const {
    EXPECT_EQ(Entries(), List());
    EXPECT_EQ(boxes_.shown, List());
  }
  void ExpectOnlyWarnings() const {
    for (const auto& entry : log_.entries) {
      EXPECT_EQ(entry.level, platform::EventLevel::kWarning) << entry.text;
    }
  }

  fakes::FakeSettingsStore store_;
  fakes::RecordingEventLog log_;
  fakes::RecordingMessageBoxes boxes_;

 private:
  platform::Replacement<platform::SettingsStore> store_replacement_{store_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
  platform::Replacement<platform::MessageBoxes> boxes_replacement_{boxes_};
};

using OpenedKeyTest = RegistryTest;

TEST_F(OpenedKeyTest, ClosesItsKeyOnce) {
  store_.PutKey("web1");
  {
    auto first = mdlRegistry::OpenKey(kBranch, "web1");
    EXPECT_TRUE(first);
    EXPECT_EQ(store_.open_keys(), 1u);
    auto second = std::move(first);
    EXPECT_EQ(store_.open_keys(), 1u);
    first = mdlRegistry::OpenKey(kBranch, "web1");
    second = std::move(first);
  }
  EXPECT_EQ(store_.open_keys(), 0u);
}

TEST_F(OpenedKeyTest, AMissingKeyIsNotOpen) {
  const auto key = mdlRegistry::OpenKey(kBranch, "missing");
  EXPECT_FALSE(key);
  EXPECT_EQ(key.result(), 2);
  EXPECT_EQ(key.key(), 0u);
}

using CreateKeyTest = RegistryTest;

TEST_F(CreateKeyTest, CreatesAndClosesTheKey) {
  EXPECT_EQ(mdlRegistry::CreateKey(kBranch + "\\web1", "Filters"), 0);
  EXPECT_TRUE(store_.HasKey("web1\\Filters"));
  EXPECT_EQ(mdlRegistry::CreateKey(kBranch + "\\web1", "Filters"), 0);
  ExpectNothingTold();
}

TEST_F(CreateKeyTest, AFailureIsToldWithItsCode) {
  Fail(Operation::kCreateKey, 5);
  EXPECT_EQ(mdlRegistry::CreateKey(kBranch, "web1"), 5);
  EXPECT_EQ(Entries(),
            List{"Hitwick : Unable to create key in registry : " + kBranch + "\\web1 : 5"});
  EXPECT_EQ(boxes_.shown, List{"Unable to create key in registry : " + kBranch + "\\web1\n5"});
}

using SetStringValueTest = RegistryTest;

TEST_F(SetStringValueTest, WritesTheText) {
  mdlRegistry::CreateKey(kBranch, "web1");
  mdlRegistry::SetStringValue(mdlRegistry::OpenKey(kBranch, "web1").key(), "pattern", "*bot*");
  EXPECT_EQ(store_.Get("web1", "pattern"), "*bot*");
}

TEST_F(SetStringValueTest, AFailureIsToldWithItsCode) {
  store_.PutKey("web1");
  Fail(Operation::kSetValue, 5);
  mdlRegistry::SetStringValue(mdlRegistry::OpenKey(kBranch, "web1").key(), "pattern", "*");
  EXPECT_EQ(Entries(), List{"Hitwick : Unable to write to registry : pattern : 5"});
  EXPECT_EQ(boxes_.shown, List{"Unable to write to registry : pattern\n5"});
}

// Where the store is not the registry that the messages name, a box says where it is.
TEST_F(RegistryTest, BoxesThatNameTheRegistrySayWhereItIs) {
  store_.PutKey("web1");
  store_.place = "That is ";
  const std::string branch = "\nThat is " + kBranch;
  const std::string site = branch + "\\web1";
  Fail(Operation::kCreateKey, 5);
  mdlRegistry::CreateKey(kBranch, "web1");
  Fail(Operation::kSetValue, 5);
  mdlRegistry::SetStringValue(mdlRegistry::OpenKey(kBranch, "web1").key(), "pattern", "*");
  Fail(Operation::kQueryInfo, 1016);
  mdlRegistry::DeleteSiteValues(kBranch, "web1");
  mdlRegistry::SiteNames();
  Fail(Operation::kOpenKey, 5);
  mdlRegistry::ReadSetting("web1", "UsageDir", "");
  mdlRegistry::DeleteSiteValues(kBranch, "web1");
  mdlRegistry::DeleteSiteKey(kBranch, "web1");
  mdlRegistry::SiteNames();
  const List places = {site, site, site, branch, site, site, branch, branch};
  ASSERT_EQ(boxes_.shown.size(), places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    EXPECT_TRUE(boxes_.shown[i].ends_with(places[i])) << boxes_.shown[i];
  }
}

using GetStringValueTest = RegistryTest;

TEST_F(GetStringValueTest, ReadsAValueByItsName) {
  store_.Put("web1", "field", "c-ip");
  store_.Put("web1", "pattern", "10.*");
  EXPECT_EQ(Read("pattern"), "10.*");
  EXPECT_EQ(Read("missing"), "fallback");
}

TEST_F(GetStringValueTest, LetterCaseOfTheNameCounts) {
  store_.Put("web1", "Pattern", "10.*");
  EXPECT_EQ(Read("pattern"), "fallback");
  EXPECT_EQ(Read("Pattern"), "10.*");
}

TEST_F(GetStringValueTest, TheSeventhValueIsReadAndTheEighthIsMissing) {
  for (int i = 1; i <= 8; ++i) store_.Put("web1", "v" + std::to_string(i), std::to_string(i));
  EXPECT_EQ(Read("v7"), "7");
  EXPECT_EQ(Read("v8"), "fallback");
}

TEST_F(GetStringValueTest, ControlBytesAreDropped) {
  store_.Put("web1", "pattern", "a\r\nb\tc\x1F d\x7F\xE4");
  EXPECT_EQ(Read("pattern"), "abc d\x7F\xE4");
}

TEST_F(GetStringValueTest, TheBufferGrowsUntilTheValueFits) {
  for (const std::size_t size : {1019u, 1020u, 2040u, 100000u}) {
    store_.Put("web1", "pattern", std::string(size, 'x'));
    EXPECT_EQ(Read("pattern"), std::string(size, 'x'));
  }
}

TEST_F(GetStringValueTest, AValueThatCannotBeReadIsPassedOver) {
  store_.Put("web1", std::string(300, 'n'), "name too long to enumerate");
  store_.Put("web1", "pattern", "x");
  EXPECT_EQ(Read("pattern"), "x");
  store_.Fail({Operation::kEnumValue, 5, "", 0, 1});
  EXPECT_EQ(Read("pattern"), "x");
}

TEST_F(GetStringValueTest, AValueThatIsNoTextIsToldAndCountsAsMissing) {
  store_.PutNoText("web1", "pattern");
  const mdlRegistry::OpenedKey key = mdlRegistry::OpenKey(kBranch, "web1");
  EXPECT_EQ(mdlRegistry::GetStringValue(key.key(), "pattern", "none"), "none");
  EXPECT_EQ(Entries(), List{"Hitwick: Value 'pattern' in the registry is neither a text nor a "
                            "number, and counts as missing"});
}

TEST_F(GetStringValueTest, NoMoreItemsEndsTheSearchAtOnce) {
  store_.Put("web1", "field", "c-ip");
  store_.Put("web1", "pattern", "x");
  store_.Fail({Operation::kEnumValue, 259, "", 0, 1});
  EXPECT_EQ(Read("pattern"), "fallback");
}

using DeleteSiteValuesTest = RegistryTest;

TEST_F(DeleteSiteValuesTest, AMissingKeyIsASilentSuccess) {
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  ExpectNothingTold();
}

TEST_F(DeleteSiteValuesTest, EmptiesTheKeyAndLeavesIt) {
  MakeNestedSite();
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  EXPECT_TRUE(store_.HasKey("web1"));
  EXPECT_FALSE(store_.HasKey("web1\\Filters"));
  EXPECT_FALSE(store_.Get("web1", "UsageDir"));
  EXPECT_FALSE(store_.Get("web1", "MaxListSize"));
  EXPECT_EQ(store_.Get("web2", "UsageDir"), "/other");
  ExpectNothingTold();
}

TEST_F(DeleteSiteValuesTest, AKeyThatCannotBeOpenedIsToldWithTwoBlanks) {
  Fail(Operation::kOpenKey, 5);
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 5);
  const std::string text =
      "Error removing configuration values from registry : RegOpenKeyEx(" + kBranch + "\\web1)";
  EXPECT_EQ(Entries(), List{"Hitwick :  " + text + " : 5"});
  EXPECT_EQ(boxes_.shown, List{text + "\n5"});
  ExpectOnlyWarnings();
}

TEST_F(DeleteSiteValuesTest, AKeyThatCannotBeQueriedIsTold) {
  MakeNestedSite();
  Fail(Operation::kQueryInfo, 1016);
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 1016);
  const std::string text = "Unable to read from registry : " + kBranch + "\\web1";
  EXPECT_EQ(Entries(), List{"Hitwick : " + text + " : 1016"});
  EXPECT_EQ(boxes_.shown, List{text + "\nError code : 1016"});
  EXPECT_EQ(store_.Get("web1", "UsageDir"), "/u");
}

TEST_F(DeleteSiteValuesTest, AKeyThatVanishesMeanwhileIsASuccess) {
  MakeNestedSite();
  Fail(Operation::kQueryInfo, 2);
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  ExpectNothingTold();
}

TEST_F(DeleteSiteValuesTest, AValueThatCannotBeQueriedIsPassedOver) {
  store_.Put("web1", "a", "1");
  store_.Put("web1", "long", std::string(1000, 'x'));
  store_.Put("web1", "b", "2");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 234);
  EXPECT_EQ(Entries(), List{"Hitwick : Unable to query value of site 'web1' value #1"});
  EXPECT_EQ(boxes_.shown, List{"Unable to query value of site 'web1' value #1\nError code : 234"});
  ExpectOnlyWarnings();
  EXPECT_FALSE(store_.Get("web1", "a"));
  EXPECT_FALSE(store_.Get("web1", "b"));
  EXPECT_TRUE(store_.Get("web1", "long"));
}

TEST_F(DeleteSiteValuesTest, AValueThatIsNoTextIsDeletedToo) {
  store_.PutNoText("web1", "x");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  EXPECT_FALSE(store_.Get("web1", "x"));
  ExpectNothingTold();
}

TEST_F(DeleteSiteValuesTest, AValueOf999BytesStillFits) {
  store_.Put("web1", "long", std::string(999, 'x'));
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  EXPECT_FALSE(store_.Get("web1", "long"));
}

TEST_F(DeleteSiteValuesTest, AValueThatCannotBeDeletedIsPassedOver) {
  store_.Put("web1", "a", "1");
  store_.Put("web1", "b", "2");
  store_.Put("web1", "c", "3");
  Fail(Operation::kDeleteValue, 5, "b");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 5);
  EXPECT_EQ(Entries(), List{"Hitwick : Unable to delete value of site 'web1' (b)"});
  EXPECT_EQ(boxes_.shown, List{"Unable to delete value of site 'web1' (b)\nError code : 5"});
  EXPECT_FALSE(store_.Get("web1", "a"));
  EXPECT_TRUE(store_.Get("web1", "b"));
  EXPECT_FALSE(store_.Get("web1", "c"));
}

TEST_F(DeleteSiteValuesTest, AValueThatIsGoneAlreadyIsNoError) {
  store_.Put("web1", "a", "1");
  Fail(Operation::kDeleteValue, 2);
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 0);
  ExpectNothingTold();
}

TEST_F(DeleteSiteValuesTest, ASubkeyThatCannotBeDeletedIsPassedOver) {
  MakeNestedSite();
  Fail(Operation::kDeleteKey, 5, "a");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1\\Filters"), 5);
  const std::string subkey = "Error deleting subkey(" + kBranch + "\\web1\\Filters \\ a)";
  EXPECT_EQ(Entries(), List{"Hitwick : " + subkey + " : 5"});
  EXPECT_EQ(boxes_.shown, List{subkey + "\n5"});
  EXPECT_TRUE(store_.HasKey("web1\\Filters\\a"));
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\b"));
  EXPECT_FALSE(store_.Get("web1\\Filters", "order"));
}

TEST_F(DeleteSiteValuesTest, AFailureFurtherDownIsToldOnTheWayUp) {
  MakeNestedSite();
  Fail(Operation::kDeleteKey, 5, "a");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 5);
  const std::string site = kBranch + "\\web1";
  EXPECT_EQ(Entries(), (List{"Hitwick : Error deleting subkey(" + site + "\\Filters \\ a) : 5",
                             "Hitwick : Error deleting branch(" + site + " \\ Filters) : 5",
                             "Hitwick : Error deleting subkey(" + site + " \\ Filters) : 5"}));
  EXPECT_EQ(boxes_.shown, (List{"Error deleting subkey(" + site + "\\Filters \\ a)\n5",
                                "Error deleting subkey(" + site + " \\ Filters)\n5",
                                "Error deleting subkey(" + site + " \\ Filters)\n5"}));
  EXPECT_FALSE(store_.Get("web1", "UsageDir"));
}

TEST_F(DeleteSiteValuesTest, AfterASubkeyThatCouldNotBeEmptiedTheNextFollows) {
  MakeNestedSite();
  Fail(Operation::kQueryInfo, 5, kBranch + "\\web1\\Filters\\a");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1\\Filters"), 5);
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\a"));
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\b"));
}

TEST_F(DeleteSiteValuesTest, ASubkeyThatCannotBeEnumeratedIsPassedOver) {
  MakeNestedSite();
  store_.Fail({Operation::kEnumKey, 5, kBranch + "\\web1\\Filters", 0, 1});
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1\\Filters"), 5);
  EXPECT_EQ(Entries(),
            List{"Hitwick : Unable to read from registry : " + kBranch + "\\web1\\Filters : 5"});
  EXPECT_TRUE(store_.HasKey("web1\\Filters\\a"));
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\b"));
}

TEST_F(DeleteSiteValuesTest, TheLastErrorIsTheResult) {
  MakeNestedSite();
  Fail(Operation::kDeleteKey, 5, "Filters");
  Fail(Operation::kDeleteValue, 1016, "UsageDir");
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 1016);
}

TEST_F(DeleteSiteValuesTest, BatchRunsShowNoBox) {
  mdlConfigs::Run().BatchMode = true;
  Fail(Operation::kOpenKey, 5);
  EXPECT_EQ(mdlRegistry::DeleteSiteValues(kBranch, "web1"), 5);
  EXPECT_EQ(Entries().size(), 1u);
  EXPECT_EQ(boxes_.shown, List());
}

using DeleteSiteKeyTest = RegistryTest;

TEST_F(DeleteSiteKeyTest, DeletesTheKeyWithAllThatIsBelowIt) {
  MakeNestedSite();
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch + "\\web1", "Filters"), 0);
  EXPECT_FALSE(store_.HasKey("web1\\Filters"));
  EXPECT_EQ(store_.Get("web1", "UsageDir"), "/u");
  ExpectNothingTold();
}

TEST_F(DeleteSiteKeyTest, AMissingBranchOrKeyIsASilentSuccess) {
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch, "web1"), 0);
  store_.PutKey("web2");
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch, "web1"), 0);
  ExpectNothingTold();
}

TEST_F(DeleteSiteKeyTest, ABranchThatCannotBeOpenedIsTold) {
  Fail(Operation::kOpenKey, 5, kBranch);
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch, "web1"), 5);
  const std::string text =
      "Error removing branch configuration from registry : RegOpenKeyEx(" + kBranch + ")";
  EXPECT_EQ(Entries(), List{"Hitwick : " + text + " : 5"});
  EXPECT_EQ(boxes_.shown, List{text + "\n5"});
  ExpectOnlyWarnings();
}

TEST_F(DeleteSiteKeyTest, AKeyThatCannotBeEmptiedIsToldAndDeletedAllTheSame) {
  store_.Put("web1", "long", std::string(1000, 'x'));
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch, "web1"), 234);
  EXPECT_EQ(Entries(), (List{"Hitwick : Unable to query value of site 'web1' value #0",
                             "Hitwick : Error deleting subtree(" + kBranch + " \\ web1) : 234"}));
  ASSERT_EQ(boxes_.shown.size(), 2u);
  EXPECT_EQ(boxes_.shown[1], "Error deleting subtree(" + kBranch + " \\ web1)\n234");
  EXPECT_FALSE(store_.HasKey("web1"));
}

TEST_F(DeleteSiteKeyTest, AKeyThatCannotBeDeletedIsTold) {
  store_.PutKey("web1");
  Fail(Operation::kDeleteKey, 5);
  EXPECT_EQ(mdlRegistry::DeleteSiteKey(kBranch, "web1"), 5);
  EXPECT_EQ(Entries(), List{"Hitwick : Error deleting subkey(web1) : 5"});
  EXPECT_EQ(boxes_.shown, List{"Error deleting subkey(web1)\n5"});
}

using SettingTest = RegistryTest;

TEST_F(SettingTest, IsReadWithoutRegardToTheCaseOfItsName) {
  store_.Put("web1", "IISLogDir", "/logs");
  EXPECT_EQ(mdlRegistry::ReadSetting("WEB1", "iislogdir", "none"), "/logs");
}

TEST_F(SettingTest, AMissingSectionOrValueGivesTheFallback) {
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UsageDir", "none"), "none");
  store_.Put("web1", "x", "1");
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UsageDir", "none"), "none");
  ExpectNothingTold();
}

TEST_F(SettingTest, AnEmptyValueIsNotMissing) {
  store_.Put("web1", "MaxListSize", "");
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "MaxListSize", "100"), "");
}

TEST_F(SettingTest, AnyNumberOfValuesOfAnyLengthIsLookedAt) {
  for (int i = 0; i < 20; ++i) store_.Put("web1", "v" + std::to_string(i), "x");
  store_.Put("web1", "UsageDir", std::string(5000, 'u'));
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UsageDir", "none"), std::string(5000, 'u'));
}

TEST_F(SettingTest, ASectionThatCannotBeReadIsTold) {
  Fail(Operation::kOpenKey, 5);
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UsageDir", "none"), "none");
  EXPECT_EQ(Entries(), List{"Hitwick : Unable to read from registry : " + kBranch + "\\web1 : 5"});
}

TEST_F(SettingTest, AValueThatCannotBeReadIsPassedOver) {
  store_.Put("web1", "a", "1");
  store_.Put("web1", "b", "2");
  store_.Fail({Operation::kEnumValue, 5, "", 0, 1});
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "b", "none"), "2");
}

TEST_F(SettingTest, AValueThatIsNoTextIsToldAndCountsAsMissing) {
  store_.PutNoText("web1", "MaxListSize");
  store_.Put("web1", "UseUTC", "True");
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "MaxListSize", "100"), "100");
  const List told = {"Hitwick: Value '" + kBranch +
                     "\\web1\\MaxListSize' in the registry is neither a text nor a number, and "
                     "counts as missing"};
  EXPECT_EQ(Entries(), told);
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UseUTC", "False"), "True");
  EXPECT_EQ(Entries(), told);
}

TEST_F(SettingTest, SavingCreatesTheSection) {
  EXPECT_EQ(mdlRegistry::SaveSetting("web1", "UseUTC", "True"), 0);
  EXPECT_EQ(store_.Get("web1", "UseUTC"), "True");
}

TEST_F(SettingTest, SavingReturnsTheErrorCode) {
  Fail(Operation::kSetValue, 112);
  EXPECT_EQ(mdlRegistry::SaveSetting("web1", "UseUTC", "True"), 112);
  Fail(Operation::kCreateKey, 5);
  EXPECT_EQ(mdlRegistry::SaveSetting("web1", "UseUTC", "True"), 5);
}

using SiteNamesTest = RegistryTest;

TEST_F(SiteNamesTest, AreAllSectionsInTheStoresOrder) {
  for (const char* site : {"web2", "INI", "web1"}) store_.PutKey(site);
  store_.PutKey("web2\\Filters");
  EXPECT_EQ(mdlRegistry::SiteNames(), (List{"web2", "INI", "web1"}));
}

TEST_F(SiteNamesTest, ABranchThatCannotBeOpenedIsShownOnly) {
  EXPECT_EQ(mdlRegistry::SiteNames(), List());
  EXPECT_EQ(boxes_.shown, List{"Error in reading site configuration from registry : RegOpenKeyEx(" +
                               kBranch + ")\n2"});
  EXPECT_EQ(Entries(), List());
}

TEST_F(SiteNamesTest, ASectionThatCannotBeEnumeratedIsSkipped) {
  for (const char* site : {"a", "b", "c"}) store_.PutKey(site);
  store_.Fail({Operation::kEnumKey, 5, "", 1, 1});
  EXPECT_EQ(mdlRegistry::SiteNames(), (List{"a", "c"}));
}

using RemoveSiteTest = RegistryTest;

TEST_F(RemoveSiteTest, AsksFirstAndDoesNothingWithoutAYes) {
  MakeNestedSite();
  boxes_.answers = {false};
  EXPECT_FALSE(mdlRegistry::RemoveSite("web1"));
  ASSERT_EQ(boxes_.questions.size(), 1u);
  EXPECT_EQ(boxes_.questions[0].caption, "Confirm delete of web1");
  EXPECT_EQ(boxes_.questions[0].text,
            "Are you sure you want to delete configuration for site 'web1'");
  EXPECT_EQ(store_.Get("web1", "UsageDir"), "/u");
  EXPECT_EQ(store_.changes(), 0);
  ExpectNothingTold();
}

TEST_F(RemoveSiteTest, RemovesTheSiteWithAllItsSubkeys) {
  MakeNestedSite();
  boxes_.answers = {true};
  EXPECT_TRUE(mdlRegistry::RemoveSite("web1"));
  EXPECT_EQ(mdlRegistry::SiteNames(), List{"web2"});
  EXPECT_EQ(Entries(), List{"Hitwick : Deleted configuration of site 'web1'"});
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kInformation);
}

TEST_F(RemoveSiteTest, ASiteThatIsGoneAlreadyIsRemovedWithoutComplaint) {
  boxes_.answers = {true};
  EXPECT_TRUE(mdlRegistry::RemoveSite("web1"));
  EXPECT_EQ(Entries(), List{"Hitwick : Deleted configuration of site 'web1'"});
  EXPECT_EQ(boxes_.shown, List());
}

TEST_F(RemoveSiteTest, ValuesThatStayAreAWarningAndKeepTheKey) {
  store_.Put("web1", "a", "1");
  boxes_.answers = {true};
  Fail(Operation::kDeleteValue, 5);
  EXPECT_FALSE(mdlRegistry::RemoveSite("web1"));
  EXPECT_TRUE(
      log_.ContainsWarning("Hitwick : Unable to delete configuration values of site 'web1'"));
  EXPECT_TRUE(store_.HasKey("web1"));
}

TEST_F(RemoveSiteTest, AKeyThatStaysIsAWarning) {
  store_.PutKey("web1");
  boxes_.answers = {true};
  Fail(Operation::kDeleteKey, 5);
  EXPECT_FALSE(mdlRegistry::RemoveSite("web1"));
  EXPECT_EQ(Entries().back(), "Hitwick : Unable to delete configuration of site 'web1'");
  ExpectOnlyWarnings();
}

}  // namespace
