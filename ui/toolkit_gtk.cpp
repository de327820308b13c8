#include <clocale>

#include "ui/toolkit.h"

namespace ui {

// The toolkit speaks the user's language, but numbers in files keep their decimal point.
void PrepareToolkit() {
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_NUMERIC, "C");
}

bool IsMenuKey(const wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  return key == WXK_MENU || key == WXK_WINDOWS_MENU || (key == WXK_F10 && event.ShiftDown());
}

}  // namespace ui
