#include "ui/frmNewUsageFolder.h"

#include <wx/sizer.h>

#include <utility>

#include "ui/controls.h"
#include "ui/new_usage_folder.h"
#include "ui/shown_text.h"

namespace texts = window_texts::frmNewUsageFolder;

namespace {

constexpr int kBorder = 12;
constexpr int kNameWidth = 320;

}  // namespace

frmNewUsageFolder::frmNewUsageFolder(wxWindow* parent, std::string folder)
    : wxDialog(parent, wxID_ANY, ui::Shown(texts::kTitle), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      folder_(std::move(folder)) {
  txtNewUsageFolder = ui::NewTextBox(this, texts::txtNewUsageFolder);
  txtNewUsageFolder->SetMinSize(wxSize(FromDIP(kNameWidth), -1));
  auto* const create = ui::NewButton(this, texts::btnCreateNewUsageFolder, 0, wxID_OK);
  auto* const quit = ui::NewButton(this, texts::btnNewUsageFolderQuit, 0, wxID_CANCEL);
  create->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnCreateNewUsageFolder_Click(); });
  create->SetDefault();

  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(txtNewUsageFolder, wxSizerFlags().Expand().Border(wxALL, FromDIP(kBorder)));
  rows->AddStretchSpacer();
  rows->Add(ui::ButtonRow(this, {create, quit}), ui::ButtonRowFlags(this));
  txtNewUsageFolder->SetFocus();
  // Once the window is there: Windows forgets what was selected before.
  txtNewUsageFolder->CallAfter([this] { txtNewUsageFolder->SelectAll(); });
  ui::FinishWindow(this, rows, "frmNewUsageFolder");
}

void frmNewUsageFolder::btnCreateNewUsageFolder_Click() {
  const ui::NewUsageFolder result =
      ui::btnCreateNewUsageFolder_Click(folder_, ui::Typed(txtNewUsageFolder->GetValue()));
  created_folder_ = result.path;
  if (result.close) EndModal(wxID_OK);
}
