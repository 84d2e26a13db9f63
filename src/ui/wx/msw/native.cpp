#include "ui/wx/native.h"

#include <wx/access.h>
#include <wx/dcclient.h>
#include <wx/msw/wrapwin.h>
// It needs the header above.
#include <commctrl.h>
#include <shellapi.h>

#include <utility>

#include "ui/wx/metrics.h"
#include "ui/wx/theme.h"

namespace quarnel::native {
namespace {

// Leaves everything but the name, and the role of a picture, to the system or the toolkit.
template <typename Accessible, typename Widget>
class Named : public Accessible {
 public:
  Named(Widget* widget, const wxString& name) : Accessible(widget), name_(name) {}
  wxAccStatus GetName(int part, wxString* name) override {
    if (part != wxACC_SELF) return Accessible::GetName(part, name);
    *name = name_;
    return wxACC_OK;
  }
  wxAccStatus GetRole(int part, wxAccRole* role) override {
    if (part != wxACC_SELF || !picture_) return Accessible::GetRole(part, role);
    *role = wxROLE_SYSTEM_GRAPHIC;
    return wxACC_OK;
  }
  void BecomePicture() { picture_ = true; }

 private:
  wxString name_;
  bool picture_ = false;
};

using NamedAccessible = Named<wxAccessible, wxWindow>;
// The toolkit draws rows itself, and tells of them.
using NamedRows = Named<wxDataViewCtrlAccessible, wxDataViewCtrl>;

// The toolkit draws a button without a frame in its colour alone, as long as it has one of its own.
// What answers to mouse and keyboard is added here.
template <typename Button>
class Flat : public Button {
 public:
  Flat(wxWindow* parent, const wxString& caption, long style)
      : Button(parent, wxID_ANY, caption, wxDefaultPosition, wxDefaultSize, style | wxBORDER_NONE) {
    this->SetBackgroundColour(theme::Page());
    for (const auto& crossing : {wxEVT_ENTER_WINDOW, wxEVT_LEAVE_WINDOW}) {
      this->Bind(crossing, [this](wxMouseEvent& event) {
        event.Skip();
        this->Refresh();
      });
    }
  }

  bool MSWOnDraw(WXDRAWITEMSTRUCT* item) override {
    const wxColour rest = this->m_backgroundColour;
    const bool hovered = this->IsThisEnabled() && this->IsMouseInWindow();
    if (hovered) this->m_backgroundColour = theme::Hovered(rest);
    const bool drawn = Button::MSWOnDraw(item);
    this->m_backgroundColour = rest;
    const auto& drawing = *reinterpret_cast<const DRAWITEMSTRUCT*>(item);
    const UINT focus = drawing.itemState & (ODS_FOCUS | ODS_NOFOCUSRECT);
    if (focus == ODS_FOCUS) {
      RECT frame = drawing.rcItem;
      InflateRect(&frame, -kFocusInset, -kFocusInset);
      DrawFocusRect(drawing.hDC, &frame);
    }
    return drawn;
  }

 private:
  static constexpr int kFocusInset = 2;
};

template <typename Button>
Button* NewFlat(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  auto* button = new Flat<Button>(parent, caption, wxBU_LEFT);
  if (!picture.IsOk()) return button;
  button->SetBitmap(picture);
  button->SetBitmapMargins(metrics::Scaled(*button, wxSize(metrics::kGap, 0)));
  return button;
}

// The toolkit's own has one line.
class Option : public wxRadioButton {
 public:
  explicit Option(wxWindow* parent) { Create(parent, wxID_ANY, ""); }

  WXDWORD MSWGetStyle(long style, WXDWORD* extended) const override {
    return wxRadioButton::MSWGetStyle(style, extended) | BS_MULTILINE;
  }

 protected:
  wxSize DoGetBestSize() const override {
    const wxString caption = GetLabelText();
    const wxSize lines = wxClientDC(const_cast<Option*>(this)).GetMultiLineTextExtent(caption);
    wxSize size = wxRadioButton::DoGetBestSize();
    size.x += lines.x - GetTextExtent(caption).x;
    size.IncTo({-1, lines.y});
    return size;
  }
};

}  // namespace

wxButton* NewFlatButton(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  return NewFlat<wxButton>(parent, caption, picture);
}

wxToggleButton* NewTab(wxWindow* parent, const wxString& caption, const wxBitmapBundle& picture) {
  return NewFlat<wxToggleButton>(parent, caption, picture);
}

void SetFlatCaption(wxAnyButton& button, const wxString& caption) { button.SetLabel(caption); }

void ShowTab(wxToggleButton& tab, bool selected) {
  const wxColour colour = selected ? theme::SelectedTab() : theme::Page();
  if (tab.GetBackgroundColour() != colour) tab.SetBackgroundColour(colour);
}

wxStaticText* NewText(wxWindow* parent, const wxString& text, long style) {
  return new wxStaticText(parent, wxID_ANY, text, wxDefaultPosition, wxDefaultSize, style);
}

wxButton* NewPrimaryButton(wxWindow* parent, const wxString& caption) {
  return new Flat<wxButton>(parent, caption, 0);
}

wxBitmapBundle PictureOfType(const wxString& ending) {
  constexpr UINT kByNameAlone = SHGFI_USEFILEATTRIBUTES | SHGFI_ICON;
  wxIconBundle pictures;
  for (const UINT size : {UINT{SHGFI_SMALLICON}, UINT{SHGFI_LARGEICON}}) {
    SHFILEINFOW found = {};
    if (SHGetFileInfoW(("file" + ending).wc_str(), FILE_ATTRIBUTE_NORMAL, &found, sizeof found,
                       kByNameAlone | size) == 0) {
      continue;
    }
    wxIcon icon;
    // Which takes it over.
    if (icon.CreateFromHICON(found.hIcon)) pictures.AddIcon(icon);
  }
  return wxBitmapBundle::FromIconBundle(pictures);
}

wxRadioButton* NewOption(wxWindow* parent) { return new Option(parent); }

// The system cuts what has no room.
void LetCaptionShrink(wxControl&) {}

// The system does.
void KeepPlace(wxTopLevelWindow&) {}

// Nor does it disable what comes later.
void StayInReach(wxTopLevelWindow&) {}

bool HasComeUp(const wxWindow&) { return true; }

void SetAccessibleName(wxWindow& widget, const wxString& name) {
  if (auto* rows = dynamic_cast<wxDataViewCtrl*>(&widget)) {
    rows->SetAccessible(new NamedRows(rows, name));
  } else {
    widget.SetAccessible(new NamedAccessible(&widget, name));
  }
}

void SpeakAsPicture(wxWindow& widget) {
  if (auto* named = dynamic_cast<NamedAccessible*>(widget.GetAccessible())) named->BecomePicture();
}

void InitControls() {
  const INITCOMMONCONTROLSEX classes{sizeof(INITCOMMONCONTROLSEX), ICC_USEREX_CLASSES};
  InitCommonControlsEx(&classes);
}

std::shared_ptr<void> WatchEvents(EventWait& events, std::function<void()> run) {
  events.LeaveWaiting(std::move(run));
  return {&events, [](EventWait* left) { left->LeaveWaiting({}); }};
}

}  // namespace quarnel::native
