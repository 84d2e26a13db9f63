#include "ui/wx/bindings/data_view.h"

#include "ui/wx/metrics.h"
#include "ui/wx/theme.h"

namespace quarnel::data_view {

void AppendTicks(wxDataViewCtrl& widget) {
  auto* renderer = new wxDataViewToggleRenderer("bool", wxDATAVIEW_CELL_ACTIVATABLE);
  widget.AppendColumn(new wxDataViewColumn("Select", renderer, kTickColumn,
                                           metrics::Scaled(widget, metrics::kTickColumn),
                                           wxALIGN_CENTRE, 0));
}

void AppendTexts(wxDataViewCtrl& widget, wxDataViewRenderer* renderer, const wxString& title,
                 unsigned column, int width) {
  constexpr int kFlags = wxDATAVIEW_COL_RESIZABLE | wxDATAVIEW_COL_SORTABLE;
  renderer->EnableEllipsize(wxELLIPSIZE_MIDDLE);
  widget.AppendColumn(new wxDataViewColumn(title, renderer, column, metrics::Scaled(widget, width),
                                           wxALIGN_LEFT, kFlags));
}

int RoomForTexts(const wxDataViewCtrl& widget, bool ticks) {
  const int taken = ticks ? metrics::Scaled(widget, metrics::kTickColumn) : 0;
  return widget.GetClientSize().x - taken;
}

wxDataViewColumn& TextColumn(const wxDataViewCtrl& widget, bool ticks, int place) {
  return *widget.GetColumn(static_cast<unsigned>(place + (ticks ? 1 : 0)));
}

bool Show(const Look& look, wxDataViewItemAttr& attributes) {
  if (look.colour != Colour::kBlack) attributes.SetColour(theme::Of(look.colour));
  attributes.SetBold(look.bold);
  return !attributes.IsDefault();
}

bool HasKeyboard(const wxDataViewCtrl& widget) {
  const wxWindow* focused = wxWindow::FindFocus();
  return focused != nullptr && (focused == &widget || focused->GetParent() == &widget);
}

void OnTickKey(wxDataViewCtrl& widget, std::function<void()> tick) {
  widget.Bind(wxEVT_CHAR_HOOK, [tick = std::move(tick)](wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_SPACE && !event.HasAnyModifiers()) {
      tick();
    } else {
      event.Skip();
    }
  });
}

wxPoint MenuPlace(const wxDataViewCtrl& widget, bool ticks) {
  const wxDataViewItem chosen = widget.GetSelection();
  const wxRect row =
      chosen.IsOk() ? widget.GetItemRect(chosen, &TextColumn(widget, ticks, 0)) : wxRect();
  return row.IsEmpty() ? wxPoint() + widget.GetClientSize() / 2 : row.GetBottomLeft();
}

}  // namespace quarnel::data_view
