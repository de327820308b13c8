// The site selection window: which site the program works on, a new site's name, the removal of a
// site. Shown modally while the command line is read; its answer is the name of the site in use.
#ifndef HITWICK_UI_FRMSITE_H_
#define HITWICK_UI_FRMSITE_H_

#include <wx/combobox.h>
#include <wx/dialog.h>
#include <wx/textctrl.h>

#include <string>
#include <vector>

class frmSite : public wxDialog {
 public:
  frmSite();

 private:
  void Build();
  void BindEvents();
  void ShowSites(std::vector<std::string> sites);
  std::string ChosenSite() const;

  void btnGo_Click();
  void btnAdd_Click();
  void btnQuit_Click();
  void btnRemove_Click();
  void RefuseCharacter(wxKeyEvent& event);
  void txtAdd_Change();

  std::vector<std::string> sites_;  // the entries of `lstSites`, byte for byte
  wxComboBox* lstSites = nullptr;
  wxButton* btnGo = nullptr;
  wxButton* btnRemove = nullptr;
  wxTextCtrl* txtAdd = nullptr;
  wxButton* btnAdd = nullptr;
  wxButton* btnQuit = nullptr;
};

#endif  // HITWICK_UI_FRMSITE_H_
