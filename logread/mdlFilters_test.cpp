#include "logread/mdlFilters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "config/mdlConfigs.h"
#include "platform/service.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/recording_message_boxes.h"

namespace {

using mdlFilters::CheckFilters;
using mdlFilters::DeleteFilter;
using mdlFilters::FieldRules;
using mdlFilters::Rules;
using mdlFilters::SetFilter;
using mdlFilters::Verdict;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Operation = fakes::FakeSettingsStore::Operation;

constexpr char kSiteKey[] = "Software\\VB and VBA Program Settings\\Hitwick\\web1";

class Filters : public testing::Test {
 protected:
  Filters() {
    mdlConfigs::ResetRun();
    mdlConfigs::Run().BatchMode = true;
    mdlFilters::Reset();
  }
  ~Filters() override {
    EXPECT_EQ(store_.open_keys(), 0U);
    mdlFilters::Reset();
    mdlConfigs::ResetRun();
  }

  static void Include(const std::string& name, const std::string& field,
                      const std::string& pattern) {
    EXPECT_EQ(SetFilter(name, true, field, pattern), 0);
  }
  static void Exclude(const std::string& name, const std::string& field,
                      const std::string& pattern) {
    EXPECT_EQ(SetFilter(name, false, field, pattern), 0);
  }
  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const mdlFilters::FilterRule& rule : Rules()) names.push_back(rule.name);
    return names;
  }

  void Store(const std::string& name, const std::string& includes, const std::string& field,
             const std::string& pattern) {
    const std::string section = "web1\\Filters\\" + name;
    store_.Put(section, "name", name);
    store_.Put(section, "includes", includes);
    store_.Put(section, "field", field);
    store_.Put(section, "pattern", pattern);
  }
  std::string Stored(const std::string& rule, const std::string& value) {
    return store_.Get("web1\\Filters\\" + rule, value).value_or("(missing)");
  }

  fakes::FakeSettingsStore store_;
  fakes::RecordingEventLog log_;
  fakes::RecordingMessageBoxes boxes_;
  platform::Replacement<platform::SettingsStore> use_store_{store_};
  platform::Replacement<platform::EventLog> use_log_{log_};
  platform::Replacement<platform::MessageBoxes> use_boxes_{boxes_};
};

TEST_F(Filters, WithoutRulesEverythingIsKept) {
  EXPECT_EQ(CheckFilters("cs-uri-stem", "/index.htm"), Verdict::kKeep);
  EXPECT_TRUE(FieldRules("cs-uri-stem").empty());
}

TEST_F(Filters, ExcludeRuleSkipsWhatMatches) {
  Exclude("robots", "cs(User-Agent)", "*robot*");
  EXPECT_EQ(CheckFilters("cs(User-Agent)", "a-robot/1.0"), Verdict::kSkip);
  EXPECT_EQ(CheckFilters("cs(User-Agent)", "Mozilla/5.0"), Verdict::kKeep);
}

TEST_F(Filters, IncludeRuleSkipsWhatDoesNotMatch) {
  Include("inside", "c-ip", "10.*");
  EXPECT_EQ(CheckFilters("c-ip", "10.1.2.3"), Verdict::kKeep);
  EXPECT_EQ(CheckFilters("c-ip", "100.1.2.3"), Verdict::kSkip);
}

TEST_F(Filters, AllIncludeRulesOfAFieldMustMatch) {
  Include("pages", "cs-uri-stem", "*.htm");
  Include("docs", "cs-uri-stem", "/docs/*");
  EXPECT_EQ(CheckFilters("cs-uri-stem", "/docs/a.htm"), Verdict::kKeep);
  EXPECT_EQ(CheckFilters("cs-uri-stem", "/docs/a.gif"), Verdict::kSkip);
  EXPECT_EQ(CheckFilters("cs-uri-stem", "/a.htm"), Verdict::kSkip);
}

TEST_F(Filters, AnyMatchingExcludeRuleSkips) {
  Exclude("first", "sc-status", "404");
  Exclude("second", "sc-status", "500");
  EXPECT_EQ(CheckFilters("sc-status", "404"), Verdict::kSkip);
  EXPECT_EQ(CheckFilters("sc-status", "500"), Verdict::kSkip);
  EXPECT_EQ(CheckFilters("sc-status", "200"), Verdict::kKeep);
}

TEST_F(Filters, LaterRuleThatKeepsDoesNotUndoASkip) {
  Exclude("admin", "cs-uri-stem", "/admin/*");
  Include("pages", "cs-uri-stem", "*.htm");
  EXPECT_EQ(CheckFilters("cs-uri-stem", "/admin/a.htm"), Verdict::kSkip);
}

TEST_F(Filters, PatternAndFieldCountLetterCase) {
  Exclude("bots", "cs(User-Agent)", "*Bot*");
  EXPECT_EQ(CheckFilters("cs(User-Agent)", "a bot"), Verdict::kKeep);
  EXPECT_EQ(CheckFilters("cs(user-agent)", "a Bot"), Verdict::kKeep);
  EXPECT_EQ(CheckFilters("cs(User-Agent)", "a Bot"), Verdict::kSkip);
}

TEST_F(Filters, RuleOfAnotherFieldIsNotAsked) {
  Include("inside", "c-ip", "10.*");
  EXPECT_TRUE(FieldRules("cs-method").empty());
  EXPECT_EQ(CheckFilters("cs-method", "GET"), Verdict::kKeep);
}

TEST_F(Filters, UnusablePatternIsAnErrorWhereverItStands) {
  Exclude("skips", "c-ip", "*");
  EXPECT_EQ(SetFilter("broken", false, "c-ip", "10.[0-9"), 0);
  EXPECT_EQ(CheckFilters("c-ip", "10.1.2.3"), Verdict::kBadPattern);
  DeleteFilter(1);
  EXPECT_EQ(CheckFilters("c-ip", ""), Verdict::kBadPattern);
  Exclude("skips", "c-ip", "*");
  EXPECT_EQ(CheckFilters("c-ip", "10.1.2.3"), Verdict::kBadPattern);
  EXPECT_EQ(CheckFilters("cs-method", "GET"), Verdict::kKeep);
}

TEST_F(Filters, PreparedRulesKeepWhatTheListHeld) {
  Exclude("posts", "cs-method", "POST");
  FieldRules prepared("cs-method");
  mdlFilters::Reset();
  EXPECT_FALSE(prepared.empty());
  EXPECT_EQ(prepared.Check("POST"), Verdict::kSkip);
  EXPECT_EQ(prepared.Check("GET"), Verdict::kKeep);
}

TEST_F(Filters, RulesStandInTheOrderOfAdding) {
  Include("b", "c-ip", "1");
  Include("a", "c-ip", "2");
  EXPECT_THAT(Names(), ElementsAre("b", "a"));
}

TEST_F(Filters, RuleOfTheSameNameIsReplacedInPlace) {
  Include("one", "c-ip", "1");
  Include("two", "c-ip", "2");
  EXPECT_EQ(SetFilter("one", false, "cs-method", "GET"), 0);
  Include("ONE", "c-ip", "3");
  EXPECT_THAT(Names(), ElementsAre("one", "two", "ONE"));
  EXPECT_FALSE(Rules()[0].includes);
  EXPECT_EQ(Rules()[0].field, "cs-method");
  EXPECT_EQ(Rules()[0].pattern, "GET");
}

TEST_F(Filters, NameOfOtherCharactersIsRefused) {
  for (const char* name : {"", "my filter", "a-b", "a.b", "\xC3\xA9", "a\\b", "[x]"}) {
    EXPECT_EQ(SetFilter(name, true, "c-ip", "*"), 1) << name;
  }
  EXPECT_THAT(Rules(), IsEmpty());
  EXPECT_EQ(SetFilter("Az09_", true, "c-ip", "*"), 0);
}

TEST_F(Filters, ListTakesNoMoreRulesThanSixteenBitsCount) {
  for (std::size_t i = 0; i < mdlFilters::kMaxRules; ++i) {
    ASSERT_EQ(SetFilter("r" + std::to_string(i), true, "c-ip", "*"), 0);
  }
  EXPECT_EQ(SetFilter("one_more", true, "c-ip", "*"), 1);
  EXPECT_EQ(SetFilter("r5", false, "c-ip", "*"), 0);
  EXPECT_EQ(Rules().size(), 32767U);
}

TEST_F(Filters, DeletingMovesTheLaterRulesDown) {
  for (const char* name : {"a", "b", "c"}) Include(name, "c-ip", "*");
  DeleteFilter(2);
  EXPECT_THAT(Names(), ElementsAre("a", "c"));
}

TEST_F(Filters, DeletingAnIndexOutsideTheListDoesNothing) {
  for (const char* name : {"a", "b"}) Include(name, "c-ip", "*");
  for (const int index : {0, -1, 3, -32768, 32767}) DeleteFilter(static_cast<std::int16_t>(index));
  EXPECT_THAT(Names(), ElementsAre("a", "b"));
}

TEST_F(Filters, LoadedRulesTakeTheStoresOrderAndTheSubkeysNames) {
  Store("two", "True", "c-ip", "10.*");
  Store("one", "False", "cs(User-Agent)", "*robot*");
  store_.Put("web1\\Filters\\one", "name", "something_else");
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("two", "one"));
  EXPECT_TRUE(Rules()[0].includes);
  EXPECT_FALSE(Rules()[1].includes);
  EXPECT_EQ(Rules()[1].field, "cs(User-Agent)");
  EXPECT_EQ(Rules()[1].pattern, "*robot*");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(Filters, OnlyTheExactTextTrueMakesAnIncludeRule) {
  Store("lower", "true", "c-ip", "*");
  Store("number", "1", "c-ip", "*");
  mdlFilters::LoadFilters("web1");
  ASSERT_EQ(Rules().size(), 2U);
  EXPECT_FALSE(Rules()[0].includes);
  EXPECT_FALSE(Rules()[1].includes);
}

TEST_F(Filters, StoredRuleWithoutFieldOrPatternIsIgnored) {
  Store("no_field", "True", "", "*");
  Store("no_pattern", "True", "c-ip", "");
  store_.PutKey("web1\\Filters\\nothing");
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Rules(), IsEmpty());
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(Filters, StoredRuleWithARefusedNameIsIgnoredWithAWarning) {
  Store("my filter", "True", "c-ip", "*");
  Store("good", "True", "c-ip", "*");
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("good"));
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_THAT(log_.entries[0].text, HasSubstr("'my filter'"));
}

TEST_F(Filters, LoadingAddsToTheListAndReplacesRulesOfTheSameName) {
  Include("mine", "c-ip", "1");
  Exclude("shared", "c-ip", "2");
  Store("shared", "True", "cs-method", "GET");
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("mine", "shared"));
  EXPECT_EQ(Rules()[1].pattern, "GET");
}

TEST_F(Filters, SiteWithoutFiltersSaysSoAndRunsWithoutRules) {
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Rules(), IsEmpty());
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_TRUE(log_.ContainsInformation(
      "Hitwick: No filters found when reading configuration from registry : RegOpenKeyEx(2)\n"));
}

TEST_F(Filters, FiltersThatCannotBeOpenedNameTheirErrorCode) {
  Store("one", "True", "c-ip", "*");
  store_.Fail({.operation = Operation::kOpenKey, .code = platform::kStoreAccessDenied});
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Rules(), IsEmpty());
  EXPECT_EQ(log_.CountWith("RegOpenKeyEx(5)\n"), 1);
}

TEST_F(Filters, SubkeyThatCannotBeOpenedIsPassedOver) {
  Store("one", "True", "c-ip", "*");
  Store("two", "True", "c-ip", "*");
  store_.Fail({.operation = Operation::kOpenKey,
               .code = platform::kStoreAccessDenied,
               .name = std::string(kSiteKey) + "\\Filters\\one"});
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("two"));
  EXPECT_EQ(log_.CountWith("web1\\Filters\\one) : 5"), 1);
}

TEST_F(Filters, ListingThatBreaksOffKeepsWhatWasRead) {
  Store("one", "True", "c-ip", "*");
  Store("two", "True", "c-ip", "*");
  store_.Fail({.operation = Operation::kEnumKey,
               .code = platform::kStoreAccessDenied,
               .name = std::string(kSiteKey) + "\\Filters",
               .skip = 1});
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("one"));
  EXPECT_EQ(log_.CountWith("web1\\Filters) : 5"), 1);
}

TEST_F(Filters, RememberedVerdictsAreThoseOfTheRules) {
  mdlFilters::SetFilter("Ex_digit", false, "cs-uri-stem", "*7#*");
  mdlFilters::SetFilter("In_slash", true, "cs-uri-stem", "/*");
  mdlFilters::FieldRules rules("cs-uri-stem");
  std::mt19937 random(7);
  for (int i = 0; i < 100000; ++i) {
    const auto number = std::to_string(random() % 20000);
    const std::string value =
        (i % 3 == 0 ? "" : "/") + number + std::string(i % 50 == 0 ? 600 : 0, 'x');
    ASSERT_EQ(rules.Check(value), rules.Evaluate(value)) << value;
  }
  EXPECT_EQ(rules.Check(""), mdlFilters::Verdict::kSkip);
  EXPECT_EQ(rules.Check("/a71"), mdlFilters::Verdict::kSkip);
  EXPECT_EQ(rules.Check("/a7"), mdlFilters::Verdict::kKeep);
}

TEST_F(Filters, SavedRulesHoldTheirFourValues) {
  Exclude("Ex_Browser", "cs(User-Agent)", "*robot*");
  Include("inside", "c-ip", "10.*");
  mdlFilters::SaveFilters("web1");
  EXPECT_EQ(Stored("Ex_Browser", "name"), "Ex_Browser");
  EXPECT_EQ(Stored("Ex_Browser", "includes"), "False");
  EXPECT_EQ(Stored("Ex_Browser", "field"), "cs(User-Agent)");
  EXPECT_EQ(Stored("Ex_Browser", "pattern"), "*robot*");
  EXPECT_EQ(Stored("inside", "includes"), "True");
  EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(Filters, SavingReplacesWhatWasStored) {
  Store("old", "True", "c-ip", "*");
  store_.Put("web1", "MaxListSize", "50");
  Include("new", "c-ip", "10.*");
  mdlFilters::SaveFilters("web1");
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\old"));
  EXPECT_TRUE(store_.HasKey("web1\\Filters\\new"));
  EXPECT_EQ(store_.Get("web1", "MaxListSize"), "50");
}

TEST_F(Filters, SavedRulesAreLoadedInTheirOrder) {
  for (const char* name : {"z", "a", "m"}) Include(name, "c-ip", "*");
  mdlFilters::SaveFilters("web1");
  mdlFilters::Reset();
  mdlFilters::LoadFilters("web1");
  EXPECT_THAT(Names(), ElementsAre("z", "a", "m"));
}

TEST_F(Filters, PruningThatFailsIsLoggedAndSavingGoesOn) {
  Store("old", "True", "c-ip", "*");
  Include("new", "c-ip", "10.*");
  store_.Fail({.operation = Operation::kDeleteKey, .code = platform::kStoreAccessDenied});
  mdlFilters::SaveFilters("web1");
  EXPECT_TRUE(log_.ContainsWarning("Hitwick: Error pruning old filters from registry : (" +
                                   std::string(kSiteKey) + " \\ Filters)\n"));
  EXPECT_EQ(Stored("new", "pattern"), "10.*");
}

TEST_F(Filters, RuleThatCannotBeWrittenIsLoggedAndTheOthersAreSaved) {
  Include("one", "c-ip", "1");
  Include("two", "c-ip", "2");
  store_.Fail({.operation = Operation::kCreateKey,
               .code = platform::kStoreAccessDenied,
               .name = std::string(kSiteKey) + "\\Filters\\one"});
  mdlFilters::SaveFilters("web1");
  EXPECT_FALSE(store_.HasKey("web1\\Filters\\one"));
  EXPECT_EQ(Stored("two", "pattern"), "2");
  EXPECT_EQ(log_.CountWith("web1\\Filters\\one) : 5"), 1);
}

}  // namespace
