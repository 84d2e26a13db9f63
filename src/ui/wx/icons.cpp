#include "ui/wx/icons.h"

#include <string>

#include "base/text.h"
#include "ui/wx/icon_files.h"
#include "ui/wx/theme.h"

namespace quarnel::icons {
namespace {

std::string Hex(const wxColour& colour) {
  return colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_string();
}

}  // namespace

wxBitmapBundle Get(std::string_view name, int size, const wxColour& colour) {
  for (const IconFile& file : IconFiles()) {
    if (file.name != name) continue;
    std::string svg = Replace(file.svg, "currentColor", Hex(colour));
    svg = Replace(svg, "#00f", Hex(theme::AccentLine()));
    svg = Replace(svg, "#0f0", Hex(theme::Good()));
    svg = Replace(svg, "#f00", Hex(theme::Attention()));
    return wxBitmapBundle::FromSVG(svg.c_str(), {size, size});
  }
  return {};
}

wxBitmapBundle Get(std::string_view name, int size) { return Get(name, size, theme::Text()); }

std::string_view NameOfType(std::string_view path) {
  return EndsWithText(path, ".exe") ? "trace-program" : "trace-file";
}

wxIconBundle ProgramIcons() {
  wxIconBundle icons;
  for (const int size : {16, 24, 32, 48, 64, 128}) {
    icons.AddIcon(Get("quarnel", size).GetIcon({size, size}));
  }
  return icons;
}

std::vector<std::string_view> Names() {
  std::vector<std::string_view> names;
  for (const IconFile& file : IconFiles()) names.push_back(file.name);
  return names;
}

}  // namespace quarnel::icons
