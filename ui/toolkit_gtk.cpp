#include <gtk/gtk.h>

#include <clocale>
#include <utility>

#include "ui/toolkit.h"

namespace ui {
namespace {

using Action = std::function<void()>;

bool IsEnter(const GdkEventKey& key) {
  return key.keyval == GDK_KEY_Return || key.keyval == GDK_KEY_KP_Enter ||
         key.keyval == GDK_KEY_ISO_Enter;
}

gboolean OnEvent(GtkWidget* /*list*/, GdkEvent* event, gpointer action) {
  if (event->type != GDK_KEY_PRESS || !IsEnter(event->key)) return FALSE;
  (*static_cast<Action*>(action))();
  return TRUE;
}

void DeleteAction(gpointer action, GClosure* /*closure*/) { delete static_cast<Action*>(action); }

}  // namespace

// The toolkit speaks the user's language, but numbers in files keep their decimal point. The icon
// is the one that is installed for the desktop.
void PrepareToolkit() {
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_NUMERIC, "C");
  gtk_window_set_default_icon_name("hitwick");
}

void GiveIcon(wxTopLevelWindow* /*window*/) {}

void GiveRoom(wxStaticText* /*label*/) {}

bool IsMenuKey(const wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  return key == WXK_MENU || key == WXK_WINDOWS_MENU || (key == WXK_F10 && event.ShiftDown());
}

// The toolkit's list presses the default button before it tells anyone of the key, so this comes
// earlier still.
void BindEnter(wxListBox* list, std::function<void()> action) {
  GtkWidget* const view = gtk_bin_get_child(GTK_BIN(list->GetHandle()));
  g_signal_connect_data(view, "event", G_CALLBACK(OnEvent), new Action(std::move(action)),
                        DeleteAction, static_cast<GConnectFlags>(0));
}

}  // namespace ui
