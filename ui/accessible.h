// What a screen reader (and a test on the accessibility bus) learns of a control.
//
// On Windows the toolkit derives most names itself: a control that is created right after its
// label is called by it. On GTK it derives none. One file per toolkit, chosen by CMake.
#ifndef HITWICK_UI_ACCESSIBLE_H_
#define HITWICK_UI_ACCESSIBLE_H_

#include <wx/stattext.h>
#include <wx/string.h>
#include <wx/window.h>

namespace ui {

// Gives the control its name and, unless it is empty, its description.
void DescribeControl(wxWindow* control, const wxString& name, const wxString& description);

// Says that `label` stands for `control`: the label's mnemonic leads to it.
void TieLabel(wxStaticText* label, wxWindow* control);

}  // namespace ui

#endif  // HITWICK_UI_ACCESSIBLE_H_
