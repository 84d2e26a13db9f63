#pragma once

#include "ui/wx/wx.h"

// What the toolkit leaves to the system below it; each system has a file of this name in its
// folder.
namespace quarnel::native {

// Makes a toggle button one of a tab strip: without a frame, picture and text at the left.
void MakeTab(wxToggleButton& tab);

// Gives a tab its look of a selected or resting one, beside its state as a button.
void ShowTab(wxToggleButton& tab, bool selected);

// Makes a button flat, its text at the left.
void MakeRow(wxButton& row);

// Lets a window come up where the program has put it, also under a window manager that places none.
void KeepPlace(wxTopLevelWindow& window);

// What a screen reader says for a widget that shows no caption of its own.
void SetAccessibleName(wxWindow& widget, const wxString& name);

}  // namespace quarnel::native
