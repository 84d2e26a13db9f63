#pragma once

#include "ui/wx/wx.h"

namespace quarnel {

// A row or column with the same gap between all things that show; what is hidden leaves none.
class GapBox : public wxBoxSizer {
 public:
  GapBox(int orientation, int gap) : wxBoxSizer(orientation), gap_(gap) {}
  void Put(wxWindow* window, int share, int flags);
  void Put(wxSizer* box, int share, int flags);
  // Takes the room that is left.
  void PutSpring() { AddStretchSpacer(); }
  wxSize CalcMin() override;

 private:
  void AddGap();
  int gap_;
};

// A part of a window that holds others. The keyboard goes to what it holds, and passes it over
// where that takes none.
class GroupPanel : public wxPanel {
 public:
  explicit GroupPanel(wxWindow* parent, long style = wxTAB_TRAVERSAL)
      : wxPanel(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, style) {
    m_container.DisableSelfFocus();
  }
};

// A surface with round corners, on which things stand that belong together.
class CardPanel : public GroupPanel {
 public:
  explicit CardPanel(wxWindow* parent);

 private:
  void Paint();
};

// A window that the keyboard passes over.
class StillWindow : public wxWindow {
 public:
  explicit StillWindow(wxWindow* parent) : wxWindow(parent, wxID_ANY) { SetCanFocus(false); }
  bool AcceptsFocus() const override { return false; }
  bool AcceptsFocusFromKeyboard() const override { return false; }
};

}  // namespace quarnel
