// Small things that differ between the toolkits. One file per toolkit, chosen by CMake.
#ifndef HITWICK_UI_TOOLKIT_H_
#define HITWICK_UI_TOOLKIT_H_

#include <wx/event.h>
#include <wx/listbox.h>
#include <wx/stattext.h>
#include <wx/toplevel.h>

#include <functional>

namespace ui {

// Comes before the toolkit is initialised.
void PrepareToolkit();

// The program's icon for a window, where the desktop does not give it one by itself.
void GiveIcon(wxTopLevelWindow* window);

// Room for the whole text of a label, where the toolkit measures it too tightly.
void GiveRoom(wxStaticText* label);

// True for a key that asks for the menu of the control with the keyboard, where the toolkit does
// not make a wxContextMenuEvent of it by itself.
bool IsMenuKey(const wxKeyEvent& event);

// What Enter does in a list box, in the place of pressing the window's default button.
void BindEnter(wxListBox* list, std::function<void()> action);

}  // namespace ui

#endif  // HITWICK_UI_TOOLKIT_H_
