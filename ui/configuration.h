// What the configuration window decides: captions, the fields behind its controls, what is enabled
// when, saving, the catch-up run, quitting.
//
// The window is reached through `ConfigurationView`; the settings are those of
// `mdlConfigs::Run()`, each control writing its field as soon as it changes. One `Configuration`
// lives as long as its window.
#ifndef HITWICK_UI_CONFIGURATION_H_
#define HITWICK_UI_CONFIGURATION_H_

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "ui/folder_list.h"

namespace ui {

// The controls that saving or a run disables and enables. Labels, "Help" and "Quit" never change.
enum class ConfigControl {
  lstLogfileFormat,
  dskLogDir,
  dirLogDir,
  btnBrowseLogDir,
  dskUsageDir,
  dirUsageDir,
  btnBrowseUsageDir,
  mnuPopupUsage,
  txtListSizes,
  chkUTC,
  chkShowUsernames,
  chkCSV,
  cmdSave,
  btnCatchUp,
  btnView,
  btnOnDemand,
  btnFilter,
  txtSchedWhen,
  btnScheduleAdd
};

// The window as its decisions see it.
class ConfigurationView {
 public:
  virtual ~ConfigurationView() = default;
  virtual void Enable(ConfigControl control, bool enabled) = 0;
  // Whether `chkAndView` is ticked.
  virtual bool AndView() const = 0;
  // The text of `lblCurrent`.
  virtual void ShowStatus(const std::string& text) = 0;
  // The bar beside it: months reported so far, of `months`; 0 of 0 when nothing runs.
  virtual void ShowProgress(int done, int months) = 0;
  // Lets pending window events be processed, once.
  virtual void ProcessEvents() = 0;
  // Closes this window and the on-demand window. The object may be gone once the event that led
  // here has been handled, but not before.
  virtual void Close() = 0;
};

// "Configuration", with the site's name in brackets when there is one.
std::string FrameCaption(std::string_view site);

// The entries of `lstLogfileFormat`.
const std::vector<std::string>& LogFormats();
// The entry that stands for a log format; -1 (none) for an unknown one.
int LogFormatIndex(std::string_view format);

// What `txtListSizes` means: its numeric value when that is 1 to 29999, else 100 with the text to
// be set back to "100".
struct ListSize {
  std::int32_t size = 0;
  bool set_back = false;
};
ListSize ListSizeOf(std::string_view text);

class Configuration {
 public:
  explicit Configuration(ConfigurationView& view);
  // Unhooks the status label from the run driver.
  ~Configuration();
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  // Loads the site's settings and points both folder lists at their folders. Failed checks show
  // their boxes; the window opens all the same. Afterwards `frame_caption()`, the lists and
  // `mdlConfigs::Run().Settings` are what the controls show.
  void Form_Load();
  const std::string& frame_caption() const { return frame_caption_; }

  void lstLogfileFormat_Click(int index);
  // Stores the size; returns the text that the box is to show instead when it was set back, else
  // an empty text.
  std::string txtListSizes_Change(std::string_view text);
  void chkUTC_Click(bool ticked);
  void chkShowUsernames_Click(bool ticked);
  void chkCSV_Click(bool ticked);

  // The folder lists. After each of these the field is the list's path.
  const FolderList& dirLogDir() const { return log_folders_; }
  const FolderList& dirUsageDir() const { return usage_folders_; }
  // Double click, Enter / Backspace. False when the list stays where it is.
  bool dirLogDir_GoIn(std::size_t line);
  bool dirUsageDir_GoIn(std::size_t line);
  bool dirLogDir_GoUp();
  bool dirUsageDir_GoUp();
  // A change of the drive list, and the folder dialog of the "..." button.
  void ShowLogDir(const std::string& path);
  void ShowUsageDir(const std::string& path);

  void cmdSave_Click();
  void btnCatchUp_Click();
  void btnView_Click();
  void btnHelp_Click();
  // Registers the daily task for the site in use at the time typed in `txtSchedWhen`.
  void btnScheduleAdd_Click(const std::string& when);
  // Also for the window's own close button. During a run of this window or of the on-demand
  // window the run stops at the next file and the window closes then.
  void cmdQuit_Click();

  // True from the moment a run starts until its last page is done.
  bool running() const { return running_; }

  // For a run started elsewhere (the on-demand report): disables what would disturb it and shows
  // its progress; afterwards enables it again and, when "Quit" was pressed meanwhile, closes.
  void BeginRun(int months);
  void EndRun();

 private:
  void HookRun();
  void ProcessEventsNowAndThen();
  void EnableAll(std::initializer_list<ConfigControl> controls, bool enabled);
  bool Save();

  ConfigurationView& view_;
  std::chrono::steady_clock::time_point events_processed_;
  std::string frame_caption_;
  FolderList log_folders_;
  FolderList usage_folders_;
  bool running_ = false;
};

}  // namespace ui

#endif  // HITWICK_UI_CONFIGURATION_H_
