#include "config/unread_settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/mdlConfigs.h"
#include "platform/service.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/recording_event_log.h"

namespace {

using List = std::vector<std::string>;

class UnreadSettings : public testing::Test {
 protected:
  UnreadSettings() {
    store_.has_lines = true;
    unread_settings::Reset();
  }
  ~UnreadSettings() override { unread_settings::Reset(); }

  List Reported(const std::string& site = "web1") {
    log_.entries.clear();
    unread_settings::Report(site);
    return log_.Texts();
  }
  static std::string Entry(int line, const std::string& name) {
    return "Hitwick: Line " + std::to_string(line) + " sets '" + name + "', which nothing reads";
  }

  fakes::FakeSettingsStore store_;
  fakes::RecordingEventLog log_;

 private:
  platform::Replacement<platform::SettingsStore> store_replacement_{store_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
};

TEST_F(UnreadSettings, SettingsOfASiteAreKnownInAnyLetterCase) {
  for (const char* name : {"IISLogFormat", "iislogdir", "USAGEDIR", "MaxListSize", "UseUTC",
                           "ShowUsernames", "GenerateCSV", "ClientIPField"}) {
    store_.Put("web1", name, "x");
  }
  EXPECT_EQ(Reported(), List());
}

TEST_F(UnreadSettings, MisspeltOnesAreWarnings) {
  store_.Put("web1", "UsageDir", "x");
  store_.Put("web1", "IISLogdirs", "x");
  store_.Put("web1", "Usage Dir", "x");
  EXPECT_EQ(Reported("WEB1"), (List{Entry(2, "IISLogdirs"), Entry(3, "Usage Dir")}));
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(store_.open_keys(), 0U);
}

TEST_F(UnreadSettings, EachIsReportedOnce) {
  store_.Put("web1", "IISLogdirs", "x");
  EXPECT_EQ(Reported().size(), 1U);
  EXPECT_EQ(Reported(), List());
  store_.Put("web1", "Pattern", "x");
  EXPECT_EQ(Reported("Web1"), List{Entry(2, "Pattern")});
}

TEST_F(UnreadSettings, RulesKnowTheirOwnNamesOnly) {
  const std::string rule = "web1\\FILTERS\\NoRobots";
  for (const char* name : {"name", "includes", "field", "pattern", "Pattern2", "UsageDir"}) {
    store_.Put(rule, name, "x");
  }
  EXPECT_EQ(Reported(), (List{Entry(5, "Pattern2"), Entry(6, "UsageDir")}));
}

TEST_F(UnreadSettings, NamesOfARuleAreReadInTheirLetterCaseOnly) {
  store_.Put("web1\\Filters\\NoRobots", "Pattern", "x");
  EXPECT_EQ(Reported(), List{Entry(1, "Pattern")});
}

TEST_F(UnreadSettings, NothingIsReadElsewhereBelowASite) {
  store_.Put("web1\\Filters", "pattern", "x");
  store_.Put("web1\\Filters\\NoRobots\\More", "field", "x");
  store_.Put("web1\\Filter\\NoRobots", "name", "x");
  EXPECT_EQ(Reported(), (List{Entry(1, "pattern"), Entry(1, "field"), Entry(1, "name")}));
}

TEST_F(UnreadSettings, NothingIsReadOutsideTheSections) {
  store_.Put("", "UsageDir", "x");
  EXPECT_EQ(Reported(), List{Entry(1, "UsageDir")});
}

TEST_F(UnreadSettings, OtherSitesAreLeftToTheirRuns) {
  store_.Put("web2", "IISLogdirs", "x");
  EXPECT_EQ(Reported(), List());
  EXPECT_EQ(Reported("web2"), List{Entry(1, "IISLogdirs")});
}

TEST_F(UnreadSettings, StoreWithoutLinesIsNotLookedAt) {
  store_.has_lines = false;
  store_.Put("web1", "IISLogdirs", "x");
  EXPECT_EQ(Reported(), List());
}

}  // namespace
