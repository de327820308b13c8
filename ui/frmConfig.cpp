#include "ui/frmConfig.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/menu.h>
#include <wx/sizer.h>

#include "config/mdlConfigs.h"
#include "ui/frmFilters.h"
#include "ui/frmNewUsageFolder.h"
#include "ui/frmOnDemand.h"
#include "ui/shown_text.h"
#include "ui/toolkit.h"

namespace texts = window_texts::frmConfig;

namespace {

constexpr int kBorder = 12;
const wxPoint kMenuPlace(16, 16);  // inside the list, when asked for by keyboard

}  // namespace

frmConfig::frmConfig()
    : wxFrame(nullptr, wxID_ANY, ui::Shown(texts::kTitle)), configuration_(*this) {
  panel_ = new wxPanel(this);
  auto* const columns = new wxBoxSizer(wxHORIZONTAL);
  columns->Add(BuildSettings(), wxSizerFlags(1).Expand());
  columns->AddSpacer(FromDIP(kBorder));
  columns->Add(BuildButtons(), wxSizerFlags().Expand());
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(columns, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kBorder)));
  rows->Add(BuildStatus(),
            wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kBorder)));
  panel_->SetSizer(rows);
  auto* const whole = new wxBoxSizer(wxVERTICAL);
  whole->Add(panel_, wxSizerFlags(1).Expand());

  configuration_.Form_Load();
  ShowSettings();
  ShowProgress(0, 0);
  BindEvents();
  // No default button: Enter belongs to the folder lists, and must not save and exit by mistake.
  log_folders_->list()->SetFocus();
  ui::FinishWindow(this, whole, "frmConfig");
}

void frmConfig::ShowSettings() {
  const mdlConfigs::SiteSettings& settings = mdlConfigs::Run().Settings;
  Frame1->SetLabel(wxControl::EscapeMnemonics(ui::Shown(configuration_.frame_caption())));
  ui::Describe(Frame1, {configuration_.frame_caption(), ""});
  lstLogfileFormat->SetSelection(ui::LogFormatIndex(settings.LogFormat));
  log_folders_->Refresh();
  usage_folders_->Refresh();
  txtListSizes->ChangeValue(wxString::Format("%d", settings.MaxListSize));
  chkUTC->SetValue(settings.UseUTC);
  chkShowUsernames->SetValue(settings.ShowUsernames);
  chkCSV->SetValue(settings.GenerateCSV);
}

void frmConfig::BindEvents() {
  BindFieldEvents();
  BindButtonEvents();
  usage_folders_->list()->Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent& event) {
    const bool by_key = event.GetPosition() == wxDefaultPosition;
    dirUsageDir_ContextMenu(by_key ? FromDIP(kMenuPlace) : wxDefaultPosition);
  });
  usage_folders_->list()->Bind(wxEVT_CHAR_HOOK, &frmConfig::dirUsageDir_KeyDown, this);
  Bind(wxEVT_CHAR_HOOK, &frmConfig::Form_KeyDown, this);
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { configuration_.cmdQuit_Click(); });
}

void frmConfig::BindFieldEvents() {
  lstLogfileFormat->Bind(wxEVT_LISTBOX, [this](wxCommandEvent& event) {
    configuration_.lstLogfileFormat_Click(event.GetSelection());
  });
  txtListSizes->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { txtListSizes_Change(); });
  chkUTC->Bind(wxEVT_CHECKBOX,
               [this](wxCommandEvent& event) { configuration_.chkUTC_Click(event.IsChecked()); });
  chkShowUsernames->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent& event) {
    configuration_.chkShowUsernames_Click(event.IsChecked());
  });
  chkCSV->Bind(wxEVT_CHECKBOX,
               [this](wxCommandEvent& event) { configuration_.chkCSV_Click(event.IsChecked()); });
}

void frmConfig::BindButtonEvents() {
  cmdSave->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configuration_.cmdSave_Click(); });
  btnCatchUp->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configuration_.btnCatchUp_Click(); });
  btnView->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configuration_.btnView_Click(); });
  btnOnDemand->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnOnDemand_Click(); });
  btnFilter->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnFilter_Click(); });
  btnHelp->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configuration_.btnHelp_Click(); });
  cmdQuit->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configuration_.cmdQuit_Click(); });
  const auto add_task = [this](wxCommandEvent&) {
    configuration_.btnScheduleAdd_Click(ui::Typed(txtSchedWhen->GetValue()));
  };
  btnScheduleAdd->Bind(wxEVT_BUTTON, add_task);
  txtSchedWhen->Bind(wxEVT_TEXT_ENTER, add_task);
}

void frmConfig::txtListSizes_Change() {
  const std::string shown = configuration_.txtListSizes_Change(ui::Typed(txtListSizes->GetValue()));
  if (shown.empty()) return;
  txtListSizes->ChangeValue(ui::Shown(shown));
  // What is typed next replaces the number that was set back.
  txtListSizes->CallAfter([this] { txtListSizes->SelectAll(); });
}

void frmConfig::dirUsageDir_ContextMenu(const wxPoint& place) {
  if (!menu_enabled_) return;
  wxMenu mnuPopupUsage;
  mnuPopupUsage.Append(wxID_HIGHEST, ui::WithMnemonic(texts::mnuNewUsageFolder.caption, 'N'));
  mnuPopupUsage.Bind(
      wxEVT_MENU, [this](wxCommandEvent&) { mnuNewUsageFolder_Click(); }, wxID_HIGHEST);
  usage_folders_->list()->PopupMenu(&mnuPopupUsage, place);
}

void frmConfig::dirUsageDir_KeyDown(wxKeyEvent& event) {
  if (ui::IsMenuKey(event)) {
    dirUsageDir_ContextMenu(FromDIP(kMenuPlace));
  } else {
    event.Skip();
  }
}

void frmConfig::mnuNewUsageFolder_Click() {
  frmNewUsageFolder window(this, configuration_.dirUsageDir().path());
  window.ShowModal();
  if (window.created_folder().empty()) return;
  configuration_.ShowUsageDir(window.created_folder());
  usage_folders_->Refresh();
}

void frmConfig::btnOnDemand_Click() {
  if (!on_demand_) on_demand_ = new frmOnDemand(this, configuration_);
  on_demand_->Show();
  on_demand_->Raise();
}

void frmConfig::btnFilter_Click() { frmFilters(this).ShowModal(); }

// Escape is the quit button's key, as a dialog has it.
void frmConfig::Form_KeyDown(wxKeyEvent& event) {
  if (event.GetKeyCode() == WXK_ESCAPE && !event.HasAnyModifiers()) {
    configuration_.cmdQuit_Click();
  } else {
    event.Skip();
  }
}

void frmConfig::Enable(ui::ConfigControl control, bool enabled) {
  if (control == ui::ConfigControl::mnuPopupUsage) {
    menu_enabled_ = enabled;
  } else {
    ControlOf(control)->Enable(enabled);
  }
  // The window that the button has opened may still be there.
  if (control == ui::ConfigControl::btnOnDemand && on_demand_) on_demand_->Enable(enabled);
}

bool frmConfig::AndView() const { return chkAndView->GetValue(); }

void frmConfig::ShowStatus(const std::string& text) { lblCurrent->SetLabelText(ui::Shown(text)); }

void frmConfig::ShowProgress(int done, int months) {
  months_done_->Show(months > 0);
  if (months == 0) return;
  months_done_->SetRange(months);
  months_done_->SetValue(done);
}

void frmConfig::ProcessEvents() {
  if (wxEventLoopBase* const loop = wxEventLoopBase::GetActive(); loop != nullptr) {
    if (!loop->IsYielding()) loop->YieldFor(wxEVT_CATEGORY_ALL);
  }
}

void frmConfig::Close() {
  if (on_demand_) on_demand_->Destroy();
  Destroy();
}
