#pragma once

#include "controls/look.h"
#include "ui/wx/wx.h"

// What lists and trees of rows have in common.
namespace quarnel::data_view {

// The column of the check boxes in the models, behind any of texts.
inline constexpr unsigned kTickColumn = 99;

// Puts the check boxes into a column of their own, the first: a reader of the screen finds them
// there, but not before a text in its column.
void AppendTicks(wxDataViewCtrl& widget);

// Appends a column of texts. Of a long path the end tells more than what follows its beginning, so
// that it is cut in its middle.
void AppendTexts(wxDataViewCtrl& widget, wxDataViewRenderer* renderer, const wxString& title,
                 unsigned column, int width);

// The width that columns of texts share.
int RoomForTexts(const wxDataViewCtrl& widget, bool ticks);

// The column of texts at this place.
wxDataViewColumn& TextColumn(const wxDataViewCtrl& widget, bool ticks, int place);

// Lets a text stand out as its row does; false for one that does not.
bool Show(const Look& look, wxDataViewItemAttr& attributes);

// Whether the keyboard is on the rows, or on a part of the widget.
bool HasKeyboard(const wxDataViewCtrl& widget);

// Does `tick` when the user asks by the keyboard to change the tick of the chosen row.
void OnTickKey(wxDataViewCtrl& widget, std::function<void()> tick);

// Under the text of the chosen row, within the widget; the widget's middle where none is in view.
wxPoint MenuPlace(const wxDataViewCtrl& widget, bool ticks);

}  // namespace quarnel::data_view
