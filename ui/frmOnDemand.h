// The on-demand window: a usage page for a range of days of one month, under a name of its own.
//
// Stays open beside the configuration window, which shows the progress of its run.
#ifndef HITWICK_UI_FRMONDEMAND_H_
#define HITWICK_UI_FRMONDEMAND_H_

#include <wx/dialog.h>
#include <wx/listbox.h>
#include <wx/textctrl.h>

#include <vector>

#include "ui/configuration.h"
#include "ui/on_demand.h"

class frmOnDemand : public wxDialog {
 public:
  // `configuration` lives longer than the window.
  frmOnDemand(wxWindow* parent, ui::Configuration& configuration);

 private:
  void Build();
  void Form_Load();
  void BindEvents();
  ui::on_demand::Selection Choice() const;

  void txtRepName_Change();
  void btnGoMonth_Click();
  void btnQuit_Click();

  ui::Configuration& configuration_;
  const std::vector<ui::on_demand::YearEntry> years_;
  wxListBox* lstFromDay = nullptr;
  wxListBox* lstToDay = nullptr;
  wxListBox* lstMonth = nullptr;
  wxListBox* lstYear = nullptr;
  wxTextCtrl* txtRepName = nullptr;
  wxButton* btnGoMonth = nullptr;
  wxButton* btnQuit = nullptr;
};

#endif  // HITWICK_UI_FRMONDEMAND_H_
