// What every window does with its controls: texts, names, sizes, place.
//
// No state. A control's caption, tool tip and accessible name come from `window_texts.h` in one
// step, so that none is forgotten.
#ifndef HITWICK_UI_CONTROLS_H_
#define HITWICK_UI_CONTROLS_H_

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/toplevel.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "ui/window_texts.h"

namespace ui {

// Tool tip, accessible name and description of a control.
void Describe(wxWindow* control, const window_texts::ControlText& text);

// Controls with all their texts. `mnemonic` is a letter of the caption, or 0.
wxStaticText* NewLabel(wxWindow* parent, const window_texts::ControlText& text, char mnemonic = 0);
wxButton* NewButton(wxWindow* parent, const window_texts::ControlText& text, char mnemonic = 0,
                    wxWindowID id = wxID_ANY);
wxTextCtrl* NewTextBox(wxWindow* parent, const window_texts::ControlText& text, long style = 0);
wxCheckBox* NewCheckBox(wxWindow* parent, const window_texts::ControlText& text, char mnemonic = 0);
wxListBox* NewListBox(wxWindow* parent, const window_texts::ControlText& text);

// Ties a label to its control: mnemonic, and a click on the label of a check box or option button
// counts as one on the button.
void TieLabelTo(wxStaticText* label, wxWindow* control);

// The texts as a list shows them.
wxArrayString Entries(const std::vector<std::string>& texts);

// The row of buttons at a dialog's lower edge, in the order given, with `apart` at its left end;
// and how it is added to the dialog's rows.
wxSizer* ButtonRow(wxWindow* parent, std::initializer_list<wxButton*> buttons,
                   wxButton* apart = nullptr);
wxSizerFlags ButtonRowFlags(wxWindow* parent);

// Puts the sizer into the window, makes its least size the smallest that
// the window takes, and gives the window the size and place that it had when it was last closed
// under this name.
void FinishWindow(wxTopLevelWindow* window, wxSizer* sizer, const char* name);

}  // namespace ui

#endif  // HITWICK_UI_CONTROLS_H_
