#include "ui/wx/native.h"

#include <wx/access.h>

#include "ui/wx/theme.h"

namespace quarnel::native {
namespace {

// Leaves everything but the name to the system.
class NamedAccessible : public wxAccessible {
 public:
  NamedAccessible(wxWindow* widget, wxString name) : wxAccessible(widget), name_(std::move(name)) {}
  wxAccStatus GetName(int part, wxString* name) override {
    if (part != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
    *name = name_;
    return wxACC_OK;
  }

 private:
  wxString name_;
};

}  // namespace

// A button with a colour is drawn by the toolkit, which leaves the frame out where none is wanted.
void MakeTab(wxToggleButton& tab) { ShowTab(tab, false); }

void ShowTab(wxToggleButton& tab, bool selected) {
  const wxColour colour = selected ? theme::SelectedTab() : theme::Page();
  if (tab.GetBackgroundColour() != colour) tab.SetBackgroundColour(colour);
}

void MakeRow(wxButton& row) { row.SetBackgroundColour(theme::Page()); }

// The system does.
void KeepPlace(wxTopLevelWindow&) {}

void SetAccessibleName(wxWindow& widget, const wxString& name) {
  widget.SetAccessible(new NamedAccessible(&widget, name));
}

}  // namespace quarnel::native
