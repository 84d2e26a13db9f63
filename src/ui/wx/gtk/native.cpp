#include "ui/wx/native.h"

#include <gtk/gtk.h>

namespace quarnel::native {
namespace {

void AlignLeft(GtkWidget* button) {
  gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
  GtkWidget* content = gtk_bin_get_child(GTK_BIN(button));
  if (content == nullptr) return;
  // Picture and text stand in an alignment of their own.
  gtk_widget_set_halign(content, GTK_ALIGN_START);
}

// The window exists but is not yet on the screen. The toolkit makes it at the screen's corner with
// next to no size, and leaves it there when it shows it for the first time.
void PutInPlace(GtkWidget* widget, gpointer data) {
  const wxPoint place = static_cast<const wxTopLevelWindow*>(data)->GetPosition();
  wxSize size;
  gtk_window_get_size(GTK_WINDOW(widget), &size.x, &size.y);
  gdk_window_move_resize(gtk_widget_get_window(widget), place.x, place.y, size.x, size.y);
}

}  // namespace

void MakeTab(wxToggleButton& tab) { AlignLeft(tab.GetHandle()); }

// The desktop's theme marks a button that is held down.
void ShowTab(wxToggleButton&, bool) {}

void MakeRow(wxButton& row) { AlignLeft(row.GetHandle()); }

void KeepPlace(wxTopLevelWindow& window) {
  g_signal_connect_after(window.GetHandle(), "realize", G_CALLBACK(PutInPlace), &window);
}

void SetAccessibleName(wxWindow& widget, const wxString& name) {
  GtkWidget* shown = widget.GetHandle();
  const auto set = [&](GtkWidget* part) {
    AtkObject* spoken = gtk_widget_get_accessible(part);
    if (spoken != nullptr) atk_object_set_name(spoken, name.utf8_str());
  };
  set(shown);
  // Lists and texts stand inside a widget that scrolls them.
  if (GTK_IS_SCROLLED_WINDOW(shown)) {
    if (GtkWidget* inner = gtk_bin_get_child(GTK_BIN(shown))) set(inner);
  }
}

}  // namespace quarnel::native
