#include <wx/app.h>
#include <wx/msw/wrapwin.h>

#include "ui/toolkit.h"

namespace ui {

void PrepareToolkit() { wxSetInstance(GetModuleHandle(nullptr)); }

bool IsMenuKey(const wxKeyEvent& /*event*/) { return false; }

}  // namespace ui
