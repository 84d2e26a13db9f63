#include "ui/wx/theme.h"

#include "ui/wx/metrics.h"

namespace quarnel::theme {
namespace {

wxColour System(wxSystemColour colour) { return wxSystemSettings::GetColour(colour); }

// `share` percent of `colour` in `base`.
wxColour Blend(const wxColour& base, const wxColour& colour, int share) {
  const auto mixed = [share](unsigned char from, unsigned char to) {
    return static_cast<unsigned char>((from * (100 - share) + to * share) / 100);
  };
  return {mixed(base.Red(), colour.Red()), mixed(base.Green(), colour.Green()),
          mixed(base.Blue(), colour.Blue())};
}

bool DarkColour(const wxColour& colour) { return colour.GetLuminance() < 0.5; }

// A signal colour for light surfaces, made lighter on dark ones.
wxColour Signal(const wxColour& colour) {
  constexpr int kLighter = 45;
  return IsDark() ? Blend(colour, *wxWHITE, kLighter) : colour;
}

}  // namespace

bool IsDark() { return DarkColour(System(wxSYS_COLOUR_WINDOW)); }

wxColour Page() { return Blend(System(wxSYS_COLOUR_BTNFACE), Text(), IsDark() ? 0 : 2); }
wxColour Surface() {
  constexpr int kLifted = 5;
  return IsDark() ? Blend(System(wxSYS_COLOUR_BTNFACE), Text(), kLifted)
                  : System(wxSYS_COLOUR_WINDOW);
}
wxColour Border() { return Blend(Surface(), Text(), 14); }
wxColour Text() { return System(wxSYS_COLOUR_WINDOWTEXT); }
wxColour MutedText() { return Blend(Surface(), Text(), 68); }
wxColour Accent() { return System(wxSYS_COLOUR_HIGHLIGHT); }
wxColour AccentText() { return System(wxSYS_COLOUR_HIGHLIGHTTEXT); }
wxColour AccentLine() { return Signal(Accent()); }
wxColour Link() { return System(wxSYS_COLOUR_HOTLIGHT); }
wxColour SelectedTab() { return Blend(Page(), Accent(), 22); }
wxColour Hovered(const wxColour& colour) { return Blend(colour, Text(), 8); }
wxColour DisabledText() { return System(wxSYS_COLOUR_GRAYTEXT); }
wxColour Good() { return Signal(wxColour(0x1A, 0x7F, 0x37)); }
wxColour Attention() { return Signal(wxColour(0xC4, 0x2B, 0x1C)); }

wxColour Of(Colour colour) {
  switch (colour) {
    case Colour::kRed:
      return Attention();
    case Colour::kGreen:
    case Colour::kDarkGreen:
    case Colour::kHighlight:
      return Good();
    case Colour::kBlack:
      break;
  }
  return Text();
}

wxFont FontOf(const wxFont& usual, Role role) {
  switch (role) {
    case Role::kTitle:
      return usual.Scaled(metrics::kTitleFont).Bold();
    case Role::kHeading:
    case Role::kStatus:
      return usual.Scaled(metrics::kHeadingFont).Bold();
    case Role::kFigure:
      return usual.Scaled(metrics::kFigureFont).Bold();
    case Role::kStrong:
      return usual.Bold();
    case Role::kMuted:
      return usual.Scaled(metrics::kSmallFont);
    default:
      return usual;
  }
}

}  // namespace quarnel::theme
