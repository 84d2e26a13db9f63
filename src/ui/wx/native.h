#pragma once

#include <functional>
#include <memory>

#include "base/event_wait.h"
#include "ui/wx/wx.h"

// What the toolkit leaves to the system below it; each system has a file of this name in its
// folder.
namespace quarnel::native {

// Makes the system's own controls known, before the first window.
void InitControls();

// A button without a frame, its picture and text at the left, such as a row of a menu.
wxButton* NewFlatButton(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture);

// The same as one of a tab strip, which stays down while it is selected.
wxToggleButton* NewTab(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture);

// Changes the caption of one of these.
void SetFlatCaption(wxAnyButton& button, const wxString& caption);

// Gives a tab its look of a selected or resting one, beside its state as a button.
void ShowTab(wxToggleButton& tab, bool selected);

// A text that stands for itself, and labels nothing that follows it.
wxStaticText* NewText(wxWindow* parent, const wxString& text, long style);

// A button that is seen before all others, by the colours that it is given.
wxButton* NewPrimaryButton(wxWindow* parent, const wxString& caption);

// The system's picture, in several sizes, for files whose names end so (".txt", in lower case);
// none where it has no such picture.
wxBitmapBundle PictureOfType(const wxString& ending);

// A radio button whose caption may have several lines.
wxRadioButton* NewOption(wxWindow* parent);

// Lets the box or circle stand in a place too narrow for its caption, until that is broken anew.
void LetCaptionShrink(wxControl& mark);

// Lets a window come up where the program has put it, also under a window manager that places none.
void KeepPlace(wxTopLevelWindow& window);

// Lets a window be used although a modal one was open before it.
void StayInReach(wxTopLevelWindow& window);

// Whether a window that was shown has come onto the screen, and is known to be where it is.
bool HasComeUp(const wxWindow& window);

// What a screen reader says for a widget that shows no caption of its own.
void SetAccessibleName(wxWindow& widget, const wxString& name);

// Lets a screen reader take the widget for a picture.
void SpeakAsPicture(wxWindow& widget);

// Has the toolkit's message loops, also one inside a handler of such an event, call `run` whenever
// one of the sources is ready, as long as what is returned lives.
std::shared_ptr<void> WatchEvents(EventWait& events, std::function<void()> run);

}  // namespace quarnel::native
