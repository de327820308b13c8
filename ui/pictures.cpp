#include "ui/pictures.h"

#include <wx/colour.h>
#include <wx/settings.h>

#include <string>

namespace ui {
namespace {

constexpr int kSize = 16;

constexpr const char* kPencil =
    "<path d='M2.5 13.5 L3.5 10 L11 2.5 L13.5 5 L6 12.5 Z M9.5 4 L12 6.5'/>";
constexpr const char* kDustbin =
    "<path d='M2.5 4.5 H13.5 M6 4.5 V2.5 H10 V4.5 M4 4.5 L4.5 13.5 H11.5 L12 4.5 M6.5 7 V11 M9.5 7 "
    "V11'/>";

wxBitmapBundle Picture(const std::string& path) {
  const wxColour colour = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
  const std::string drawing =
      "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16' viewBox='0 0 16 16'>"
      "<g fill='none' stroke='" +
      colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_string() +
      "' stroke-width='1.4' stroke-linejoin='round' stroke-linecap='round'>" + path + "</g></svg>";
  return wxBitmapBundle::FromSVG(drawing.c_str(), wxSize(kSize, kSize));
}

}  // namespace

wxBitmapBundle EditPicture() { return Picture(kPencil); }

wxBitmapBundle DeletePicture() { return Picture(kDustbin); }

}  // namespace ui
