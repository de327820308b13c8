#include "config/mdlConfigs.h"

#include <initializer_list>
#include <utility>

#include "config/log_files.h"
#include "config/mdlRegistry.h"
#include "config/program.h"
#include "config/text.h"
#include "config/unread_settings.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/message_box.h"
#include "platform/mod_systemInfo.h"
#include "platform/settings_store.h"

namespace mdlConfigs {
namespace {

constexpr std::string_view kW3C = "W3C";
constexpr std::int32_t kDefaultListSize = 100;
const std::string kDefaultClientIPField = "c-ip";

RunState run_state;

std::string DefaultUsageFolder() {
  using platform::JoinPath;
  return JoinPath(
      JoinPath(JoinPath(platform::EnvironmentVariable("SystemDrive"), "InetPub"), "wwwroot"),
      "Usage");
}

// True when the folder holds at least one log file of either prefix.
bool HasLogFiles(const std::string& folder) {
  return !log_files::List(folder, "ex").empty() || !log_files::List(folder, "u_ex").empty();
}

std::string SiteKeyPath() { return std::string(platform::kSettingsBranch) + "\\" + Run().SiteName; }

// Where the administrator finds a setting of the site in use.
std::string RegistryPath(std::string_view value_name) {
  return "'My Computer\\HKEY_CURRENT_USER\\" + SiteKeyPath() + "\\" + std::string(value_name) + "'";
}

std::string WrongFolderHint(std::string_view value_name) {
  return " If this is the wrong directory reset registry " + RegistryPath(value_name) + ".";
}

std::string NoLogFilesText(const std::string& log_folder) {
  return "No IIS log files found in '" + log_folder + "'." + WrongFolderHint("IISLogDir") +
         " Or delete to use default of " + DefaultLogFolder();
}

std::string ReadSetting(std::string_view name, const std::string& fallback) {
  return mdlRegistry::ReadSetting(Run().SiteName, name, fallback);
}

bool ReadFlag(std::string_view name) { return ReadSetting(name, "False") == "True"; }

// False when the store refused the value.
bool SaveSetting(const std::string& name, const std::string& value) {
  const std::int32_t result = mdlRegistry::SaveSetting(Run().SiteName, name, value);
  if (result == platform::kStoreSuccess) return true;
  LogWarning(": Unable to store setting " + RegistryPath(name) + " : " + std::to_string(result));
  return false;
}

std::string FlagText(bool flag) { return flag ? "True" : "False"; }

void ReadListSize() {
  const std::string stored = ReadSetting("MaxListSize", std::to_string(kDefaultListSize));
  const auto size = text::ToInt32(stored, /*signs=*/true);
  if (!size) {
    LogWarning(": Setting " + RegistryPath("MaxListSize") + " is out of range: '" + stored + "'");
  }
  Run().Settings.MaxListSize = size.value_or(kDefaultListSize);
}

// Reads the log format and writes it back; false when it is none that can be read.
bool LoadLogFormat() {
  SiteSettings& settings = Run().Settings;
  settings.LogFormat = ReadSetting("IISLogFormat", std::string(kW3C));
  if (!text::EqualsIgnoringCase(settings.LogFormat, kW3C)) {
    TellUser("The only log file format supported is W3C");
    return false;
  }
  SaveSetting("IISLogFormat", settings.LogFormat);
  return true;
}

// Reads the log folder and writes it back; false when no logs are found in it. Any spelling of the
// format but "W3C" itself finds none.
bool LoadLogFolder() {
  SiteSettings& settings = Run().Settings;
  settings.LogDir = ReadSetting("IISLogDir", DefaultLogFolder());
  if (settings.LogFormat != kW3C || !HasLogFiles(settings.LogDir)) {
    const std::string message = NoLogFilesText(settings.LogDir);
    LogWarning(": " + message);
    TellUser(message, platform::TheSettingsStore().PlaceOf(SiteKeyPath()));
    return false;
  }
  SaveSetting("IISLogDir", settings.LogDir);
  return true;
}

// Reads the usage folder and writes it back; false when it does not exist.
bool LoadUsageFolder() {
  SiteSettings& settings = Run().Settings;
  settings.UsageDir = ReadSetting("UsageDir", DefaultUsageFolder());
  if (!platform::TheFileSystem().FolderExists(settings.UsageDir)) {
    const std::string message = settings.UsageDir + " must be a writeable pre-existing directory." +
                                WrongFolderHint("UsageDir");
    LogWarning(": " + message);
    TellUser(message, platform::TheSettingsStore().PlaceOf(SiteKeyPath()));
    return false;
  }
  SaveSetting("UsageDir", settings.UsageDir);
  return true;
}

void ReadOptions() {
  ReadListSize();
  SiteSettings& settings = Run().Settings;
  settings.UseUTC = ReadFlag("UseUTC");
  settings.ShowUsernames = ReadFlag("ShowUsernames");
  settings.GenerateCSV = ReadFlag("GenerateCSV");
  settings.ClientIPField = ReadSetting("ClientIPField", kDefaultClientIPField);
}

bool CheckLogFolderForSaving() {
  const std::string& log_folder = Run().Settings.LogDir;
  if (HasLogFiles(log_folder)) return true;
  LogWarning(": " + NoLogFilesText(log_folder));
  TellUser("No IIS log files found in '" + log_folder + "'; Normal location is " +
           DefaultLogFolder());
  return false;
}

bool CheckUsageFolderForSaving() {
  const std::string& usage_folder = Run().Settings.UsageDir;
  if (platform::TheFileSystem().FolderExists(usage_folder)) return true;
  LogWarning(": Usage directory (" + usage_folder +
             ") must be a writeable pre-existing directory." + WrongFolderHint("UsageDir"));
  TellUser(usage_folder +
           " must be a writeable pre-existing directory. Please create this directory and try "
           "again.");
  return false;
}

}  // namespace

RunState& Run() { return run_state; }

void ResetRun() {
  run_state = RunState();
  unread_settings::Reset();
  log_files::Reset();
}

void LogEntry(platform::EventLevel level, std::string_view text) {
  platform::TheEventLog().Write(level, std::string(program::kTitle).append(text));
}

void TellUser(std::string_view text) {
  if (!Run().BatchMode) platform::TheMessageBoxes().Show(text);
}

void TellUser(std::string_view text, const std::string& place) {
  TellUser(place.empty() ? std::string(text) : std::string(text) + "\n" + place);
}

void StayResponsive() {
  if (Run().Ui.stay_responsive) Run().Ui.stay_responsive();
}

void ShowStatus(const std::string& text) {
  if (!Run().BatchMode && Run().Ui.show_status) Run().Ui.show_status(text);
}

std::string DefaultLogFolder() {
  using platform::JoinPath;
  if (mod_systemInfo::GetOSMajorVersion() >= 6) {
    const std::string drive = platform::EnvironmentVariable("SystemDrive");
    return JoinPath(JoinPath(JoinPath(JoinPath(drive, "inetpub"), "logs"), "LogFiles"), "W3SVC1");
  }
  const std::string root = platform::EnvironmentVariable("SYSTEMROOT");
  return JoinPath(JoinPath(JoinPath(root, "system32"), "LogFiles"), "W3SVC1");
}

std::int16_t LoadSiteSettings(const std::function<void(const std::string& site)>& load_filters) {
  RunState& run = Run();
  if (run.SiteName.empty()) run.SiteName = kDefaultSite;
  LogInformation(": operating on site '" + run.SiteName + "'");
  unread_settings::Report(run.SiteName);
  if (!LoadLogFormat() || !LoadLogFolder()) return 1;
  const bool usage_folder_found = LoadUsageFolder();
  ReadOptions();
  load_filters(run.SiteName);
  return usage_folder_found ? 0 : 1;
}

void ReadSettingsUnchecked() {
  SiteSettings& settings = Run().Settings;
  settings.LogFormat = ReadSetting("IISLogFormat", std::string(kW3C));
  settings.LogDir = ReadSetting("IISLogDir", DefaultLogFolder());
  settings.UsageDir = ReadSetting("UsageDir", DefaultUsageFolder());
  ReadOptions();
}

std::int16_t SaveSiteSettings() {
  if (!CheckLogFolderForSaving() || !CheckUsageFolderForSaving()) return 1;
  const SiteSettings& settings = Run().Settings;
  bool stored = true;
  for (const auto& [name, value] : std::initializer_list<std::pair<const char*, std::string>>{
           {"IISLogFormat", settings.LogFormat},
           {"IISLogDir", settings.LogDir},
           {"UsageDir", settings.UsageDir},
           {"MaxListSize", std::to_string(settings.MaxListSize)},
           {"UseUTC", FlagText(settings.UseUTC)},
           {"ShowUsernames", FlagText(settings.ShowUsernames)},
           {"GenerateCSV", FlagText(settings.GenerateCSV)}}) {
    stored &= SaveSetting(name, value);
  }
  return stored ? 0 : 1;
}

}  // namespace mdlConfigs
