#include "ui/window_boxes.h"

#include <wx/msgdlg.h>

#include "ui/shown_text.h"
#include "ui/window_texts.h"

namespace ui {

void WindowBoxes::Show(std::string_view text) {
  wxMessageDialog(nullptr, Shown(text), Shown(window_texts::kBoxTitle), wxOK | wxCENTRE)
      .ShowModal();
}

bool WindowBoxes::AskYesNo(std::string_view caption, std::string_view text) {
  return wxMessageDialog(nullptr, Shown(text), Shown(caption),
                         wxYES_NO | wxNO_DEFAULT | wxICON_QUESTION | wxCENTRE)
             .ShowModal() == wxID_YES;
}

}  // namespace ui
