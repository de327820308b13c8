#include "ui/controls.h"

#include <wx/persist/toplevel.h>
#include <wx/sizer.h>
#include <wx/utils.h>

#include <algorithm>
#include <memory>

#include "ui/accessible.h"
#include "ui/shown_text.h"
#include "ui/toolkit.h"
#include "ui/type_ahead.h"

namespace ui {
namespace {

using window_texts::ControlText;

constexpr int kBorder = 12;
constexpr int kButtonGap = 6;

void Press(wxWindow* control) {
  control->SetFocus();
  if (auto* const box = dynamic_cast<wxCheckBox*>(control)) {
    box->SetValue(!box->GetValue());
    wxCommandEvent event(wxEVT_CHECKBOX, box->GetId());
    event.SetEventObject(box);
    event.SetInt(box->GetValue());
    box->HandleWindowEvent(event);
  } else if (auto* const option = dynamic_cast<wxRadioButton*>(control)) {
    option->SetValue(true);
    wxCommandEvent event(wxEVT_RADIOBUTTON, option->GetId());
    event.SetEventObject(option);
    event.SetInt(1);
    option->HandleWindowEvent(event);
  }
}

// The toolkits' own search knows nothing of indented lines, and GTK's finds only whole ones.
void ListChar(wxListBox* list, TypeAhead* typed, wxKeyEvent& event) {
  const wxChar character = event.GetUnicodeKey();
  const bool starts = character == ' ' && !typed->typing(event.GetTimestamp());
  if (character < ' ' || character == WXK_DELETE || event.HasModifiers() || starts) {
    event.Skip();
    return;
  }
  std::vector<std::string> lines;
  for (const wxString& line : list->GetStrings()) lines.push_back(Typed(line));
  const auto found = typed->Type(Typed(wxString(character)), event.GetTimestamp(), lines,
                                 static_cast<std::size_t>(std::max(0, list->GetSelection())));
  if (!found) return wxBell();
  list->SetSelection(static_cast<int>(*found));
  list->EnsureVisible(static_cast<int>(*found));
}

void BindTypeAhead(wxListBox* list) {
  const auto typed = std::make_shared<TypeAhead>();
  list->Bind(wxEVT_CHAR, [list, typed](wxKeyEvent& event) { ListChar(list, typed.get(), event); });
}

}  // namespace

void Describe(wxWindow* control, const ControlText& text) {
  if (!text.tip.empty()) control->SetToolTip(Shown(text.tip));
  DescribeControl(control, Shown(text.AccessibleName()), Shown(text.tip));
}

wxStaticText* NewLabel(wxWindow* parent, const ControlText& text, char mnemonic) {
  auto* const label = new wxStaticText(parent, wxID_ANY, WithMnemonic(text.caption, mnemonic));
  GiveRoom(label);
  Describe(label, text);
  return label;
}

wxButton* NewButton(wxWindow* parent, const ControlText& text, char mnemonic, wxWindowID id) {
  auto* const button = new wxButton(parent, id, WithMnemonic(text.caption, mnemonic));
  Describe(button, text);
  return button;
}

wxTextCtrl* NewTextBox(wxWindow* parent, const ControlText& text, long style) {
  auto* const box = new wxTextCtrl(parent, wxID_ANY, Shown(text.caption), wxDefaultPosition,
                                   wxDefaultSize, style);
  Describe(box, text);
  return box;
}

wxCheckBox* NewCheckBox(wxWindow* parent, const ControlText& text, char mnemonic) {
  // Without a caption a blank keeps the box in line with those that have one.
  auto* const box = new wxCheckBox(
      parent, wxID_ANY, text.caption.empty() ? " " : WithMnemonic(text.caption, mnemonic));
  Describe(box, text);
  return box;
}

wxListBox* NewListBox(wxWindow* parent, const ControlText& text) {
  auto* const list = new wxListBox(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, 0, nullptr,
                                   wxLB_SINGLE | wxLB_NEEDED_SB | wxWANTS_CHARS);
  Describe(list, text);
  BindTypeAhead(list);
  return list;
}

void TieLabelTo(wxStaticText* label, wxWindow* control) {
  TieLabel(label, control);
  label->GetParent()->Bind(wxEVT_LEFT_DOWN, [label, control](wxMouseEvent& event) {
    if (label->GetRect().Contains(event.GetPosition()) && control->IsEnabled()) {
      Press(control);
    } else {
      event.Skip();
    }
  });
}

wxArrayString Entries(const std::vector<std::string>& texts) {
  wxArrayString entries;
  for (const std::string& text : texts) entries.Add(Shown(text));
  return entries;
}

wxSizer* ButtonRow(wxWindow* parent, std::initializer_list<wxButton*> buttons, wxButton* apart) {
  auto* const row = new wxBoxSizer(wxHORIZONTAL);
  if (apart != nullptr) row->Add(apart);
  row->AddStretchSpacer();
  for (wxButton* button : buttons) {
    row->Add(button, wxSizerFlags().Border(wxLEFT, parent->FromDIP(kButtonGap)));
  }
  return row;
}

wxSizerFlags ButtonRowFlags(wxWindow* parent) {
  return wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, parent->FromDIP(kBorder));
}

void FinishWindow(wxTopLevelWindow* window, wxSizer* sizer, const char* name) {
  window->SetName(name);
  GiveIcon(window);
  window->SetSizerAndFit(sizer);
  if (!wxPersistentRegisterAndRestore(window)) window->CentreOnParent();
}

}  // namespace ui
