// The list of the site's filter rules: add, edit, delete, commit.
//
// One row per rule: its name and two picture buttons. What happens stands in `filter_list`.
#ifndef HITWICK_UI_FRMFILTERS_H_
#define HITWICK_UI_FRMFILTERS_H_

#include <wx/bmpbuttn.h>
#include <wx/dialog.h>
#include <wx/scrolwin.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <cstddef>
#include <vector>

#include "ui/filter_editor.h"

class frmFilters : public wxDialog {
 public:
  explicit frmFilters(wxWindow* parent);

 private:
  struct Row {
    wxStaticText* lblExisting;
    wxBitmapButton* btnEdit;
    wxBitmapButton* btnDelete;
  };

  void Build();
  void BindEvents();
  void AddRow();
  // Takes the last row away.
  void RemoveRow();
  void LayOutRows();
  void ShowPictures();
  void ShowEditor(const ui::FilterEntry& entry);

  void btnEdit_Click(std::size_t row);
  void btnDelete_Click(std::size_t row);
  void btnOK_Click();

  wxScrolledWindow* rules_ = nullptr;
  wxFlexGridSizer* grid_ = nullptr;
  std::vector<Row> rows_;  // one per rule
  wxButton* btnAdd = nullptr;
  wxButton* btnOK = nullptr;
};

#endif  // HITWICK_UI_FRMFILTERS_H_
