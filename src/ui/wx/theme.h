#pragma once

#include "controls/simple_controls.h"
#include "ui/wx/layout.h"
#include "ui/wx/wx.h"

// Colours and fonts, all made from those of the system, so that a dark or high-contrast theme stays
// one.
namespace quarnel::theme {

bool IsDark();

wxColour Page();     // behind everything
wxColour Surface();  // of a card
wxColour Border();
wxColour Text();
wxColour MutedText();
wxColour Accent();
wxColour AccentText();
// The accent as a line on the page.
wxColour AccentLine();
wxColour Link();
wxColour SelectedTab();
// Of what has this colour at rest, while the mouse is over it.
wxColour Hovered(const wxColour& colour);
// Of a button that cannot be pressed.
wxColour DisabledText();
// Signals that keep their meaning in every theme, at a strength that is readable on Surface.
wxColour Good();
wxColour Attention();

// The colour of a label: black is the theme's own text, and red its signal.
wxColour Of(Colour colour);

wxFont FontOf(const wxFont& usual, Role role);

}  // namespace quarnel::theme
