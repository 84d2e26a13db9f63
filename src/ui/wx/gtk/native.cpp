#include "ui/wx/native.h"

#include <glib-unix.h>
#include <gtk/gtk.h>

#include <utility>

#include "ui/wx/metrics.h"

namespace quarnel::native {
namespace {

// Picture and text stand in an alignment of their own, which is a new one after each change.
void AlignLeft(wxAnyButton& button) {
  GtkWidget* content = gtk_bin_get_child(GTK_BIN(button.GetHandle()));
  if (content != nullptr) gtk_widget_set_halign(content, GTK_ALIGN_START);
}

template <typename Button>
Button* NewFlat(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  auto* button = new Button(parent, wxID_ANY, caption, wxDefaultPosition, wxDefaultSize,
                            wxBORDER_NONE | wxBU_LEFT);
  GtkWidget* widget = button->GetHandle();
  gtk_button_set_relief(GTK_BUTTON(widget), GTK_RELIEF_NONE);
  if (picture.IsOk()) {
    button->SetBitmap(picture);
    // Beside what the toolkit leaves there.
    gtk_widget_set_margin_end(gtk_button_get_image(GTK_BUTTON(widget)), metrics::kTightGap);
  }
  AlignLeft(*button);
  return button;
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

wxButton* NewFlatButton(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  return NewFlat<wxButton>(parent, caption, picture);
}

wxToggleButton* NewTab(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  return NewFlat<wxToggleButton>(parent, caption, picture);
}

void SetFlatCaption(wxAnyButton& button, const wxString& caption) {
  button.SetLabel(caption);
  AlignLeft(button);
}

// The desktop's theme marks a button that is held down.
void ShowTab(wxToggleButton&, bool) {}

namespace {

// The toolkit takes each text for the label of the next widget that takes the keyboard, whatever
// that is.
class Text : public wxStaticText {
 public:
  using wxStaticText::wxStaticText;
  bool GTKWidgetNeedsMnemonic() const override { return false; }
};

}  // namespace

wxStaticText* NewText(wxWindow* parent, const wxString& text, long style) {
  return new Text(parent, wxID_ANY, text, wxDefaultPosition, wxDefaultSize, style);
}

wxButton* NewPrimaryButton(wxWindow* parent, const wxString& caption) {
  return new wxButton(parent, wxID_ANY, caption);
}

wxBitmapBundle PictureOfType(const wxString& ending) {
  gchar* const type = g_content_type_guess(("file" + ending).utf8_str(), nullptr, 0, nullptr);
  GIcon* const icon = g_content_type_get_icon(type);
  g_free(type);
  wxVector<wxBitmap> pictures;
  for (const int edge : {metrics::kSmallIcon, metrics::kSmallIcon * 2, metrics::kSmallIcon * 3}) {
    GtkIconInfo* const found = gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon,
                                                              edge, GTK_ICON_LOOKUP_FORCE_SIZE);
    if (found == nullptr) continue;
    // The bitmap takes it over.
    if (GdkPixbuf* const pixels = gtk_icon_info_load_icon(found, nullptr)) {
      pictures.push_back(wxBitmap(pixels));
    }
    g_object_unref(found);
  }
  g_object_unref(icon);
  return wxBitmapBundle::FromBitmaps(pictures);
}

wxRadioButton* NewOption(wxWindow* parent) { return new wxRadioButton(parent, wxID_ANY, ""); }

void LetCaptionShrink(wxControl& mark) {
  GtkWidget* caption = gtk_bin_get_child(GTK_BIN(mark.GetHandle()));
  if (GTK_IS_LABEL(caption)) gtk_label_set_ellipsize(GTK_LABEL(caption), PANGO_ELLIPSIZE_END);
}

void KeepPlace(wxTopLevelWindow& window) {
  g_signal_connect_after(window.GetHandle(), "realize", G_CALLBACK(PutInPlace), &window);
}

// A modal dialog takes the input of all windows in its group.
void StayInReach(wxTopLevelWindow& window) {
  GtkWindowGroup* const group = gtk_window_group_new();
  gtk_window_group_add_window(group, GTK_WINDOW(window.GetHandle()));
  g_object_unref(group);  // the window keeps it
}

// Where a window manager puts a frame around it, its place is known some events later.
bool HasComeUp(const wxWindow& window) {
  GtkWidget* const widget = window.GetHandle();
  if (gtk_widget_get_mapped(widget) == 0) return false;
  wxPoint place;
  gdk_window_get_root_origin(gtk_widget_get_window(widget), &place.x, &place.y);
  return window.GetPosition() == place;
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

void SpeakAsPicture(wxWindow& widget) {
  atk_object_set_role(gtk_widget_get_accessible(widget.GetHandle()), ATK_ROLE_IMAGE);
}

// The toolkit does.
void InitControls() {}

std::shared_ptr<void> WatchEvents(EventWait& events, std::function<void()> run) {
  const std::optional<EventToken> token = events.LeaveWaiting({});
  auto* const handler = new std::function<void()>(std::move(run));
  GSource* const source = g_unix_fd_source_new(static_cast<int>(*token), G_IO_IN);
  const GUnixFDSourceFunc call = [](int, GIOCondition, gpointer data) {
    (*static_cast<std::function<void()>*>(data))();
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(source, reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(call)),
                        handler,
                        [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
  g_source_set_can_recurse(source, TRUE);
  g_source_attach(source, nullptr);
  return {source, [](GSource* attached) {
            g_source_destroy(attached);
            g_source_unref(attached);
          }};
}

}  // namespace quarnel::native
