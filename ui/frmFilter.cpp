#include "ui/frmFilter.h"

#include <wx/sizer.h>

#include "config/mdlConfigs.h"
#include "ui/controls.h"
#include "ui/filter_fields.h"
#include "ui/shown_text.h"

namespace texts = window_texts::frmFilter;
using window_texts::ControlText;

namespace {

constexpr int kBorder = 12;
constexpr int kGap = 6;
constexpr int kPatternWidth = 220;

}  // namespace

frmFilter::frmFilter(wxWindow* parent, const ui::FilterEntry& entry)
    : wxDialog(parent, wxID_ANY, ui::Shown(texts::kTitle), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
  Build();
  Form_Load(entry);
  txtFilterName->SetFocus();
}

void frmFilter::Build() {
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  const wxSizerFlags flags =
      wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxTOP, FromDIP(kBorder));
  rows->Add(BuildName(), flags);
  rows->Add(BuildKind(), flags);
  rows->Add(BuildCondition(), flags);
  rows->AddSpacer(FromDIP(kBorder));
  rows->AddStretchSpacer();
  auto* const btnOK = ui::NewButton(this, texts::btnOK, 0, wxID_OK);
  auto* const btnCancel = ui::NewButton(this, texts::btnCancel, 0, wxID_CANCEL);
  auto* const btnHelp = ui::NewButton(this, texts::btnHelp, 'H');
  btnOK->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnOK_Click(); });
  btnHelp->Bind(wxEVT_BUTTON, [](wxCommandEvent&) { ui::btnHelp_Click(); });
  btnOK->SetDefault();
  rows->Add(ui::ButtonRow(this, {btnOK, btnCancel}, btnHelp), ui::ButtonRowFlags(this));
  ui::FinishWindow(this, rows, "frmFilter");
}

wxSizer* frmFilter::BuildName() {
  auto* const lblBG1 = ui::NewLabel(this, texts::lblBG1, 'n');
  txtFilterName = ui::NewTextBox(this, texts::txtFilterName);
  ui::TieLabelTo(lblBG1, txtFilterName);
  auto* const name = new wxBoxSizer(wxHORIZONTAL);
  name->Add(lblBG1, wxSizerFlags().CentreVertical().Border(wxRIGHT, FromDIP(kBorder)));
  name->Add(txtFilterName, wxSizerFlags(1).CentreVertical());
  return name;
}

wxSizer* frmFilter::BuildKind() {
  const int gap = FromDIP(kGap);
  auto* const kind = new wxBoxSizer(wxHORIZONTAL);
  kind->Add(ui::NewLabel(this, texts::lblBG2), wxSizerFlags().CentreVertical());
  const auto add_option = [this, kind, gap](const ControlText& label_text,
                                            const ControlText& option_text, char mnemonic,
                                            long style) {
    auto* const label = ui::NewLabel(this, label_text, mnemonic);
    auto* const option =
        new wxRadioButton(this, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, style);
    ui::Describe(option, option_text);
    ui::TieLabelTo(label, option);
    kind->Add(option, wxSizerFlags().CentreVertical().Border(wxLEFT, 2 * gap));
    kind->Add(label, wxSizerFlags().CentreVertical());
    return option;
  };
  optInclude = add_option(texts::lblInclude, texts::optInclude, 'I', wxRB_GROUP);
  optExclude = add_option(texts::lblExclude, texts::optExclude, 'E', 0);
  kind->Add(ui::NewLabel(this, texts::lblBG3),
            wxSizerFlags().CentreVertical().Border(wxLEFT, 2 * gap));
  return kind;
}

wxSizer* frmFilter::BuildCondition() {
  auto* const lblBG5 = ui::NewLabel(this, texts::lblBG5, 'f');
  lstField = new wxChoice(this, wxID_ANY);
  ui::Describe(lstField, texts::lstField);
  ui::TieLabelTo(lblBG5, lstField);
  auto* const lblBG4 = ui::NewLabel(this, texts::lblBG4, 'm');
  txtPattern = ui::NewTextBox(this, texts::txtPattern);
  txtPattern->SetMinSize(wxSize(FromDIP(kPatternWidth), -1));
  ui::TieLabelTo(lblBG4, txtPattern);
  auto* const condition = new wxBoxSizer(wxHORIZONTAL);
  const wxSizerFlags flags = wxSizerFlags().CentreVertical().Border(wxRIGHT, FromDIP(kGap));
  condition->Add(lstField, flags);
  condition->Add(lblBG5, flags);
  condition->Add(lblBG4, flags);
  condition->Add(txtPattern, wxSizerFlags(1).CentreVertical());
  return condition;
}

void frmFilter::Form_Load(const ui::FilterEntry& entry) {
  txtFilterName->ChangeValue(ui::Shown(entry.name));
  (entry.includes ? optInclude : optExclude)->SetValue(true);
  lstField->Set(ui::Entries(ui::OfferedFields(mdlConfigs::Run().Settings.LogFormat)));
  const int fields = static_cast<int>(lstField->GetCount());
  lstField->SetSelection(entry.field < fields ? entry.field : wxNOT_FOUND);
  txtPattern->ChangeValue(ui::Shown(entry.pattern));
}

ui::FilterEntry frmFilter::Entry() const {
  return {ui::Typed(txtFilterName->GetValue()), optInclude->GetValue(), lstField->GetSelection(),
          ui::Typed(txtPattern->GetValue())};
}

void frmFilter::btnOK_Click() {
  ui::FilterEntry entry = Entry();
  if (ui::btnOK_Click(&entry)) {
    EndModal(wxID_OK);
  } else {
    txtFilterName->ChangeValue(ui::Shown(entry.name));
  }
}
