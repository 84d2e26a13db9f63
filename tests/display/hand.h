#pragma once

#include "ui/wx/wx.h"

// A user's hand on mouse and keyboard: its events go the whole way through the system. Each system
// has a file of this name in its folder.
namespace quarnel::hand {

// Moves the mouse to a place on the screen, in pixels.
void MoveTo(wxPoint place);
// Whether the mouse has arrived there, and what is pressed now gets to the widget.
bool IsOver(const wxWindow& widget, wxPoint place);
// Presses and releases a button of the mouse there.
void Click(const wxWindow& widget, wxPoint place, wxMouseButton button);
// Whether the last click has got to its widget.
bool HasClicked();

// Whether what is typed now gets to the window.
bool TypesInto(const wxWindow& window);

}  // namespace quarnel::hand
