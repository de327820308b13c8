// What `frmNewUsageFolder` decides: a new folder inside the one that the usage list shows.
//
// No state. Called by that window.
#ifndef HITWICK_UI_NEW_USAGE_FOLDER_H_
#define HITWICK_UI_NEW_USAGE_FOLDER_H_

#include <string>

namespace ui {

struct NewUsageFolder {
  bool close = false;  // the window closes: the folder was created, or could not be (box shown)
  std::string path;    // the new folder; empty when none was created. The configuration window
                       // shows it with `Configuration::ShowUsageDir`, which lists it afresh.
};

// The create button. Without a name it asks for one and the window stays.
NewUsageFolder btnCreateNewUsageFolder_Click(const std::string& parent, const std::string& name);

}  // namespace ui

#endif  // HITWICK_UI_NEW_USAGE_FOLDER_H_
