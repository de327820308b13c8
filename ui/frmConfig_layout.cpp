// The controls of the configuration window and where they stand.

#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbox.h>

#include "ui/frmConfig.h"
#include "ui/shown_text.h"

namespace texts = window_texts::frmConfig;

namespace {

constexpr int kGap = 6;
constexpr int kWideGap = 12;
constexpr int kNumberWidth = 90;
constexpr int kGaugeWidth = 180;

}  // namespace

wxSizer* frmConfig::BuildSettings() {
  Frame1 = new wxStaticBox(panel_, wxID_ANY, "");
  auto* const settings = new wxStaticBoxSizer(Frame1, wxVERTICAL);
  const int gap = FromDIP(kWideGap);
  settings->Add(BuildFormat(), wxSizerFlags().Expand().Border(wxALL, gap));
  settings->Add(BuildFolders(), wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, gap));
  settings->Add(BuildOptions(), wxSizerFlags().Expand().Border(wxALL, gap));
  return settings;
}

wxSizer* frmConfig::BuildFormat() {
  auto* const lblLogTyle = ui::NewLabel(panel_, texts::lblLogTyle, 'W');
  lstLogfileFormat = ui::NewListBox(panel_, texts::lstLogfileFormat);
  lstLogfileFormat->Set(ui::Entries(ui::LogFormats()));
  lstLogfileFormat->SetMinSize(
      wxSize(FromDIP(kNumberWidth), 2 * lstLogfileFormat->GetCharHeight()));
  ui::TieLabelTo(lblLogTyle, lstLogfileFormat);
  auto* const format = new wxBoxSizer(wxHORIZONTAL);
  format->Add(lblLogTyle, wxSizerFlags().CentreVertical());
  format->AddSpacer(FromDIP(kWideGap));
  format->Add(lstLogfileFormat, wxSizerFlags().CentreVertical());
  return format;
}

wxSizer* frmConfig::BuildFolders() {
  log_folders_ = std::make_unique<ui::FolderBox>(
      panel_,
      ui::FolderBox::Texts{texts::lblLogDir, texts::dskLogDir, texts::dirLogDir,
                           texts::btnBrowseLogDir, 'l'},
      ui::FolderBox::Owner{[this]() -> const ui::FolderList& { return configuration_.dirLogDir(); },
                           [this](std::size_t line) { return configuration_.dirLogDir_GoIn(line); },
                           [this] { return configuration_.dirLogDir_GoUp(); },
                           [this](const std::string& path) { configuration_.ShowLogDir(path); }});
  usage_folders_ = std::make_unique<ui::FolderBox>(
      panel_,
      ui::FolderBox::Texts{texts::lblUsagedir, texts::dskUsageDir, texts::dirUsageDir,
                           texts::btnBrowseUsageDir, 'p'},
      ui::FolderBox::Owner{
          [this]() -> const ui::FolderList& { return configuration_.dirUsageDir(); },
          [this](std::size_t line) { return configuration_.dirUsageDir_GoIn(line); },
          [this] { return configuration_.dirUsageDir_GoUp(); },
          [this](const std::string& path) { configuration_.ShowUsageDir(path); }});
  auto* const folders = new wxBoxSizer(wxHORIZONTAL);
  folders->Add(log_folders_->sizer(), wxSizerFlags(1).Expand());
  folders->AddSpacer(FromDIP(kWideGap));
  folders->Add(usage_folders_->sizer(), wxSizerFlags(1).Expand());
  return folders;
}

wxSizer* frmConfig::BuildOptions() {
  auto* const options = new wxFlexGridSizer(2, FromDIP(wxSize(kWideGap, kGap)));
  const auto add_row = [options](wxStaticText* label, wxWindow* control) {
    ui::TieLabelTo(label, control);
    options->Add(label, wxSizerFlags().CentreVertical());
    options->Add(control, wxSizerFlags().CentreVertical());
  };
  auto* const lblListSizes = ui::NewLabel(panel_, texts::lblListSizes, 'M');
  txtListSizes = ui::NewTextBox(panel_, texts::txtListSizes);
  txtListSizes->SetMinSize(wxSize(FromDIP(kNumberWidth), -1));
  add_row(lblListSizes, txtListSizes);
  auto* const lblUTC = ui::NewLabel(panel_, texts::lblUTC, 'O');
  chkUTC = ui::NewCheckBox(panel_, texts::chkUTC);
  add_row(lblUTC, chkUTC);
  auto* const lblShowUsernames = ui::NewLabel(panel_, texts::lblShowUsernames, 'u');
  chkShowUsernames = ui::NewCheckBox(panel_, texts::chkShowUsernames);
  add_row(lblShowUsernames, chkShowUsernames);
  auto* const lblCSV = ui::NewLabel(panel_, texts::lblCSV, 'G');
  chkCSV = ui::NewCheckBox(panel_, texts::chkCSV);
  add_row(lblCSV, chkCSV);
  return options;
}

wxSizer* frmConfig::BuildButtons() {
  cmdSave = ui::NewButton(panel_, texts::cmdSave, 'S');
  btnCatchUp = ui::NewButton(panel_, texts::btnCatchUp, 'C');
  chkAndView = ui::NewCheckBox(panel_, texts::chkAndView, 'n');
  btnView = ui::NewButton(panel_, texts::btnView, 'V');
  btnOnDemand = ui::NewButton(panel_, texts::btnOnDemand, 'D');
  btnFilter = ui::NewButton(panel_, texts::btnFilter, 'F');
  auto* const buttons = new wxBoxSizer(wxVERTICAL);
  const wxSizerFlags flags = wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(kGap));
  for (wxWindow* control : std::initializer_list<wxWindow*>{cmdSave, btnCatchUp, chkAndView}) {
    buttons->Add(control, flags);
  }
  buttons->AddSpacer(FromDIP(kWideGap));
  for (wxWindow* control : std::initializer_list<wxWindow*>{btnView, btnOnDemand, btnFilter}) {
    buttons->Add(control, flags);
  }
  buttons->AddSpacer(FromDIP(kWideGap));
  buttons->Add(BuildSchedule(), wxSizerFlags().Expand());
  buttons->AddStretchSpacer();
  btnHelp = ui::NewButton(panel_, texts::btnHelp, 'H');
  cmdQuit = ui::NewButton(panel_, texts::cmdQuit, 'Q');
  buttons->Add(btnHelp, flags);
  buttons->Add(cmdQuit, wxSizerFlags().Expand());
  return buttons;
}

wxSizer* frmConfig::BuildSchedule() {
  boxSchedule = new wxStaticBox(panel_, wxID_ANY, ui::Shown(texts::boxSchedule.caption));
  ui::Describe(boxSchedule, texts::boxSchedule);
  txtSchedWhen = ui::NewTextBox(panel_, texts::txtSchedWhen, wxTE_PROCESS_ENTER);
  txtSchedWhen->SetMinSize(wxSize(FromDIP(kNumberWidth), -1));
  btnScheduleAdd = ui::NewButton(panel_, texts::btnScheduleAdd, 'A');
  auto* const schedule = new wxStaticBoxSizer(boxSchedule, wxHORIZONTAL);
  schedule->Add(txtSchedWhen, wxSizerFlags(1).CentreVertical().Border(wxALL, FromDIP(kGap)));
  schedule->Add(btnScheduleAdd, wxSizerFlags().CentreVertical().Border(wxALL, FromDIP(kGap)));
  return schedule;
}

wxSizer* frmConfig::BuildStatus() {
  lblCurrent =
      new wxStaticText(panel_, wxID_ANY, ui::Shown(texts::lblCurrent.caption), wxDefaultPosition,
                       wxDefaultSize, wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  months_done_ = new wxGauge(panel_, wxID_ANY, 1, wxDefaultPosition,
                             FromDIP(wxSize(kGaugeWidth, -1)), wxGA_HORIZONTAL | wxGA_SMOOTH);
  ui::Describe(months_done_, texts::barMonthsDone);
  auto* const status = new wxBoxSizer(wxHORIZONTAL);
  status->Add(lblCurrent, wxSizerFlags(1).CentreVertical());
  status->AddSpacer(FromDIP(kWideGap));
  status->Add(months_done_, wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
  return status;
}

wxWindow* frmConfig::ControlOf(ui::ConfigControl control) {
  using Control = ui::ConfigControl;
  switch (control) {
    case Control::lstLogfileFormat:
      return lstLogfileFormat;
    case Control::dskLogDir:
      return log_folders_->drives();
    case Control::dirLogDir:
      return log_folders_->list();
    case Control::btnBrowseLogDir:
      return log_folders_->browse();
    case Control::dskUsageDir:
      return usage_folders_->drives();
    case Control::dirUsageDir:
      return usage_folders_->list();
    case Control::btnBrowseUsageDir:
      return usage_folders_->browse();
    case Control::mnuPopupUsage:
      return nullptr;
    case Control::txtListSizes:
      return txtListSizes;
    case Control::chkUTC:
      return chkUTC;
    case Control::chkShowUsernames:
      return chkShowUsernames;
    case Control::chkCSV:
      return chkCSV;
    case Control::cmdSave:
      return cmdSave;
    case Control::btnCatchUp:
      return btnCatchUp;
    case Control::btnView:
      return btnView;
    case Control::btnOnDemand:
      return btnOnDemand;
    case Control::btnFilter:
      return btnFilter;
    case Control::txtSchedWhen:
      return txtSchedWhen;
    case Control::btnScheduleAdd:
      return btnScheduleAdd;
  }
  return nullptr;
}
