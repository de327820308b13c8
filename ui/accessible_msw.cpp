#include <wx/access.h>

#include "ui/accessible.h"

namespace ui {
namespace {

// Name and description for a control whose own text says nothing, such as a picture button; all
// the rest stays as the system has it.
class Described : public wxAccessible {
 public:
  Described(wxWindow* control, const wxString& name, const wxString& description)
      : wxAccessible(control), name_(name), description_(description) {}

  wxAccStatus GetName(int child, wxString* name) override {
    return child == wxACC_SELF ? Give(name_, name) : wxACC_NOT_IMPLEMENTED;
  }
  wxAccStatus GetDescription(int child, wxString* description) override {
    return child == wxACC_SELF ? Give(description_, description) : wxACC_NOT_IMPLEMENTED;
  }

 private:
  static wxAccStatus Give(const wxString& text, wxString* result) {
    if (text.empty()) return wxACC_NOT_IMPLEMENTED;
    *result = text;
    return wxACC_OK;
  }

  const wxString name_;
  const wxString description_;
};

}  // namespace

void DescribeControl(wxWindow* control, const wxString& name, const wxString& description) {
  control->SetAccessible(new Described(control, name, description));  // the control owns it
}

// The system ties a label to the control created after it.
void TieLabel(wxStaticText* /*label*/, wxWindow* /*control*/) {}

}  // namespace ui
