// Texts between the program (UTF-8 bytes) and the toolkit.
#ifndef HITWICK_UI_SHOWN_TEXT_H_
#define HITWICK_UI_SHOWN_TEXT_H_

#include <wx/string.h>

#include <string>
#include <string_view>

namespace ui {

// The text as a control shows it. Bytes that are no UTF-8, as a folder's name may hold, show as the
// replacement character; so a path is kept beside the control and never read back from it.
wxString Shown(std::string_view text);

// What the user typed, as UTF-8.
std::string Typed(const wxString& text);

// The caption with the mnemonic on the first `letter` in it (that letter is underlined while Alt
// is held); without one when `letter` is 0.
wxString WithMnemonic(std::string_view caption, char letter);

}  // namespace ui

#endif  // HITWICK_UI_SHOWN_TEXT_H_
