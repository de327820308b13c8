// The editor of one filter rule. Reads as a sentence: Filter will include or exclude log records
// where FIELD matches PATTERN.
#ifndef HITWICK_UI_FRMFILTER_H_
#define HITWICK_UI_FRMFILTER_H_

#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/radiobut.h>
#include <wx/textctrl.h>

#include "ui/filter_editor.h"

class frmFilter : public wxDialog {
 public:
  // `entry`: what the controls show at first.
  frmFilter(wxWindow* parent, const ui::FilterEntry& entry);

 private:
  void Build();
  wxSizer* BuildName();
  wxSizer* BuildKind();
  wxSizer* BuildCondition();
  void Form_Load(const ui::FilterEntry& entry);
  ui::FilterEntry Entry() const;

  void btnOK_Click();

  wxTextCtrl* txtFilterName = nullptr;
  wxRadioButton* optInclude = nullptr;
  wxRadioButton* optExclude = nullptr;
  wxChoice* lstField = nullptr;
  wxTextCtrl* txtPattern = nullptr;
};

#endif  // HITWICK_UI_FRMFILTER_H_
