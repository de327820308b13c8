#include "ui/frmSite.h"

#include <wx/sizer.h>

#include <utility>

#include "ui/controls.h"
#include "ui/shown_text.h"
#include "ui/site_selection.h"

namespace texts = window_texts::frmSite;

namespace {

constexpr int kBorder = 12;
constexpr int kGap = 6;
constexpr int kNameWidth = 260;

}  // namespace

frmSite::frmSite()
    : wxDialog(nullptr, wxID_ANY, ui::Shown(texts::kTitle), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
  Build();
  ShowSites(ui::site_selection::Form_Load());
  BindEvents();
  btnGo->SetDefault();
  lstSites->SetFocus();
}

void frmSite::Build() {
  lstSites = new wxComboBox(this, wxID_ANY, ui::Shown(texts::lstSites.caption), wxDefaultPosition,
                            FromDIP(wxSize(kNameWidth, -1)), 0, nullptr, wxCB_DROPDOWN);
  ui::Describe(lstSites, texts::lstSites);
  btnGo = ui::NewButton(this, texts::btnGo, 'S');
  btnRemove = ui::NewButton(this, texts::btnRemove, 'R');
  txtAdd = ui::NewTextBox(this, texts::txtAdd, wxTE_PROCESS_ENTER);
  btnAdd = ui::NewButton(this, texts::btnAdd, 'A');
  btnQuit = ui::NewButton(this, texts::btnQuit, 0, wxID_CANCEL);

  auto* const names = new wxFlexGridSizer(3, FromDIP(wxSize(kGap, kGap)));
  names->AddGrowableCol(0);
  const wxSizerFlags flags = wxSizerFlags().Expand().CentreVertical();
  names->Add(lstSites, flags);
  names->Add(btnGo, flags);
  names->Add(btnRemove, flags);
  names->Add(txtAdd, flags);
  names->Add(btnAdd, flags);
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(names, wxSizerFlags().Expand().Border(wxALL, FromDIP(kBorder)));
  rows->AddStretchSpacer();
  rows->Add(ui::ButtonRow(this, {btnQuit}), ui::ButtonRowFlags(this));
  ui::FinishWindow(this, rows, "frmSite");
}

void frmSite::BindEvents() {
  btnGo->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnGo_Click(); });
  btnAdd->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnAdd_Click(); });
  btnQuit->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnQuit_Click(); });
  btnRemove->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnRemove_Click(); });
  txtAdd->Bind(wxEVT_CHAR, [this](wxKeyEvent& event) { RefuseCharacter(event); });
  txtAdd->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { txtAdd_Change(); });
  txtAdd->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) { btnAdd_Click(); });
}

void frmSite::ShowSites(std::vector<std::string> sites) {
  sites_ = std::move(sites);
  lstSites->Set(ui::Entries(sites_));
  lstSites->SetValue(ui::Shown(texts::lstSites.caption));
}

// A chosen entry byte for byte, else what was typed.
std::string frmSite::ChosenSite() const {
  const int entry = lstSites->GetSelection();
  const wxString text = lstSites->GetValue();
  if (entry != wxNOT_FOUND && lstSites->GetString(static_cast<unsigned>(entry)) == text) {
    return sites_[static_cast<std::size_t>(entry)];
  }
  return ui::Typed(text);
}

void frmSite::btnGo_Click() {
  ui::site_selection::btnGo_Click(ChosenSite());
  EndModal(wxID_OK);
}

void frmSite::btnAdd_Click() {
  ui::site_selection::btnAdd_Click(ui::Typed(txtAdd->GetValue()));
  EndModal(wxID_OK);
}

void frmSite::btnQuit_Click() {
  ui::site_selection::btnQuit_Click();
  EndModal(wxID_CANCEL);
}

void frmSite::btnRemove_Click() { ShowSites(ui::site_selection::btnRemove_Click(ChosenSite())); }

// A typed character that would be removed again is not let in at all: the toolkit places the cursor
// of a changed text late, and fast typing would go on in the wrong place.
void frmSite::RefuseCharacter(wxKeyEvent& event) {
  const wxUniChar character(event.GetUnicodeKey());
  const std::string typed(1, character.IsAscii() ? static_cast<char>(character) : '?');
  const bool plain = character >= ' ' && !event.HasModifiers();
  if (plain && ui::site_selection::txtAdd_Change(typed).empty()) {
    txtAdd->SetInsertionPointEnd();
  } else {
    event.Skip();
  }
}

void frmSite::txtAdd_Change() {
  const wxString text = txtAdd->GetValue();
  const wxString cleaned = ui::Shown(ui::site_selection::txtAdd_Change(ui::Typed(text)));
  if (cleaned == text) return;
  txtAdd->ChangeValue(cleaned);
  // The toolkit places the cursor once more after this event.
  txtAdd->CallAfter([this] { txtAdd->SetInsertionPointEnd(); });
}
