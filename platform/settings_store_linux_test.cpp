#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/event_log.h"
#include "platform/service.h"
#include "platform/settings_store.h"
#include "tests/fakes/ordinary_user_linux.h"
#include "tests/fakes/recording_event_log.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

using Key = SettingsStore::Key;
using Result = SettingsStore::Result;

const std::string kBranch(kSettingsBranch);

class SettingsIniTest : public testing::Test {
 protected:
  SettingsIniTest() : config_(std::getenv("XDG_CONFIG_HOME")), home_(std::getenv("HOME")) {
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
  }
  ~SettingsIniTest() override {
    setenv("XDG_CONFIG_HOME", config_.c_str(), 1);
    setenv("HOME", home_.c_str(), 1);
  }

  // Creates the key of a site and writes one value; the first error code.
  static Result Save(const std::string& site, const std::string& name, std::string_view text) {
    Key key = 0;
    if (const Result result = TheSettingsStore().CreateKey(kBranch + "\\" + site, &key)) {
      return result;
    }
    const Result result = TheSettingsStore().SetValue(key, name, text);
    TheSettingsStore().CloseKey(key);
    return result;
  }
  // The text of the first value of a site; the error code in decimal when there is none.
  static std::string FirstValueOf(const std::string& site) {
    Key key = 0;
    std::string name;
    std::string data;
    Result result = TheSettingsStore().OpenKey(kBranch + "\\" + site, &key);
    if (result == kStoreSuccess) {
      result = TheSettingsStore().EnumValue(key, 0, 100000, &name, &data);
    }
    TheSettingsStore().CloseKey(key);
    return result == kStoreSuccess ? data.substr(0, data.size() - 1) : std::to_string(result);
  }

  void WriteIni(std::string_view text) { fakes::WriteFile(ini_, text); }
  std::string Ini() const { return fakes::ReadFile(ini_); }
  struct stat Status(const std::string& path) const {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
  }
  bool HasTemporaryFile() const {
    return std::filesystem::exists(folder_ / "config/hitwick/settings.ini.tmp");
  }

  fakes::ScopedTempDir folder_;
  const std::string ini_ = folder_ / "config/hitwick/settings.ini";
  fakes::RecordingEventLog log_;
  const Replacement<EventLog> log_replacement_{log_};

 private:
  std::string config_;
  std::string home_;
};

TEST_F(SettingsIniTest, TheFirstSaveCreatesFolderAndFile) {
  EXPECT_EQ(Save("web1", "UsageDir", "/srv/www"), kStoreSuccess);
  EXPECT_EQ(Ini(), "[web1]\nUsageDir=/srv/www\n");
  EXPECT_EQ(Status(folder_ / "config/hitwick").st_mode & 0777u, 0700u);
  EXPECT_FALSE(HasTemporaryFile());
}

TEST_F(SettingsIniTest, NewFilesAreForTheUserAloneWhateverTheMask) {
  std::filesystem::create_directories(folder_ / "config/hitwick");
  const mode_t mask = umask(0);
  EXPECT_EQ(Save("web1", "UsageDir", "/srv/www"), kStoreSuccess);
  umask(mask);
  for (const char* name : {"settings.ini", "settings.ini.lock"}) {
    EXPECT_EQ(Status(folder_ / "config/hitwick/" + name).st_mode & 0777u, 0600u) << name;
  }
}

TEST_F(SettingsIniTest, WhatTheUserHasAllowedStaysSo) {
  WriteIni("[web1]\nx=1\n");
  chmod(ini_.c_str(), 0640);
  EXPECT_EQ(Save("web1", "x", "2"), kStoreSuccess);
  EXPECT_EQ(Status(ini_).st_mode & 0777u, 0640u);
}

TEST_F(SettingsIniTest, WithoutAFileTheBranchDoesNotExist) {
  Key key = 0;
  EXPECT_EQ(TheSettingsStore().OpenKey(kBranch, &key), kStoreNotFound);
  EXPECT_EQ(TheSettingsStore().CreateKey(kBranch, &key), kStoreSuccess);
  TheSettingsStore().CloseKey(key);
  EXPECT_TRUE(std::filesystem::exists(ini_));
  EXPECT_EQ(TheSettingsStore().OpenKey(kBranch, &key), kStoreSuccess);
  TheSettingsStore().CloseKey(key);
}

TEST_F(SettingsIniTest, WithoutTheVariableTheHomeFolderIsUsed) {
  setenv("HOME", (folder_ / "home").c_str(), 1);
  setenv("XDG_CONFIG_HOME", "", 1);
  EXPECT_EQ(Save("web1", "x", "1"), kStoreSuccess);
  setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(Save("web2", "x", "2"), kStoreSuccess);
  EXPECT_EQ(fakes::ReadFile(folder_ / "home/.config/hitwick/settings.ini"),
            "[web1]\nx=1\n\n[web2]\nx=2\n");
}

TEST_F(SettingsIniTest, ValuesHaveTheirLineAndFileAsPlace) {
  WriteIni("; my sites\n[web1]\n IISLogDir = /srv/iis/W3SVC1\n\n[WEB1]\nx=1\n");
  Key key = 0;
  ASSERT_EQ(TheSettingsStore().OpenKey(kBranch + "\\web1", &key), kStoreSuccess);
  EXPECT_EQ(TheSettingsStore().PlaceOfValue(key, "iislogdir"),
            "Line 3 of the settings file '" + ini_ + "'");
  EXPECT_EQ(TheSettingsStore().PlaceOfValue(key, "x"),
            "Line 6 of the settings file '" + ini_ + "'");
  EXPECT_EQ(TheSettingsStore().PlaceOfValue(key, "y"), "");
  TheSettingsStore().CloseKey(key);
  EXPECT_EQ(TheSettingsStore().PlaceOfValue(key, "x"), "");
}

TEST_F(SettingsIniTest, ReadsWhatWasWrittenByHand) {
  WriteIni("; my sites\n[web1]\nIISLogDir=/srv/iis/W3SVC1\n");
  EXPECT_EQ(FirstValueOf("WEB1"), "/srv/iis/W3SVC1");
}

TEST_F(SettingsIniTest, ChangesMadeMeanwhileAreSeen) {
  WriteIni("[web1]\nx=1\n");
  EXPECT_EQ(FirstValueOf("web1"), "1");
  WriteIni("[web1]\nx=second\n");
  EXPECT_EQ(FirstValueOf("web1"), "second");
  std::filesystem::remove(ini_);
  EXPECT_EQ(FirstValueOf("web1"), "2");
}

TEST_F(SettingsIniTest, EnumerationIsInTheOrderOfTheFile) {
  WriteIni("[zeta]\n[alpha\\Filters\\z]\n[alpha\\Filters\\a]\n[INI]\n");
  Key key = 0;
  ASSERT_EQ(TheSettingsStore().OpenKey(kBranch, &key), kStoreSuccess);
  std::uint32_t index = 0;
  for (const char* expected : {"zeta", "alpha", "INI"}) {
    std::string name;
    EXPECT_EQ(TheSettingsStore().EnumKey(key, index++, &name), kStoreSuccess);
    EXPECT_EQ(name, expected);
  }
  TheSettingsStore().CloseKey(key);
  ASSERT_EQ(TheSettingsStore().OpenKey(kBranch + "\\alpha\\Filters", &key), kStoreSuccess);
  std::string name;
  EXPECT_EQ(TheSettingsStore().EnumKey(key, 0, &name), kStoreSuccess);
  EXPECT_EQ(name, "z");
  TheSettingsStore().CloseKey(key);
}

TEST_F(SettingsIniTest, ValuesKeepTheOrderInWhichTheyWereWritten) {
  for (const char* name : {"name", "includes", "field"}) Save("web1", name, "1");
  Save("web1", "includes", "2");
  EXPECT_NE(Ini().find("name=1\nincludes=2\nfield=1\n"), std::string::npos) << Ini();
}

TEST_F(SettingsIniTest, KeysOutsideTheBranchAreNotThere) {
  WriteIni("[web1]\n");
  Key key = 0;
  for (const std::string path : {"Software", "Software\\Other", "", "web1"}) {
    EXPECT_EQ(TheSettingsStore().OpenKey(path, &key), kStoreNotFound) << path;
    EXPECT_EQ(TheSettingsStore().CreateKey(path, &key), kStoreInvalidParameter) << path;
  }
  EXPECT_EQ(TheSettingsStore().OpenKey(kBranch + "2", &key), kStoreNotFound);
}

TEST_F(SettingsIniTest, NamesThatTheFileCannotHoldAreRefused) {
  Key key = 0;
  for (const std::string path : {"\\", "\\a\\", "\\\\a", "\\a\\\\b", "\\a\nb", "\\a\rb"}) {
    EXPECT_EQ(TheSettingsStore().CreateKey(kBranch + path, &key), kStoreInvalidParameter) << path;
    EXPECT_EQ(TheSettingsStore().OpenKey(kBranch + path, &key), kStoreInvalidParameter) << path;
  }
  for (const char* name : {"", "a=b", "[a", ";a", "#a", "a\nb", "a\rb"}) {
    EXPECT_EQ(Save("web1", name, "1"), kStoreInvalidParameter) << name;
  }
  EXPECT_EQ(Save("web1", "x", std::string_view("a\0b", 3)), kStoreInvalidParameter);
  EXPECT_EQ(Ini(), "[web1]\n");
}

TEST_F(SettingsIniTest, AnUnknownHandleIsAnError) {
  std::string name;
  EXPECT_NE(TheSettingsStore().EnumKey(12345, 0, &name), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().SetValue(12345, "x", "1"), kStoreSuccess);
}

TEST_F(SettingsIniTest, AVanishedKeyIsNotFound) {
  WriteIni("[web1]\nx=1\n");
  Key key = 0;
  ASSERT_EQ(TheSettingsStore().OpenKey(kBranch + "\\web1", &key), kStoreSuccess);
  WriteIni("[web2]\nx=1\n");
  EXPECT_EQ(TheSettingsStore().SetValue(key, "x", "2"), kStoreNotFound);
  EXPECT_EQ(TheSettingsStore().DeleteValue(key, "x"), kStoreNotFound);
  TheSettingsStore().CloseKey(key);
  EXPECT_EQ(Ini(), "[web2]\nx=1\n");
}

TEST_F(SettingsIniTest, WhatIsThereAlreadyIsNotWrittenAgain) {
  WriteIni("[web1]\nx=1\n");
  const ino_t before = Status(ini_).st_ino;
  EXPECT_EQ(Save("web1", "x", "1"), kStoreSuccess);
  EXPECT_EQ(Status(ini_).st_ino, before);
  EXPECT_FALSE(std::filesystem::exists(ini_ + ".lock"));
}

TEST_F(SettingsIniTest, ASaveKeepsThePermissionsOfTheFile) {
  WriteIni("[web1]\nx=1\n");
  chmod(ini_.c_str(), 0640);
  EXPECT_EQ(Save("web1", "x", "2"), kStoreSuccess);
  EXPECT_EQ(Status(ini_).st_mode & 07777u, 0640u);
}

TEST_F(SettingsIniTest, ASaveFollowsALink) {
  const std::string target = folder_ / "dotfiles/hitwick.ini";
  fakes::WriteFile(target, "[web1]\nx=1\n");
  std::filesystem::create_directories(folder_ / "config/hitwick");
  std::filesystem::create_symlink(target, ini_);
  EXPECT_EQ(Save("web1", "x", "2"), kStoreSuccess);
  EXPECT_TRUE(S_ISLNK(Status(ini_).st_mode));
  EXPECT_EQ(fakes::ReadFile(target), "[web1]\nx=2\n");
}

TEST_F(SettingsIniTest, WhatAKilledProcessLeftIsNoObstacle) {
  WriteIni("[web1]\nx=1\n");
  fakes::WriteFile(ini_ + ".tmp", "[web1]\nx=ha");
  EXPECT_EQ(Save("web1", "x", "2"), kStoreSuccess);
  EXPECT_EQ(Ini(), "[web1]\nx=2\n");
  EXPECT_FALSE(HasTemporaryFile());
}

TEST_F(SettingsIniTest, ABrokenLineIsReportedOnceWithItsNumber) {
  WriteIni("[web1]\nnonsense\nx=1\n");
  EXPECT_EQ(FirstValueOf("web1"), "1");
  EXPECT_EQ(Save("web1", "x", "2"), kStoreSuccess);
  EXPECT_EQ(FirstValueOf("web1"), "2");
  EXPECT_EQ(Ini(), "[web1]\nnonsense\nx=2\n");
  ASSERT_EQ(log_.entries.size(), 1u);
  EXPECT_EQ(log_.entries[0].level, EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text.rfind("Hitwick: Line 2 of the settings file '" + ini_ + "'", 0),
            0u)
      << log_.entries[0].text;
}

TEST_F(SettingsIniTest, EachBrokenLineIsReported) {
  WriteIni("same\nsame\nother\n");
  FirstValueOf("web1");
  EXPECT_EQ(log_.CountWith("Line 1 of"), 1);
  EXPECT_EQ(log_.CountWith("Line 2 of"), 1);
  EXPECT_EQ(log_.CountWith("Line 3 of"), 1);
}

TEST_F(SettingsIniTest, AFullDiskIsAnErrorAndLeavesTheOldFile) {
  const std::string before = "[web1]\nx=1\n";
  WriteIni(before);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const Result result = Save("web1", "x", std::string(5000, 'y'));
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(result, 112);
  EXPECT_EQ(Ini(), before);
  EXPECT_FALSE(HasTemporaryFile());
  EXPECT_EQ(FirstValueOf("web1"), "1");
}

TEST_F(SettingsIniTest, AFolderThatTakesNoFileIsAnError) {
  fakes::WriteFile(folder_ / "config/hitwick", "a file where the folder should be");
  EXPECT_NE(Save("web1", "x", "1"), kStoreSuccess);
  EXPECT_EQ(FirstValueOf("web1"), "2");
  EXPECT_EQ(fakes::ReadFile(folder_ / "config/hitwick"), "a file where the folder should be");
}

TEST_F(SettingsIniTest, TellsWhereAKeyOfTheRegistryIs) {
  EXPECT_EQ(TheSettingsStore().PlaceOf(kBranch + "\\web1\\Filters"),
            "On this system that is section [web1\\Filters] of " + ini_);
  EXPECT_EQ(TheSettingsStore().PlaceOf(kBranch), "On this system that is " + ini_);
  EXPECT_EQ(TheSettingsStore().PlaceOf("Software\\Other"), "");
  Key key = 0;
  ASSERT_EQ(TheSettingsStore().CreateKey(kBranch + "\\web1", &key), kStoreSuccess);
  EXPECT_EQ(TheSettingsStore().PlaceOf(key), "On this system that is section [web1] of " + ini_);
  TheSettingsStore().CloseKey(key);
  EXPECT_EQ(TheSettingsStore().PlaceOf(key), "");
}

TEST_F(SettingsIniTest, AReadOnlyFolderIsAccessDenied) {
  WriteIni("[web1]\nx=1\n");
  chmod((folder_ / "config/hitwick").c_str(), 0555);
  const fakes::OrdinaryUser user;
  EXPECT_EQ(Save("web1", "x", "1"), kStoreSuccess);
  EXPECT_EQ(Save("web1", "x", "2"), kStoreAccessDenied);
  EXPECT_EQ(FirstValueOf("web1"), "1");
}

TEST_F(SettingsIniTest, AFileThatCannotBeReadIsAnErrorAndNotEmpty) {
  std::filesystem::create_directories(ini_);
  Key key = 0;
  const Result result = TheSettingsStore().OpenKey(kBranch + "\\web1", &key);
  EXPECT_NE(result, kStoreSuccess);
  EXPECT_NE(result, kStoreNotFound);
  EXPECT_NE(Save("web1", "x", "1"), kStoreSuccess);
}

}  // namespace
}  // namespace platform
