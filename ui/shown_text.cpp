#include "ui/shown_text.h"

#include <wx/control.h>

namespace ui {
namespace {

constexpr wxUniChar::value_type kReplacementCharacter = 0xFFFD;

// Decodes as far as the bytes go together; every byte that belongs to nothing is replaced.
wxString DecodedByteByByte(std::string_view text) {
  wxString shown;
  while (!text.empty()) {
    wxString character;
    std::size_t length = 0;
    while (character.empty() && length < 4 && length < text.size()) {
      character = wxString::FromUTF8(text.data(), ++length);
    }
    if (character.empty()) {
      character = wxUniChar(kReplacementCharacter);
      length = 1;
    }
    shown += character;
    text.remove_prefix(length);
  }
  return shown;
}

}  // namespace

wxString Shown(std::string_view text) {
  const wxString shown = wxString::FromUTF8(text.data(), text.size());
  return shown.empty() ? DecodedByteByByte(text) : shown;
}

std::string Typed(const wxString& text) { return text.utf8_string(); }

wxString WithMnemonic(std::string_view caption, char letter) {
  wxString shown = wxControl::EscapeMnemonics(Shown(caption));
  const int place = letter == 0 ? wxNOT_FOUND : shown.Find(letter);
  if (place != wxNOT_FOUND) shown.insert(static_cast<std::size_t>(place), 1, '&');
  return shown;
}

}  // namespace ui
