#include <wx/icon.h>
#include <wx/iconbndl.h>
#include <wx/msw/wrapwin.h>

#include <utility>

#include "ui/toolkit.h"

namespace ui {
namespace {

constexpr int kLabelRoom = 4;

// The picture of the program's icon that the system wants at this size.
wxIcon ProgramIcon(int width_metric, int height_metric) {
  const HANDLE picture =
      LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1), IMAGE_ICON,
                 GetSystemMetrics(width_metric), GetSystemMetrics(height_metric), LR_DEFAULTCOLOR);
  wxIcon icon;
  if (picture != nullptr) icon.CreateFromHICON(static_cast<WXHICON>(picture));
  return icon;
}

}  // namespace

void PrepareToolkit() {}

void GiveIcon(wxTopLevelWindow* window) {
  wxIconBundle icons;
  for (const wxIcon& icon :
       {ProgramIcon(SM_CXSMICON, SM_CYSMICON), ProgramIcon(SM_CXICON, SM_CYICON)}) {
    if (icon.IsOk()) icons.AddIcon(icon);
  }
  window->SetIcons(icons);
}

// With some fonts the last letter is drawn beyond the width that was measured.
void GiveRoom(wxStaticText* label) {
  label->SetMinSize(label->GetBestSize() + label->FromDIP(wxSize(kLabelRoom, 0)));
}

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
