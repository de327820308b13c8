#include "config/mdlConfigs.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "platform/service.h"
#include "platform/settings_store.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_settings_store.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/recording_message_boxes.h"

namespace {

using platform::EventLevel;
using platform::JoinPath;
using List = std::vector<std::string>;

const char kRegistryPath[] =
    "'My Computer\\HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Hitwick\\";

std::string FromSystemDrive(const List& parts) {
  std::string path = platform::EnvironmentVariable("SystemDrive");
  for (const std::string& part : parts) path = JoinPath(path, part);
  return path;
}

std::string DefaultUsageFolder() { return FromSystemDrive({"InetPub", "wwwroot", "Usage"}); }

class SettingsTest : public testing::Test {
 protected:
  SettingsTest() { mdlConfigs::ResetRun(); }
  ~SettingsTest() override { mdlConfigs::ResetRun(); }

  static mdlConfigs::RunState& State() { return mdlConfigs::Run(); }
  static mdlConfigs::SiteSettings& Settings() { return State().Settings; }

  // A site "web1" whose folders exist and whose log folder holds a log.
  void PutGoodSite() {
    State().SiteName = "web1";
    files_.AddFile(JoinPath("logs", "ex070115.log"), "");
    files_.AddFolder("usage");
    store_.Put("web1", "IISLogFormat", "W3C");
    store_.Put("web1", "IISLogDir", "logs");
    store_.Put("web1", "UsageDir", "usage");
  }

  int Load() {
    return mdlConfigs::LoadSiteSettings(
        [this](const std::string& site) { filters_loaded_for_.push_back(site); });
  }

  // The names of a site's values in the order in which they were first written.
  List ValueNames(const std::string& site) {
    List names;
    platform::SettingsStore::Key key = 0;
    if (store_.OpenKey(std::string(platform::kSettingsBranch) + "\\" + site, &key) != 0) {
      return names;
    }
    std::string name;
    std::string data;
    for (std::uint32_t i = 0; store_.EnumValue(key, i, 1000, &name, &data) == 0; ++i) {
      names.push_back(name);
    }
    store_.CloseKey(key);
    return names;
  }

  static std::string NoLogsText(const std::string& folder, const std::string& site) {
    return "No IIS log files found in '" + folder +
           "'. If this is the wrong directory reset registry " + kRegistryPath + site +
           "\\IISLogDir'. Or delete to use default of " + mdlConfigs::DefaultLogFolder();
  }

  fakes::FakeFileSystem files_;
  fakes::FakeSettingsStore store_;
  fakes::RecordingEventLog log_;
  fakes::RecordingMessageBoxes boxes_;
  List filters_loaded_for_;

 private:
  platform::Replacement<platform::FileSystem> file_replacement_{files_};
  platform::Replacement<platform::SettingsStore> store_replacement_{store_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
  platform::Replacement<platform::MessageBoxes> box_replacement_{boxes_};
};

using LoadSiteSettings = SettingsTest;
using Messages = SettingsTest;

TEST_F(LoadSiteSettings, ReadsEveryValue) {
  PutGoodSite();
  store_.Put("web1", "MaxListSize", "25");
  store_.Put("web1", "UseUTC", "True");
  store_.Put("web1", "ShowUsernames", "True");
  store_.Put("web1", "GenerateCSV", "True");
  store_.Put("web1", "ClientIPField", "X-Forwarded-For");
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(Settings().LogFormat, "W3C");
  EXPECT_EQ(Settings().LogDir, "logs");
  EXPECT_EQ(Settings().UsageDir, "usage");
  EXPECT_EQ(Settings().MaxListSize, 25);
  EXPECT_TRUE(Settings().UseUTC);
  EXPECT_TRUE(Settings().ShowUsernames);
  EXPECT_TRUE(Settings().GenerateCSV);
  EXPECT_EQ(Settings().ClientIPField, "X-Forwarded-For");
  EXPECT_EQ(filters_loaded_for_, List{"web1"});
  EXPECT_EQ(store_.open_keys(), 0U);
}

TEST_F(LoadSiteSettings, GoodSiteIsNamedInOneEntry) {
  PutGoodSite();
  Load();
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, EventLevel::kInformation);
  EXPECT_EQ(log_.entries[0].text, "Hitwick: operating on site 'web1'");
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(LoadSiteSettings, SiteIsIniWhenNoneIsNamed) {
  PutGoodSite();
  State().SiteName = "";
  store_.Put("INI", "IISLogDir", "logs");
  store_.Put("INI", "UsageDir", "usage");
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(State().SiteName, "INI");
  EXPECT_EQ(log_.Texts(), List{"Hitwick: operating on site 'INI'"});
  EXPECT_EQ(filters_loaded_for_, List{"INI"});
}

TEST_F(LoadSiteSettings, SectionIsCreatedOnFirstWrite) {
  EXPECT_EQ(Load(), 1);
  EXPECT_TRUE(store_.HasKey("INI"));
  EXPECT_EQ(ValueNames("INI"), List{"IISLogFormat"});
  EXPECT_EQ(store_.Get("INI", "IISLogFormat"), "W3C");
}

TEST_F(LoadSiteSettings, MissingValuesHaveDefaults) {
  files_.AddFile(JoinPath(mdlConfigs::DefaultLogFolder(), "u_ex070115.log"), "");
  files_.AddFolder(DefaultUsageFolder());
  Settings().MaxListSize = 7;
  Settings().UseUTC = Settings().ShowUsernames = Settings().GenerateCSV = true;
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(Settings().LogFormat, "W3C");
  EXPECT_EQ(Settings().LogDir, mdlConfigs::DefaultLogFolder());
  EXPECT_EQ(Settings().UsageDir, DefaultUsageFolder());
  EXPECT_EQ(Settings().MaxListSize, 100);
  EXPECT_FALSE(Settings().UseUTC);
  EXPECT_FALSE(Settings().ShowUsernames);
  EXPECT_FALSE(Settings().GenerateCSV);
  EXPECT_EQ(Settings().ClientIPField, "c-ip");
}

TEST_F(LoadSiteSettings, DefaultLogFolderFollowsTheSystemsVersion) {
  if (mod_systemInfo::GetOSMajorVersion() >= 6) {
    EXPECT_EQ(mdlConfigs::DefaultLogFolder(),
              FromSystemDrive({"inetpub", "logs", "LogFiles", "W3SVC1"}));
  } else {
    EXPECT_EQ(mdlConfigs::DefaultLogFolder(),
              JoinPath(JoinPath(JoinPath(platform::EnvironmentVariable("SYSTEMROOT"), "system32"),
                                "LogFiles"),
                       "W3SVC1"));
  }
}

TEST_F(LoadSiteSettings, CheckedValuesAreWrittenBackInOrder) {
  files_.AddFile(JoinPath(mdlConfigs::DefaultLogFolder(), "ex070115.log"), "");
  files_.AddFolder(DefaultUsageFolder());
  Load();
  EXPECT_EQ(ValueNames("INI"), (List{"IISLogFormat", "IISLogDir", "UsageDir"}));
  EXPECT_EQ(store_.Get("INI", "IISLogDir"), mdlConfigs::DefaultLogFolder());
  EXPECT_EQ(store_.Get("INI", "UsageDir"), DefaultUsageFolder());
}

TEST_F(LoadSiteSettings, DefaultLogFolderWithoutLogsIsNotWrittenBack) {
  EXPECT_EQ(Load(), 1);
  EXPECT_EQ(Settings().LogDir, mdlConfigs::DefaultLogFolder());
  EXPECT_EQ(store_.Get("INI", "IISLogDir"), std::nullopt);
}

TEST_F(LoadSiteSettings, OtherFormatIsRefusedInABoxOnly) {
  PutGoodSite();
  store_.Put("web1", "IISLogFormat", "NCSA");
  Settings().LogDir = "old";
  EXPECT_EQ(Load(), 1);
  EXPECT_EQ(boxes_.shown, List{"The only log file format supported is W3C"});
  EXPECT_EQ(log_.Texts(), List{"Hitwick: operating on site 'web1'"});
  EXPECT_EQ(Settings().LogFormat, "NCSA");
  EXPECT_EQ(Settings().LogDir, "old") << "nothing below is read";
  EXPECT_TRUE(filters_loaded_for_.empty());
}

TEST_F(LoadSiteSettings, OtherFormatIsRefusedSilentlyInABatchRun) {
  PutGoodSite();
  store_.Put("web1", "IISLogFormat", "");
  State().BatchMode = true;
  EXPECT_EQ(Load(), 1);
  EXPECT_TRUE(boxes_.shown.empty());
  EXPECT_EQ(log_.Texts(), List{"Hitwick: operating on site 'web1'"});
}

TEST_F(LoadSiteSettings, LowerCaseFormatPassesAndFindsNoLogs) {
  PutGoodSite();
  store_.Put("web1", "IISLogFormat", "w3c");
  EXPECT_EQ(Load(), 1);
  EXPECT_EQ(Settings().LogFormat, "w3c");
  EXPECT_TRUE(log_.ContainsWarning("Hitwick: " + NoLogsText("logs", "web1")));
}

TEST_F(LoadSiteSettings, FolderWithoutLogsIsRefused) {
  PutGoodSite();
  store_.Put("web1", "IISLogDir", "empty");
  Settings().UsageDir = "old";
  Settings().MaxListSize = 7;
  EXPECT_EQ(Load(), 1);
  ASSERT_EQ(log_.entries.size(), 2U);
  EXPECT_EQ(log_.entries[1].level, EventLevel::kWarning);
  EXPECT_EQ(log_.entries[1].text, "Hitwick: " + NoLogsText("empty", "web1"));
  EXPECT_EQ(boxes_.shown, List{NoLogsText("empty", "web1")});
  EXPECT_EQ(Settings().LogDir, "empty");
  EXPECT_EQ(Settings().UsageDir, "old") << "nothing below is read";
  EXPECT_EQ(Settings().MaxListSize, 7);
  EXPECT_TRUE(filters_loaded_for_.empty());
}

TEST_F(LoadSiteSettings, FolderWithoutLogsIsLoggedInABatchRunToo) {
  PutGoodSite();
  store_.Put("web1", "IISLogDir", "empty");
  State().BatchMode = true;
  EXPECT_EQ(Load(), 1);
  EXPECT_TRUE(log_.ContainsWarning("Hitwick: " + NoLogsText("empty", "web1")));
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(LoadSiteSettings, EitherPrefixIsALog) {
  PutGoodSite();
  for (const char* name : {"ex070115.log", "u_ex070115.log", "EX070115.LOG", "ex.log"}) {
    files_.files.clear();
    files_.AddFile(JoinPath("logs", name), "");
    EXPECT_EQ(Load(), 0) << name;
  }
  for (const char* name : {"in070115.log", "ex070115.txt", "xex070115.log", "u_in070115.log"}) {
    files_.files.clear();
    files_.AddFile(JoinPath("logs", name), "");
    EXPECT_EQ(Load(), 1) << name;
  }
}

TEST_F(LoadSiteSettings, MissingUsageFolderFailsButTheReadingGoesOn) {
  PutGoodSite();
  store_.Put("web1", "UsageDir", "missing");
  store_.Put("web1", "MaxListSize", "25");
  store_.Put("web1", "UseUTC", "True");
  const std::string text =
      "missing must be a writeable pre-existing directory. If this is the wrong directory reset "
      "registry " +
      std::string(kRegistryPath) + "web1\\UsageDir'.";
  EXPECT_EQ(Load(), 1);
  ASSERT_EQ(log_.entries.size(), 2U);
  EXPECT_EQ(log_.entries[1].level, EventLevel::kWarning);
  EXPECT_EQ(log_.entries[1].text, "Hitwick: " + text);
  EXPECT_EQ(boxes_.shown, List{text});
  EXPECT_EQ(Settings().MaxListSize, 25);
  EXPECT_TRUE(Settings().UseUTC);
  EXPECT_EQ(filters_loaded_for_, List{"web1"});
}

TEST_F(LoadSiteSettings, MissingUsageFolderShowsNoBoxInABatchRun) {
  PutGoodSite();
  store_.Put("web1", "UsageDir", "missing");
  State().BatchMode = true;
  EXPECT_EQ(Load(), 1);
  EXPECT_TRUE(boxes_.shown.empty());
  EXPECT_EQ(log_.entries.size(), 2U);
}

TEST_F(LoadSiteSettings, MissingDefaultUsageFolderIsNotWrittenBack) {
  files_.AddFile(JoinPath(mdlConfigs::DefaultLogFolder(), "ex070115.log"), "");
  EXPECT_EQ(Load(), 1);
  EXPECT_EQ(Settings().UsageDir, DefaultUsageFolder());
  EXPECT_EQ(ValueNames("INI"), (List{"IISLogFormat", "IISLogDir"}));
}

TEST_F(LoadSiteSettings, FlagsAreTrueOnlyForExactlyTrue) {
  PutGoodSite();
  for (const char* value : {"true", "TRUE", "1", "-1", "Yes", " True", "True ", ""}) {
    store_.Put("web1", "UseUTC", value);
    store_.Put("web1", "ShowUsernames", value);
    store_.Put("web1", "GenerateCSV", value);
    EXPECT_EQ(Load(), 0);
    EXPECT_FALSE(Settings().UseUTC) << value;
    EXPECT_FALSE(Settings().ShowUsernames) << value;
    EXPECT_FALSE(Settings().GenerateCSV) << value;
  }
}

TEST_F(LoadSiteSettings, ListSizeIsTheLeadingNumber) {
  PutGoodSite();
  const std::vector<std::pair<std::string, std::int32_t>> cases = {
      {"50", 50}, {"50 rows", 50}, {"", 0},    {"many", 0}, {"-5", -5},
      {"+8", 8},  {"2.5", 2},      {"3.5", 4}, {"0", 0}};
  for (const auto& [stored, size] : cases) {
    store_.Put("web1", "MaxListSize", stored);
    EXPECT_EQ(Load(), 0);
    EXPECT_EQ(Settings().MaxListSize, size) << stored;
  }
}

TEST_F(LoadSiteSettings, ListSizeAndFlagsAreNotWrittenBack) {
  PutGoodSite();
  Load();
  EXPECT_EQ(ValueNames("web1"), (List{"IISLogFormat", "IISLogDir", "UsageDir"}));
  store_.Put("web1", "MaxListSize", "50 rows");
  Load();
  EXPECT_EQ(store_.Get("web1", "MaxListSize"), "50 rows");
}

class SaveSiteSettings : public SettingsTest {
 protected:
  SaveSiteSettings() {
    State().SiteName = "web1";
    files_.AddFile(JoinPath("logs", "u_ex070115.log"), "");
    files_.AddFolder("usage");
    Settings() = {"W3C", "logs", "usage", 42, true, false, true};
  }
};

TEST_F(SaveSiteSettings, StoresAllSevenValuesInOrder) {
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 0);
  EXPECT_EQ(ValueNames("web1"), (List{"IISLogFormat", "IISLogDir", "UsageDir", "MaxListSize",
                                      "UseUTC", "ShowUsernames", "GenerateCSV"}));
  EXPECT_EQ(store_.Get("web1", "IISLogFormat"), "W3C");
  EXPECT_EQ(store_.Get("web1", "IISLogDir"), "logs");
  EXPECT_EQ(store_.Get("web1", "UsageDir"), "usage");
  EXPECT_EQ(store_.Get("web1", "MaxListSize"), "42");
  EXPECT_EQ(store_.Get("web1", "UseUTC"), "True");
  EXPECT_EQ(store_.Get("web1", "ShowUsernames"), "False");
  EXPECT_EQ(store_.Get("web1", "GenerateCSV"), "True");
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_TRUE(boxes_.shown.empty());
  EXPECT_EQ(store_.open_keys(), 0U);
}

// No window shows it, so what somebody wrote there stays.
TEST_F(SaveSiteSettings, LeavesTheFieldOfTheVisitorAlone) {
  store_.Put("web1", "ClientIPField", "X-Forwarded-For");
  Settings().ClientIPField = "c-ip";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 0);
  EXPECT_EQ(store_.Get("web1", "ClientIPField"), "X-Forwarded-For");
}

TEST_F(SaveSiteSettings, SavedValuesReadBackAlike) {
  Settings().MaxListSize = -3;
  mdlConfigs::SaveSiteSettings();
  Settings() = {};
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(Settings().LogDir, "logs");
  EXPECT_EQ(Settings().MaxListSize, -3);
  EXPECT_TRUE(Settings().UseUTC);
  EXPECT_FALSE(Settings().ShowUsernames);
  EXPECT_TRUE(Settings().GenerateCSV);
}

TEST_F(SaveSiteSettings, FolderWithoutLogsSavesNothing) {
  Settings().LogDir = "empty";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "Hitwick: " + NoLogsText("empty", "web1"));
  EXPECT_EQ(boxes_.shown, List{"No IIS log files found in 'empty'; Normal location is " +
                               mdlConfigs::DefaultLogFolder()});
  EXPECT_EQ(store_.changes(), 0);
}

TEST_F(SaveSiteSettings, MissingUsageFolderSavesNothing) {
  Settings().UsageDir = "missing";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1);
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text,
            "Hitwick: Usage directory (missing) must be a writeable pre-existing directory. If "
            "this is the wrong directory reset registry " +
                std::string(kRegistryPath) + "web1\\UsageDir'.");
  EXPECT_EQ(boxes_.shown, List{"missing must be a writeable pre-existing directory. Please create "
                               "this directory and try again."});
  EXPECT_EQ(store_.changes(), 0);
}

TEST_F(SaveSiteSettings, LogFolderIsCheckedFirst) {
  Settings().LogDir = "empty";
  Settings().UsageDir = "missing";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1);
  EXPECT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(boxes_.shown.size(), 1U);
}

TEST_F(SaveSiteSettings, FailuresShowNoBoxInABatchRun) {
  State().BatchMode = true;
  Settings().LogDir = "empty";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1);
  Settings().LogDir = "logs";
  Settings().UsageDir = "missing";
  EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1);
  EXPECT_EQ(log_.entries.size(), 2U);
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(SaveSiteSettings, ValueThatTheStoreRefusesIsNotSaved) {
  for (const char* name : {"IISLogFormat", "UseUTC", "GenerateCSV"}) {
    store_.StopFailing();
    store_.Fail({fakes::FakeSettingsStore::Operation::kSetValue, 5, name});
    log_.Clear();
    EXPECT_EQ(mdlConfigs::SaveSiteSettings(), 1) << name;
    EXPECT_EQ(log_.CountWith("Unable to store setting"), 1);
  }
  EXPECT_EQ(store_.Get("web1", "MaxListSize"), "42") << "the others are stored";
}

// Where the store is not the registry that the messages name, a box says where it is.
TEST_F(LoadSiteSettings, BoxesThatNameTheRegistrySayWhereItIs) {
  PutGoodSite();
  store_.place = "That is ";
  const std::string place = "\nThat is " + std::string(platform::kSettingsBranch) + "\\web1";
  store_.Put("web1", "UsageDir", "missing");
  Load();
  ASSERT_EQ(boxes_.shown.size(), 1U);
  EXPECT_TRUE(boxes_.shown[0].ends_with("\\UsageDir'." + place)) << boxes_.shown[0];
  store_.Put("web1", "IISLogDir", "empty");
  Load();
  ASSERT_EQ(boxes_.shown.size(), 2U);
  EXPECT_EQ(boxes_.shown[1], NoLogsText("empty", "web1") + place);
  EXPECT_EQ(log_.CountWith("That is"), 0);
}

TEST_F(Messages, EntriesBeginWithTheTitle) {
  mdlConfigs::LogInformation(": note");
  mdlConfigs::LogWarning("Error : text");
  EXPECT_EQ(log_.entries, (std::vector<fakes::RecordingEventLog::Entry>{
                              {EventLevel::kInformation, "Hitwick: note"},
                              {EventLevel::kWarning, "HitwickError : text"}}));
}

TEST_F(Messages, BoxesAppearOutsideBatchRunsOnly) {
  mdlConfigs::TellUser("shown");
  State().BatchMode = true;
  mdlConfigs::TellUser("not shown");
  EXPECT_EQ(boxes_.shown, List{"shown"});
}

TEST_F(Messages, StatusAppearsOutsideBatchRunsOnly) {
  mdlConfigs::ShowStatus("nobody looks");
  List shown;
  State().Ui.show_status = [&shown](const std::string& text) { shown.push_back(text); };
  mdlConfigs::ShowStatus("shown");
  State().BatchMode = true;
  mdlConfigs::ShowStatus("not shown");
  EXPECT_EQ(shown, List{"shown"});
}

TEST_F(Messages, ResetBringsBackAFreshProcess) {
  State().BatchMode = State().CatchUpMode = State().LogTranslations = State().OnDemandMode = true;
  State().SiteName = "web1";
  State().ReportName = "report";
  Settings() = {"W3C", "logs", "usage", 42, true, true, true};
  State().Ui.quit_requested = true;
  mdlConfigs::ResetRun();
  EXPECT_FALSE(State().BatchMode || State().CatchUpMode || State().LogTranslations ||
               State().OnDemandMode || State().Ui.quit_requested);
  EXPECT_EQ(State().SiteName, "");
  EXPECT_EQ(State().ReportName, "");
  EXPECT_EQ(Settings().LogDir, "");
  EXPECT_EQ(Settings().MaxListSize, 100);
  EXPECT_FALSE(Settings().UseUTC);
}

}  // namespace
