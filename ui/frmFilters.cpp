#include "ui/frmFilters.h"

#include <wx/button.h>

#include <algorithm>
#include <string>

#include "ui/accessible.h"
#include "ui/controls.h"
#include "ui/filter_list.h"
#include "ui/frmFilter.h"
#include "ui/pictures.h"
#include "ui/shown_text.h"

namespace texts = window_texts::frmFilters;
namespace filter_list = ui::filter_list;

namespace {

constexpr int kBorder = 12;
constexpr int kGap = 6;
constexpr int kListWidth = 380;
constexpr int kListHeight = 200;

void Rename(wxWindow* button, const std::string& name) {
  button->SetToolTip(ui::Shown(name));
  ui::DescribeControl(button, ui::Shown(name), ui::Shown(name));
}

}  // namespace

frmFilters::frmFilters(wxWindow* parent)
    : wxDialog(parent, wxID_ANY, ui::Shown(texts::kTitle), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
  filter_list::Form_Load();
  Build();
  LayOutRows();
  BindEvents();
  btnOK->SetDefault();
}

void frmFilters::Build() {
  rules_ = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition,
                                FromDIP(wxSize(kListWidth, kListHeight)),
                                wxVSCROLL | wxTAB_TRAVERSAL | wxBORDER_THEME);
  rules_->SetScrollRate(0, FromDIP(kBorder));
  grid_ = new wxFlexGridSizer(3, FromDIP(wxSize(kGap, kGap)));
  grid_->AddGrowableCol(0);
  auto* const inside = new wxBoxSizer(wxVERTICAL);
  inside->Add(grid_, wxSizerFlags().Expand().Border(wxALL, FromDIP(kGap)));
  rules_->SetSizer(inside);

  btnAdd = ui::NewButton(this, texts::btnAdd, 'A');
  btnOK = ui::NewButton(this, texts::btnOK, 'o', wxID_OK);
  auto* const btnCancel = ui::NewButton(this, texts::btnCancel, 0, wxID_CANCEL);
  auto* const rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(rules_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kBorder)));
  rows->Add(ui::ButtonRow(this, {btnOK, btnCancel}, btnAdd), ui::ButtonRowFlags(this));
  ui::FinishWindow(this, rows, "frmFilters");
}

void frmFilters::BindEvents() {
  btnAdd->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { ShowEditor(filter_list::btnAdd_Click()); });
  btnOK->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { btnOK_Click(); });
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    ShowPictures();
    event.Skip();
  });
}

void frmFilters::AddRow() {
  const std::size_t index = rows_.size();
  Row row;
  row.lblExisting = new wxStaticText(rules_, wxID_ANY, "");
  row.btnEdit = new wxBitmapButton(rules_, wxID_ANY, ui::EditPicture());
  row.btnDelete = new wxBitmapButton(rules_, wxID_ANY, ui::DeletePicture());
  row.btnEdit->Bind(wxEVT_BUTTON, [this, index](wxCommandEvent&) { btnEdit_Click(index); });
  row.btnDelete->Bind(wxEVT_BUTTON, [this, index](wxCommandEvent&) { btnDelete_Click(index); });
  grid_->Add(row.lblExisting, wxSizerFlags().CentreVertical());
  grid_->Add(row.btnEdit, wxSizerFlags().CentreVertical());
  grid_->Add(row.btnDelete, wxSizerFlags().CentreVertical());
  rows_.push_back(row);
}

void frmFilters::RemoveRow() {
  const Row row = rows_.back();
  rows_.pop_back();
  for (wxWindow* control :
       std::initializer_list<wxWindow*>{row.lblExisting, row.btnEdit, row.btnDelete}) {
    control->Hide();
    grid_->Detach(control);
    control->Reparent(this);  // what is hidden must not be scrolled
    // The button may be the one that is being pressed.
    CallAfter([control] { control->Destroy(); });
  }
}

void frmFilters::LayOutRows() {
  const std::vector<std::string> names = filter_list::FilterNames();
  while (rows_.size() < names.size()) AddRow();
  while (rows_.size() > names.size()) RemoveRow();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    row.lblExisting->SetLabelText(ui::Shown(names[i]));
    ui::DescribeControl(row.lblExisting, ui::Shown(names[i]), "");
    Rename(row.btnEdit, texts::EditButton(names[i]));
    Rename(row.btnDelete, texts::DeleteButton(names[i]));
  }
  rules_->FitInside();
  rules_->Layout();
}

void frmFilters::ShowPictures() {
  for (const Row& row : rows_) {
    row.btnEdit->SetBitmap(ui::EditPicture());
    row.btnDelete->SetBitmap(ui::DeletePicture());
  }
}

void frmFilters::ShowEditor(const ui::FilterEntry& entry) {
  frmFilter(this, entry).ShowModal();
  LayOutRows();
}

void frmFilters::btnEdit_Click(std::size_t row) { ShowEditor(filter_list::btnEdit_Click(row)); }

void frmFilters::btnDelete_Click(std::size_t row) {
  filter_list::btnDelete_Click(row);
  LayOutRows();
  // The keyboard stays where the rule was, or goes where another can be added.
  const std::size_t left = filter_list::FilterNames().size();
  wxWindow* const next = left == 0 ? btnAdd : rows_[std::min(row, left - 1)].btnDelete;
  next->SetFocus();
}

void frmFilters::btnOK_Click() {
  filter_list::btnOK_Click();
  EndModal(wxID_OK);
}
