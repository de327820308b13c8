// The texts of the windows: title, caption, tool tip and accessible name of every control that has
// one, under the control's name.
//
// No state. Read by the windows when they build their controls, and by the tests.
#ifndef HITWICK_UI_WINDOW_TEXTS_H_
#define HITWICK_UI_WINDOW_TEXTS_H_

#include <string>
#include <string_view>

namespace window_texts {

struct ControlText {
  std::string_view caption;    // what the control shows; for a text box its initial text
  std::string_view tip;        // tool tip; empty: none
  std::string_view name = {};  // accessible name where it is not the caption

  // What a screen reader calls the control.
  constexpr std::string_view AccessibleName() const { return name.empty() ? caption : name; }
};

// The title of message boxes.
inline constexpr std::string_view kBoxTitle = "Hitwick";

namespace frmConfig {

inline constexpr std::string_view kTitle = "Hitwick - Configuration";

namespace tips {
inline constexpr std::string_view kLogFormat =
    "For IIS run up Internet Information Services, select _the_ website, and click properties. The "
    "\"Web Site\" tab has an Active log format. select the appropriate type. Logging must be "
    "enabled.";
inline constexpr std::string_view kLogFolder =
    "For IIS run up Internet Information Services, select _the_ website, and click properties. The "
    "\"Web Site\" tab has an active log format. Select Properties. Logging must be enabled";
inline constexpr std::string_view kUsageFolder =
    "Select directory for the usage statistics to be published to. Simplest option is to create a "
    "directory under the \"Home Directory\" \"Local Path\" e.g. c:\\inetpub\\wwwroot\\usage . Or "
    "create elsewhere and create a \"Virtual Directory\" Under the web site.";
inline constexpr std::string_view kUsageFolderList =
    "Make certain the selected directory exists. Do not select the root folder of your web site as "
    "your index.htm will be overwritten!";
inline constexpr std::string_view kListSizes =
    "For tables in the usage reports, how many rows do you want? Same count is used for all "
    "reports.";
inline constexpr std::string_view kUTC =
    "IIS logs are recorded in GMT. Normally Hitwick uses your timezone for the usage report.";
inline constexpr std::string_view kShowUsernames =
    "If the logfiles include site login information, do you want the user names reported in the "
    "usage web pages.";
inline constexpr std::string_view kCSV =
    "As well as HTML, generate a comma separated text file for most reported pages. A link will be "
    "visible in the HTML.";
inline constexpr std::string_view kSchedule =
    "Use the \"AT\" utility to schedule Hitwick to run daily. On newer versions of Windows, please "
    "create a scheduled task instead. Refer to Help for instructions.";
}  // namespace tips

// Frame1's caption depends on the site: `configuration::FrameCaption`.
inline constexpr ControlText lblLogTyle{"What sort of web server log files are in use?",
                                        tips::kLogFormat};
inline constexpr ControlText lstLogfileFormat{"", tips::kLogFormat, lblLogTyle.caption};
inline constexpr ControlText lblLogDir{"Where are the log files?", tips::kLogFolder};
inline constexpr ControlText dskLogDir{"", tips::kLogFolder, lblLogDir.caption};
inline constexpr ControlText dirLogDir{"", tips::kLogFolder, lblLogDir.caption};
inline constexpr ControlText btnBrowseLogDir{"...", "", "Browse for log files"};
inline constexpr ControlText lblUsagedir{"Where do you want to publish the usage pages?",
                                         tips::kUsageFolder};
inline constexpr ControlText dskUsageDir{"", tips::kUsageFolder, lblUsagedir.caption};
inline constexpr ControlText dirUsageDir{"", tips::kUsageFolderList, lblUsagedir.caption};
inline constexpr ControlText btnBrowseUsageDir{"...", "", "Browse for usage pages"};
inline constexpr ControlText mnuNewUsageFolder{"New Folder", ""};
inline constexpr ControlText lblListSizes{"Maximum number of entries to show", tips::kListSizes};
inline constexpr ControlText txtListSizes{"", tips::kListSizes, lblListSizes.caption};
inline constexpr ControlText lblUTC{"Omit correction for offset from UTC/GMT", tips::kUTC};
inline constexpr ControlText chkUTC{"", tips::kUTC, lblUTC.caption};
inline constexpr ControlText lblShowUsernames{"Show user name stats", tips::kShowUsernames};
inline constexpr ControlText chkShowUsernames{"Show Usernames", tips::kShowUsernames};
inline constexpr ControlText lblCSV{"Generate CSV files for other analysis", tips::kCSV};
inline constexpr ControlText chkCSV{"", tips::kCSV, lblCSV.caption};
inline constexpr ControlText lblCurrent{"Current activity in progress.", ""};
inline constexpr ControlText barMonthsDone{"", "", "Months done"};
inline constexpr ControlText cmdSave{"Save + Exit",
                                     "Save configuration settings to be used in next scheduled "
                                     "batch run, but don't generate anything now."};
inline constexpr ControlText btnCatchUp{"Save + Catch-Up",
                                        "Save configuration settings for use in next scheduled "
                                        "batch run, and regenerate the usage pages for the last "
                                        "year."};
inline constexpr ControlText chkAndView{"And view",
                                        "And view usage in web browser when completed."};
inline constexpr ControlText btnView{
    "View generated", "View previously generated usage pages in the default web browser."};
inline constexpr ControlText btnOnDemand{
    "On Demand Report", "Generate a custom report now for a particular date range,"};
inline constexpr ControlText btnFilter{"Filter out records",
                                       "Exclude or include log records with specific field "
                                       "values."};
inline constexpr ControlText btnHelp{"Help", ""};
inline constexpr ControlText cmdQuit{"Quit", "Don't save changes, just exit."};
inline constexpr ControlText boxSchedule{"Run daily at", tips::kSchedule};
inline constexpr ControlText txtSchedWhen{"02:00:00", tips::kSchedule, boxSchedule.caption};
inline constexpr ControlText btnScheduleAdd{"Add", tips::kSchedule};

}  // namespace frmConfig

namespace frmNewUsageFolder {

inline constexpr std::string_view kTitle = "Create new usage folder";
inline constexpr ControlText txtNewUsageFolder{
    "Usage", "Enter name of new folder to which usage reports will be written.", kTitle};
inline constexpr ControlText btnCreateNewUsageFolder{"Create", ""};
inline constexpr ControlText btnNewUsageFolderQuit{"Cancel", ""};

}  // namespace frmNewUsageFolder

namespace frmSite {

inline constexpr std::string_view kTitle = "Hitwick - Select which site";
inline constexpr ControlText lstSites{"SiteName", "", "SiteName"};
inline constexpr ControlText btnGo{"Select", ""};
inline constexpr ControlText txtAdd{"Add new site name here", "", "Add new site name here"};
inline constexpr ControlText btnAdd{"Add", ""};
inline constexpr ControlText btnRemove{"Remove", ""};
inline constexpr ControlText btnQuit{"Cancel", ""};

}  // namespace frmSite

namespace frmOnDemand {

inline constexpr std::string_view kTitle = "Hitwick - On Demand Report";
inline constexpr ControlText lblFromDay{"From day", ""};
inline constexpr ControlText lstFromDay{"", "", lblFromDay.caption};
inline constexpr ControlText lblToDay{"To day", ""};
inline constexpr ControlText lstToDay{"", "", lblToDay.caption};
inline constexpr ControlText lblMonth{"Month", ""};
inline constexpr ControlText lstMonth{"", "", lblMonth.caption};
inline constexpr ControlText lblYear{"Year", ""};
inline constexpr ControlText lstYear{"", "", lblYear.caption};
inline constexpr ControlText lblRepName{"Report name", ""};
inline constexpr ControlText txtRepName{"Custom", "", lblRepName.caption};
inline constexpr ControlText btnGoMonth{"Create report", ""};
inline constexpr ControlText btnQuit{"Close", ""};

}  // namespace frmOnDemand

namespace frmFilters {

inline constexpr std::string_view kTitle = "Filters";
inline constexpr ControlText btnAdd{"Add", ""};
inline constexpr ControlText btnOK{"Commit", ""};
inline constexpr ControlText btnCancel{"Cancel", ""};

// Accessible name and tool tip of the picture buttons in the row of the rule `name`.
inline std::string EditButton(std::string_view name) { return std::string("Edit ").append(name); }
inline std::string DeleteButton(std::string_view name) {
  return std::string("Delete ").append(name);
}

}  // namespace frmFilters

namespace frmFilter {

inline constexpr std::string_view kTitle = "Filter Name";
inline constexpr std::string_view kIncludeTip =
    "Exclude records where field doesn't match the pattern";
inline constexpr std::string_view kExcludeTip = "Exclude records where field matches the pattern";
inline constexpr ControlText lblBG1{"Filter name", ""};
inline constexpr ControlText txtFilterName{
    "name of filrer", "Short but unique description of what filter is doing.", lblBG1.caption};
inline constexpr ControlText lblBG2{"Filter will", ""};
inline constexpr ControlText optInclude{"Include", kIncludeTip};
inline constexpr ControlText optExclude{"Exclude", kExcludeTip};
inline constexpr ControlText lblInclude{"Include", kIncludeTip};
inline constexpr ControlText lblExclude{"Exclude", kExcludeTip};
inline constexpr ControlText lblBG3{"log records where", ""};
inline constexpr ControlText lstField{
    "", "Name of the field in the IIS log file this rule applies to.", lblBG3.caption};
inline constexpr ControlText lblBG4{"matches", ""};
inline constexpr ControlText txtPattern{"", "\"LIKE\" pattern match rule. ", lblBG4.caption};
inline constexpr ControlText lblBG5{"field", ""};
inline constexpr ControlText btnOK{"OK", ""};
inline constexpr ControlText btnCancel{"Cancel", ""};
inline constexpr ControlText btnHelp{"Help", ""};

}  // namespace frmFilter

}  // namespace window_texts

#endif  // HITWICK_UI_WINDOW_TEXTS_H_
