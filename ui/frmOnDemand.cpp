#include "ui/frmOnDemand.h"

#include <wx/sizer.h>

#include "ui/controls.h"
#include "ui/shown_text.h"

namespace texts = window_texts::frmOnDemand;
using window_texts::ControlText;

namespace {

constexpr int kBorder = 12;
constexpr int kGap = 6;
constexpr int kListHeight = 220;
constexpr int kDayWidth = 90;
constexpr int kMonthWidth = 150;

// A label above a list, as one column.
wxListBox* AddColumn(wxWindow* parent, wxSizer* columns, const ControlText& label_text,
                     const ControlText& list_text, char mnemonic, int width) {
  auto* const label = ui::NewLabel(parent, label_text, mnemonic);
  auto* const list = ui::NewListBox(parent, list_text);
  list->SetMinSize(parent->FromDIP(wxSize(width, kListHeight)));
  ui::TieLabelTo(label, list);
  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(label, wxSizerFlags().Border(wxBOTTOM, parent->FromDIP(kGap)));
  column->Add(list, wxSizerFlags(1).Expand());
  if (!columns->IsEmpty()) columns->AddSpacer(parent->FromDIP(kBorder));
  columns->Add(column, wxSizerFlags(width).Expand());
  return list;
}

void SelectAndShow(wxListBox* list, int entry) {
  list->SetSelection(entry);
  if (entry != wxNOT_FOUND) list->EnsureVisible(entry);
}

}  // namespace

frmOnDemand::frmOnDemand(wxWindow* parent, ui::Configuration& configuration)
    : wxDialog(parent, wxID_ANY, ui::Shown(texts::kTitle), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      configuration_(configuration),
      years_(ui::on_demand::YearEntries()) {
  Build();
  Form_Load();
  BindEvents();
  btnGoMonth->SetDefault();
}

void frmOnDemand::Build() {
  auto* const columns = new wxBoxSizer(wxHORIZONTAL);
  lstFromDay = AddColumn(this, columns, texts::lblFromDay, texts::lstFromDay, 'F', kDayWidth);
  lstToDay = AddColumn(this, columns, texts::lblToDay, texts::lstToDay, 'T', kDayWidth);
  lstMonth = AddColumn(this, columns, texts::lblMonth, texts::lstMonth, 'M', kMonthWidth);
  lstYear = AddColumn(this, columns, texts::lblYear, texts::lstYear, 'Y', kDayWidth);
  auto* const lblRepName = ui::NewLabel(this, texts::lblRepName, 'R');
  txtRepName = ui::NewTextBox(this, texts::txtRepName);
  ui::TieLabelTo(lblRepName, txtRepName);
  btnGoMonth = ui::NewButton(this, texts::btnGoMonth, 'C');
  btnQuit = ui::NewButton(this, texts::btnQuit, 0, wxID_CANCEL);

  auto* const name = new wxBoxSizer(wxHORIZONTAL);
  name->Add(lblRepName, wxSizerFlags().CentreVertical().Border(wxRIGHT, FromDIP(kBorder)));
  name->Add(txtRepName, wxSizerFlags(1).CentreVertical());
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(columns, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kBorder)));
  rows->Add(name, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kBorder)));
  rows->Add(ui::ButtonRow(this, {btnGoMonth, btnQuit}), ui::ButtonRowFlags(this));
  ui::FinishWindow(this, rows, "frmOnDemand");
}

void frmOnDemand::Form_Load() {
  lstFromDay->Set(ui::Entries(ui::on_demand::DayEntries()));
  lstToDay->Set(ui::Entries(ui::on_demand::DayEntries()));
  lstMonth->Set(ui::Entries(ui::on_demand::MonthEntries()));
  for (const ui::on_demand::YearEntry& year : years_) lstYear->Append(ui::Shown(year.text));
  const ui::on_demand::Selection first = ui::on_demand::FirstSelection();
  SelectAndShow(lstFromDay, first.from_day);
  SelectAndShow(lstToDay, first.to_day);
  SelectAndShow(lstMonth, first.month);
  SelectAndShow(lstYear, first.year);
}

void frmOnDemand::BindEvents() {
  txtRepName->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { txtRepName_Change(); });
  btnGoMonth->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnGoMonth_Click(); });
  btnQuit->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnQuit_Click(); });
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { btnQuit_Click(); });
}

ui::on_demand::Selection frmOnDemand::Choice() const {
  return {lstFromDay->GetSelection(), lstToDay->GetSelection(), lstMonth->GetSelection(),
          lstYear->GetSelection()};
}

void frmOnDemand::txtRepName_Change() {
  const wxString text = txtRepName->GetValue();
  const wxString cleaned = ui::Shown(ui::on_demand::txtRepName_Change(ui::Typed(text)));
  if (cleaned == text) return;
  const long place = txtRepName->GetInsertionPoint();
  txtRepName->ChangeValue(cleaned);
  txtRepName->SetInsertionPoint(place);
}

// The configuration window disables this one during any run, and shows its progress.
void frmOnDemand::btnGoMonth_Click() {
  if (configuration_.running()) return;
  const bool runs = ui::on_demand::IsValid(Choice(), years_);
  wxWindow* const had_keyboard = FindFocus();
  if (runs) configuration_.BeginRun(1);
  ui::on_demand::btnGoMonth_Click(Choice(), years_, ui::Typed(txtRepName->GetValue()));
  if (!runs) return;
  configuration_.EndRun();
  // A control loses the keyboard when its window is disabled.
  if (had_keyboard != nullptr && IsDescendant(had_keyboard)) had_keyboard->SetFocus();
}

// The window outlives its own run.
void frmOnDemand::btnQuit_Click() {
  if (!configuration_.running()) Destroy();
}
