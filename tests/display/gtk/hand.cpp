#include "display/hand.h"

#include <wx/uiaction.h>

namespace quarnel::hand {

void MoveTo(wxPoint place) { wxUIActionSimulator().MouseMove(place); }

// Windows that stay on top take clicks without becoming the active one.
bool IsOver(const wxWindow& widget, wxPoint) {
  wxWindow* window = wxGetTopLevelParent(const_cast<wxWindow*>(&widget));
  return window->HasFlag(wxSTAY_ON_TOP) || TypesInto(*window);
}

void Click(const wxWindow&, wxPoint, wxMouseButton button) {
  wxUIActionSimulator().MouseClick(button);
}

// The display server knows of no window but its own.
bool HasClicked() { return true; }

bool TypesInto(const wxWindow& window) {
  auto* top = dynamic_cast<const wxTopLevelWindow*>(&window);
  return top != nullptr && const_cast<wxTopLevelWindow*>(top)->IsActive();
}

}  // namespace quarnel::hand
