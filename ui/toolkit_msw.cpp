#include <wx/app.h>
#include <wx/msw/wrapwin.h>

#include <utility>

#include "ui/toolkit.h"

namespace ui {

void PrepareToolkit() { wxSetInstance(GetModuleHandle(nullptr)); }

bool IsMenuKey(const wxKeyEvent& /*event*/) { return false; }

void BindEnter(wxListBox* list, std::function<void()> action) {
  list->Bind(wxEVT_CHAR_HOOK, [action = std::move(action)](wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_RETURN || event.GetKeyCode() == WXK_NUMPAD_ENTER) {
      action();
    } else {
      event.Skip();
    }
  });
}

}  // namespace ui
