#include "ui/folder_box.h"

#include <wx/dirdlg.h>
#include <wx/utils.h>

#include <utility>

#include "ui/controls.h"
#include "ui/shown_text.h"
#include "ui/toolkit.h"

namespace ui {
namespace {

constexpr int kGap = 4;
constexpr int kListWidth = 300;
constexpr int kListHeight = 160;
constexpr const char* kIndent = "    ";

wxString IndentedName(const FolderList::Entry& entry) {
  wxString name;
  for (int level = 0; level < entry.depth; ++level) name += kIndent;
  return name + Shown(entry.name);
}

}  // namespace

FolderBox::FolderBox(wxWindow* parent, const Texts& texts, Owner owner)
    : owner_(std::move(owner)), drive_roots_(Drives()) {
  Build(parent, texts);
  BindEvents();
}

void FolderBox::Build(wxWindow* parent, const Texts& texts) {
  auto* const label = NewLabel(parent, texts.label, texts.mnemonic);
  list_ = NewListBox(parent, texts.list);
  list_->SetMinSize(parent->FromDIP(wxSize(kListWidth, kListHeight)));
  TieLabelTo(label, list_);
  drives_ = new wxChoice(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, Entries(drive_roots_));
  Describe(drives_, texts.drives);
  drives_->Show(!drive_roots_.empty());
  path_ = new wxStaticText(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize,
                           wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  browse_ = new wxButton(parent, wxID_ANY, Shown(texts.browse.caption), wxDefaultPosition,
                         wxDefaultSize, wxBU_EXACTFIT);
  Describe(browse_, texts.browse);

  const int gap = parent->FromDIP(kGap);
  auto* const place = new wxBoxSizer(wxHORIZONTAL);
  place->Add(drives_, wxSizerFlags().CentreVertical().Border(wxRIGHT, gap));
  place->Add(path_, wxSizerFlags(1).CentreVertical());
  place->Add(browse_, wxSizerFlags().CentreVertical().Border(wxLEFT, gap));
  sizer_ = new wxBoxSizer(wxVERTICAL);
  sizer_->Add(label, wxSizerFlags().Expand());
  sizer_->Add(place, wxSizerFlags().Expand().Border(wxTOP | wxBOTTOM, gap));
  sizer_->Add(list_, wxSizerFlags(1).Expand());
}

void FolderBox::BindEvents() {
  list_->Bind(wxEVT_LISTBOX_DCLICK, [this](wxCommandEvent&) { GoIn(); });
  BindEnter(list_, [this] { GoIn(); });
  list_->Bind(wxEVT_CHAR_HOOK, &FolderBox::List_KeyDown, this);
  drives_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { Drive_Change(); });
  browse_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Browse_Click(); });
}

void FolderBox::Refresh() {
  const FolderList& folders = owner_.folders();
  wxArrayString lines;
  for (const FolderList::Entry& entry : folders.entries()) lines.Add(IndentedName(entry));
  list_->Set(lines);
  if (folders.present() < folders.entries().size()) {
    list_->SetSelection(static_cast<int>(folders.present()));
    list_->EnsureVisible(static_cast<int>(folders.present()));
  }
  path_->SetLabelText(Shown(folders.path()));
  ShowDrives();
}

void FolderBox::ShowDrives() {
  drives_->SetSelection(DriveOf(owner_.folders().path(), drive_roots_));
}

void FolderBox::Moved(bool moved) {
  if (moved) {
    Refresh();
  } else {
    wxBell();
  }
}

void FolderBox::GoIn() {
  const int line = list_->GetSelection();
  if (line != wxNOT_FOUND) Moved(owner_.go_in(static_cast<std::size_t>(line)));
}

void FolderBox::List_KeyDown(wxKeyEvent& event) {
  if (event.GetKeyCode() == WXK_BACK) {
    Moved(owner_.go_up());
  } else {
    event.Skip();
  }
}

void FolderBox::Drive_Change() {
  const int drive = drives_->GetSelection();
  if (drive == wxNOT_FOUND) return;
  owner_.show(drive_roots_[static_cast<std::size_t>(drive)]);
  Refresh();
}

void FolderBox::Browse_Click() {
  wxDirDialog dialog(wxGetTopLevelParent(list_), wxDirSelectorPromptStr,
                     Shown(owner_.folders().path()), wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return;
  owner_.show(Typed(dialog.GetPath()));
  Refresh();
}

}  // namespace ui
