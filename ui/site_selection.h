// What the site selection window decides: which sites there are, which one the program works on,
// and the removal of one.
//
// State: `mdlConfigs::Run().SiteName`, which the start-up goes on with. Called by `frmSite`.
#ifndef HITWICK_UI_SITE_SELECTION_H_
#define HITWICK_UI_SITE_SELECTION_H_

#include <string>
#include <string_view>
#include <vector>

namespace ui::site_selection {

// Clears the site's name and returns the entries of `lstSites`, in the store's order. A store that
// cannot be read is told in a box and gives none.
std::vector<std::string> Form_Load();

// Each closes the window: the site becomes the text of `lstSites`, that of `txtAdd`, or none (the
// default site).
void btnGo_Click(const std::string& text);
void btnAdd_Click(const std::string& text);
void btnQuit_Click();

// Asks, removes the settings of the site named in `lstSites`, and returns the entries afresh,
// whatever came of it. Without a name nothing is asked or removed. The window stays open.
std::vector<std::string> btnRemove_Click(const std::string& text);

// What `txtAdd` is to hold instead of `text`: without "/", "\" and blanks. When it differs, the
// text is set and the cursor goes to its end.
std::string txtAdd_Change(std::string_view text);

}  // namespace ui::site_selection

#endif  // HITWICK_UI_SITE_SELECTION_H_
