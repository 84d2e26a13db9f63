#include "ui/wx/native.h"

#include <wx/access.h>

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

// The toolkit itself sees to both there.
void MakeTab(wxToggleButton&) {}
void MakeRow(wxButton&) {}

void SetAccessibleName(wxWindow& widget, const wxString& name) {
  widget.SetAccessible(new NamedAccessible(&widget, name));
}

}  // namespace quarnel::native
