// The configuration window: shows and edits the settings of the site in use, saves them, reports
// the last year, and leads to the other windows. The program ends when it is closed.
//
// What it decides stands in `Configuration`; this class holds the controls and passes events on.
#ifndef HITWICK_UI_FRMCONFIG_H_
#define HITWICK_UI_FRMCONFIG_H_

#include <wx/dialog.h>
#include <wx/frame.h>
#include <wx/gauge.h>
#include <wx/panel.h>
#include <wx/statbox.h>
#include <wx/weakref.h>

#include <array>
#include <memory>
#include <string>

#include "ui/configuration.h"
#include "ui/controls.h"
#include "ui/folder_box.h"

class frmOnDemand;

class frmConfig : public wxFrame, private ui::ConfigurationView {
 public:
  frmConfig();

 private:
  // Laying out.
  wxSizer* BuildSettings();
  wxSizer* BuildFormat();
  wxSizer* BuildFolders();
  wxSizer* BuildOptions();
  wxSizer* BuildButtons();
  wxSizer* BuildSchedule();
  wxSizer* BuildStatus();
  void BindEvents();
  void BindFieldEvents();
  void BindButtonEvents();
  void ShowSettings();
  wxWindow* ControlOf(ui::ConfigControl control);

  // The events that need more than one call.
  void txtListSizes_Change();
  void dirUsageDir_ContextMenu(const wxPoint& place);
  void dirUsageDir_KeyDown(wxKeyEvent& event);
  void mnuNewUsageFolder_Click();
  void btnOnDemand_Click();
  void btnFilter_Click();
  void Form_KeyDown(wxKeyEvent& event);

  // ui::ConfigurationView
  void Enable(ui::ConfigControl control, bool enabled) override;
  bool AndView() const override;
  void ShowStatus(const std::string& text) override;
  void ShowProgress(int done, int months) override;
  void ProcessEvents() override;
  void Close() override;

  ui::Configuration configuration_;
  bool menu_enabled_ = true;
  wxWeakRef<wxDialog> on_demand_;

  wxPanel* panel_ = nullptr;
  wxStaticBox* Frame1 = nullptr;
  wxListBox* lstLogfileFormat = nullptr;
  std::unique_ptr<ui::FolderBox> log_folders_;    // dskLogDir, dirLogDir
  std::unique_ptr<ui::FolderBox> usage_folders_;  // dskUsageDir, dirUsageDir
  wxTextCtrl* txtListSizes = nullptr;
  wxCheckBox* chkUTC = nullptr;
  wxCheckBox* chkShowUsernames = nullptr;
  wxCheckBox* chkCSV = nullptr;
  wxStaticText* lblCurrent = nullptr;
  wxGauge* months_done_ = nullptr;
  wxButton* cmdSave = nullptr;
  wxButton* btnCatchUp = nullptr;
  wxCheckBox* chkAndView = nullptr;
  wxButton* btnView = nullptr;
  wxButton* btnOnDemand = nullptr;
  wxButton* btnFilter = nullptr;
  wxButton* btnHelp = nullptr;
  wxButton* cmdQuit = nullptr;
  wxStaticBox* boxSchedule = nullptr;
  wxTextCtrl* txtSchedWhen = nullptr;
  wxButton* btnScheduleAdd = nullptr;
};

#endif  // HITWICK_UI_FRMCONFIG_H_
