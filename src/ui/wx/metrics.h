#pragma once

#include "ui/wx/wx.h"

// Every length and font size of the windows. Lengths are pixels at 96 dots per inch; Scaled turns
// them into those of the screen a window is on.
namespace quarnel::metrics {

inline constexpr int kNoGap = 0;
inline constexpr int kTightGap = 4;  // between things that are read as one
inline constexpr int kGap = 8;       // between controls
inline constexpr int kWideGap = 16;  // between groups
inline constexpr int kCardPadding = 16;
inline constexpr int kPagePadding = 16;
inline constexpr int kDialogPadding = 20;
inline constexpr int kPopupPadding = 12;

inline constexpr int kCardRadius = 8;
inline constexpr int kCardBorder = 1;
inline constexpr int kPopupBorder = 1;

inline constexpr int kSmallIcon = 16;
inline constexpr int kButtonIcon = 18;
inline constexpr int kTabIcon = 22;
inline constexpr int kRowIcon = 24;
inline constexpr int kLargeIcon = 40;
inline constexpr int kHeroIcon = 64;

inline constexpr int kTabWidth = 148;
inline constexpr int kTabHeight = 40;
inline constexpr int kButtonWidth = 88;
inline constexpr int kButtonHeight = 32;
inline constexpr int kGaugeHeight = 8;
inline constexpr int kFieldWidth = 200;
inline constexpr int kCaptionWidth = 96;  // of a field, at its left
inline constexpr int kLongCaptionWidth = 136;
inline constexpr int kToolsWidth = 170;
inline constexpr int kSheetWidth = 560;
inline constexpr int kWizardWidth = 560;
inline constexpr int kWizardHeight = 210;
inline constexpr int kListHeight = 96;
inline constexpr int kTreeHeight = 120;
inline constexpr int kTextHeight = 72;
inline constexpr int kHtmlHeight = 240;
inline constexpr int kHelpHeight = 430;
inline constexpr int kScrollStep = 12;

// A line of text longer than this is tiring to read.
inline constexpr int kReadableWidth = 500;
inline constexpr int kMessageWidth = 380;
inline constexpr int kPopupTextWidth = 280;

inline constexpr int kMainWidth = 980;
inline constexpr int kMainHeight = 680;
// Fits a desktop of 800x600 with its task bar and the window's own frame.
inline constexpr int kMainSmallestWidth = 720;
inline constexpr int kMainSmallestHeight = 500;

// Of the text and column sizes to the usual one.
inline constexpr float kTitleFont = 1.45F;
inline constexpr float kHeadingFont = 1.12F;
inline constexpr float kFigureFont = 1.6F;
inline constexpr float kSmallFont = 0.92F;
inline constexpr int kNameColumn = 320;
inline constexpr int kTextColumn = 170;
inline constexpr int kLevelColumn = 64;
inline constexpr int kListColumn = 180;
inline constexpr int kTickColumn = 56;     // of check boxes
inline constexpr int kLeastColumn = 120;   // a path's beginning can be told
inline constexpr int kColumnPadding = 24;  // beside the text, with room for a check box

inline int Scaled(const wxWindow& window, int length) { return window.FromDIP(length); }
inline wxSize Scaled(const wxWindow& window, wxSize size) { return window.FromDIP(size); }

}  // namespace quarnel::metrics
