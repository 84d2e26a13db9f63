#pragma once

#include <string_view>
#include <vector>

#include "ui/wx/wx.h"

// The program's own icons, drawn from the SVG files that the build put into it. In them
// "currentColor" stands for the text's colour, "#00f" for the theme's accent, and "#0f0" and "#f00"
// for its signals.
namespace quarnel::icons {

// The icon of this name (the file's, without its ending) with an edge of `size` pixels at 96 dots
// per inch, sharp at any scale; an empty one for an unknown name.
wxBitmapBundle Get(std::string_view name, int size);

// The same in one given colour for currentColor.
wxBitmapBundle Get(std::string_view name, int size, const wxColour& colour);

// The name of the icon for a file, by the ending of its path.
std::string_view NameOfType(std::string_view path);

// For windows, task bar and tray.
wxIconBundle ProgramIcons();

std::vector<std::string_view> Names();

}  // namespace quarnel::icons
