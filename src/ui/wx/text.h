#pragma once

#include <string>
#include <string_view>

#include "controls/mnemonic.h"
#include "ui/wx/wx.h"

// Text between the program, which keeps bytes, and the toolkit.
namespace quarnel {

// A text of the program's own; U+FFFD stands for each byte that is no UTF-8. Line ends are those of
// the toolkit.
wxString ToWx(std::string_view text);

// A caption with its letter marked in the way of the toolkit.
wxString ToWx(const CaptionText& caption);

// A text that may come from strangers, in one line: nothing in it can turn the direction of writing
// or break the line.
wxString ToWxLine(std::string_view text);

// The text broken into lines of at most `width` of the widget's pixels.
wxString Wrapped(wxWindow& widget, const wxString& text, int width);

// The text with words that are wider than that, as addresses may be, broken or cut in their middle,
// so that a wrapped text is no wider.
wxString WithShortWords(const wxWindow& widget, const wxString& text, int width);

// What the user typed.
std::string FromWx(const wxString& text);

}  // namespace quarnel
