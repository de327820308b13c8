#include "ui/configuration.h"

#include "app/frmMain.h"
#include "app/run_driver.h"
#include "config/mdlConfigs.h"
#include "config/text.h"
#include "logread/mdlFilters.h"
#include "platform/file_system.h"
#include "platform/mod_systemInfo.h"
#include "platform/scheduler.h"

namespace ui {
namespace {

using enum ConfigControl;
using mdlConfigs::Run;

constexpr std::int32_t kLargestListSize = 29999;
constexpr std::chrono::milliseconds kEventInterval{50};
constexpr std::int32_t kDefaultListSize = 100;
constexpr int kCatchUpMonths = 13;

// What must not be pressed twice while the settings are being saved.
constexpr std::initializer_list<ConfigControl> kSavingControls = {btnCatchUp, cmdSave, btnOnDemand,
                                                                  mnuPopupUsage, btnFilter};
// What would change the settings under a run, start another one, or hold it up with a box.
constexpr std::initializer_list<ConfigControl> kRunControls = {
    lstLogfileFormat, dskLogDir,         dirLogDir,    btnBrowseLogDir, dskUsageDir,
    dirUsageDir,      btnBrowseUsageDir, txtListSizes, chkUTC,          chkShowUsernames,
    chkCSV,           btnView,           txtSchedWhen, btnScheduleAdd};

std::string IndexPage() { return platform::JoinPath(Run().Settings.UsageDir, "index.htm"); }

}  // namespace

std::string FrameCaption(std::string_view site) {
  if (site.empty()) return "Configuration";
  return std::string("Configuration (").append(site).append(")");
}

const std::vector<std::string>& LogFormats() {
  static const std::vector<std::string> formats = {"W3C"};
  return formats;
}

int LogFormatIndex(std::string_view format) { return format == LogFormats().front() ? 0 : -1; }

ListSize ListSizeOf(std::string_view text) {
  const std::int32_t size = text::ToInt32(text, /*signs=*/true).value_or(0);
  if (size >= 1 && size <= kLargestListSize) return {size, false};
  return {kDefaultListSize, true};
}

Configuration::Configuration(ConfigurationView& view) : view_(view) { HookRun(); }

Configuration::~Configuration() { Run().Ui = mdlConfigs::Progress(); }

void Configuration::HookRun() {
  Run().Ui.show_status = [this](const std::string& text) { view_.ShowStatus(text); };
  Run().Ui.show_months_done = [this](int done, int all) { view_.ShowProgress(done, all); };
  Run().Ui.process_pending_events = [this] { view_.ProcessEvents(); };
  Run().Ui.stay_responsive = [this] { ProcessEventsNowAndThen(); };
}

// Looking for events after every few thousand lines would cost more than reading them.
void Configuration::ProcessEventsNowAndThen() {
  const auto now = std::chrono::steady_clock::now();
  if (now - events_processed_ < kEventInterval) return;
  view_.ProcessEvents();
  events_processed_ = std::chrono::steady_clock::now();
}

void Configuration::Form_Load() {
  frame_caption_ = FrameCaption(Run().SiteName);
  if (mdlConfigs::LoadSiteSettings(mdlFilters::LoadFilters) != 0) {
    // The controls behind the failed check show what is stored, or a save would replace it.
    mdlConfigs::ReadSettingsUnchecked();
  }
  ShowLogDir(Run().Settings.LogDir);
  ShowUsageDir(Run().Settings.UsageDir);
}

void Configuration::lstLogfileFormat_Click(int index) {
  if (index == 0) Run().Settings.LogFormat = LogFormats().front();
}

std::string Configuration::txtListSizes_Change(std::string_view text) {
  const ListSize size = ListSizeOf(text);
  Run().Settings.MaxListSize = size.size;
  return size.set_back ? std::to_string(size.size) : std::string();
}

void Configuration::chkUTC_Click(bool ticked) { Run().Settings.UseUTC = ticked; }

void Configuration::chkShowUsernames_Click(bool ticked) { Run().Settings.ShowUsernames = ticked; }

void Configuration::chkCSV_Click(bool ticked) { Run().Settings.GenerateCSV = ticked; }

bool Configuration::dirLogDir_GoIn(std::size_t line) {
  const bool moved = log_folders_.GoIn(line);
  Run().Settings.LogDir = log_folders_.path();
  return moved;
}

bool Configuration::dirUsageDir_GoIn(std::size_t line) {
  const bool moved = usage_folders_.GoIn(line);
  Run().Settings.UsageDir = usage_folders_.path();
  return moved;
}

bool Configuration::dirLogDir_GoUp() {
  const bool moved = log_folders_.GoUp();
  Run().Settings.LogDir = log_folders_.path();
  return moved;
}

bool Configuration::dirUsageDir_GoUp() {
  const bool moved = usage_folders_.GoUp();
  Run().Settings.UsageDir = usage_folders_.path();
  return moved;
}

void Configuration::ShowLogDir(const std::string& path) {
  log_folders_.Show(path);
  Run().Settings.LogDir = log_folders_.path();
}

void Configuration::ShowUsageDir(const std::string& path) {
  usage_folders_.Show(path);
  Run().Settings.UsageDir = usage_folders_.path();
}

void Configuration::EnableAll(std::initializer_list<ConfigControl> controls, bool enabled) {
  for (const ConfigControl control : controls) view_.Enable(control, enabled);
}

// Stores the settings with the controls disabled that do it; they stay so when it has succeeded.
bool Configuration::Save() {
  EnableAll(kSavingControls, false);
  const bool saved = mdlConfigs::SaveSiteSettings() == 0;
  if (!saved) EnableAll(kSavingControls, true);
  return saved;
}

void Configuration::cmdSave_Click() {
  if (Save()) view_.Close();
}

void Configuration::btnCatchUp_Click() {
  if (!Save()) return;
  Run().CatchUpMode = true;
  BeginRun(kCatchUpMonths);
  const bool settings_usable = frmMain::CatchUp();
  if (Run().Ui.quit_requested || !settings_usable) {
    EndRun();
    return;
  }
  if (view_.AndView() && mdlConfigs::LastPageWritten() == IndexPage()) {
    mod_systemInfo::OpenFile(IndexPage());
  }
  running_ = false;
  view_.Close();
}

void Configuration::btnView_Click() { mod_systemInfo::OpenFile(IndexPage()); }

void Configuration::btnHelp_Click() { mod_systemInfo::OpenHelp(); }

void Configuration::btnScheduleAdd_Click(const std::string& when) {
  scheduler::AddDailyTask(Run().SiteName, when);
}

void Configuration::cmdQuit_Click() {
  Run().Ui.quit_requested = true;
  if (!running_) view_.Close();
}

void Configuration::BeginRun(int months) {
  running_ = true;
  Run().Ui.quit_requested = false;
  EnableAll(kSavingControls, false);
  EnableAll(kRunControls, false);
  view_.ShowProgress(0, months);
}

void Configuration::EndRun() {
  running_ = false;
  view_.ShowProgress(0, 0);
  if (Run().Ui.quit_requested) {
    view_.Close();
    return;
  }
  EnableAll(kSavingControls, true);
  EnableAll(kRunControls, true);
}

}  // namespace ui
