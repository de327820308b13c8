#include <gtk/gtk.h>

#include "ui/accessible.h"

namespace ui {
namespace {

// The widget that takes the keyboard: a list lies inside its scroll bars, an edit field inside its
// drop-down list.
GtkWidget* KeyboardWidget(wxWindow* control) {
  GtkWidget* const widget = control->GetHandle();
  if (!GTK_IS_SCROLLED_WINDOW(widget) && !GTK_IS_COMBO_BOX(widget)) return widget;
  GtkWidget* const child = gtk_bin_get_child(GTK_BIN(widget));
  return child != nullptr && gtk_widget_get_can_focus(child) ? child : widget;
}

void Describe(GtkWidget* widget, const wxString& name, const wxString& description) {
  AtkObject* const object = gtk_widget_get_accessible(widget);
  atk_object_set_name(object, name.utf8_str());
  if (!description.empty()) atk_object_set_description(object, description.utf8_str());
}

}  // namespace

void DescribeControl(wxWindow* control, const wxString& name, const wxString& description) {
  Describe(control->GetHandle(), name, description);
  GtkWidget* const keyboard = KeyboardWidget(control);
  if (keyboard == control->GetHandle()) return;
  Describe(keyboard, name, description);
  // Else the scroll bars around a list would take the keyboard from it.
  if (GTK_IS_SCROLLED_WINDOW(control->GetHandle())) {
    gtk_widget_set_can_focus(control->GetHandle(), FALSE);
  }
}

void TieLabel(wxStaticText* label, wxWindow* control) {
  gtk_label_set_mnemonic_widget(GTK_LABEL(label->GetHandle()), KeyboardWidget(control));
}

}  // namespace ui
