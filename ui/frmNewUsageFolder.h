// A small window that asks for the name of a new usage folder and creates it.
#ifndef HITWICK_UI_FRMNEWUSAGEFOLDER_H_
#define HITWICK_UI_FRMNEWUSAGEFOLDER_H_

#include <wx/dialog.h>
#include <wx/textctrl.h>

#include <string>

class frmNewUsageFolder : public wxDialog {
 public:
  // `folder`: where the new one is created.
  frmNewUsageFolder(wxWindow* parent, std::string folder);

  // The new folder, once the window is closed; empty when none was created.
  const std::string& created_folder() const { return created_folder_; }

 private:
  void btnCreateNewUsageFolder_Click();

  const std::string folder_;
  std::string created_folder_;
  wxTextCtrl* txtNewUsageFolder = nullptr;
};

#endif  // HITWICK_UI_FRMNEWUSAGEFOLDER_H_
