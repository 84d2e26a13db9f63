#include "ui/wx/bindings/binding.h"

#include <array>
#include <cctype>

#include "controls/form.h"
#include "controls/tool_tip.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

// From the outermost box inwards: each must have its size before what it holds is laid out.
void LayOutAround(wxWindow& widget) {
  wxWindow* parent = widget.GetParent();
  if (parent == nullptr || widget.IsTopLevel()) return;
  LayOutAround(*parent);
  parent->Layout();
}

}  // namespace

bool Binding::Sync() {
  if (known_ && revision_ == control_.Revision()) return false;
  known_ = true;
  revision_ = control_.Revision();
  bool moved = false;
  if (widget_->IsShown() != ShownInLayout()) {
    widget_->Show(ShownInLayout());
    moved = true;
  }
  if (widget_->IsThisEnabled() != control_.Enabled()) widget_->Enable(control_.Enabled());
  ShowToolTip();
  return Update() || moved;
}

void Binding::ShowToolTip() {
  wxString text = ToWx(control_.ToolTip());
  if (const CToolTip* balloon = control_.Balloon()) {
    text = ToWx(balloon->Look().title) + "\n\n" + ToWx(balloon->TipText());
  }
  if (text == toolTip_) return;
  toolTip_ = text;
  widget_->SetToolTip(text);
  for (wxWindow* part : widget_->GetChildren()) part->SetToolTip(text);
}

void Binding::OnResize(wxWindow& widget, const Handler& fit) {
  widget.Bind(wxEVT_SIZE, [this, fit](wxSizeEvent& event) {
    event.Skip();
    // The toolkit is giving out places, and forgets what asks for a new one meanwhile: it would
    // never get any. So this waits, in the queue of the widget that ends with this binding. While
    // that is still being made there is nothing to fit.
    if (widget_ != nullptr) widget_->CallAfter(fit);
  });
}

void Binding::TakeRoom(wxWindow& widget, const wxSize& room) {
  if (widget.GetMinSize() == room) return;
  widget.SetMinSize(room);
  widget.CallAfter([&widget] { LayOutAround(widget); });
}

void Binding::WatchMouse(wxWindow& widget) {
  if (!control_.MouseMove) return;
  widget.Bind(wxEVT_ENTER_WINDOW, [this](wxMouseEvent& event) {
    event.Skip();
    Act([this] {
      if (const Handler move = control_.MouseMove) move();
    });
  });
}

void Binding::Attach(wxWindow* widget, const std::string& accessibleName) {
  widget_ = widget;
  WatchMouse(*widget_);
  widget_->SetName(ToWx(control_.Name()));
  if (accessibleName.empty()) return;
  accessibleName_ = FromWx(wxControl::RemoveMnemonics(ToWx(accessibleName)));
  native::SetAccessibleName(*widget_, ToWx(accessibleName_));
}

void Binding::SetKey(size_t key) {
  if (key_ == key) return;
  key_ = key;
  Forget();
  Sync();
}

wxString Binding::WithKey(std::string_view caption) const {
  return ToWx(CaptionText{ReadCaption(caption).text, key_});
}

void Binding::SpeakState(const std::string& state) {
  const std::string name = FromWx(wxControl::RemoveMnemonics(widget_->GetLabel())) + ", " + state;
  if (accessibleName_ == name) return;
  accessibleName_ = name;
  native::SetAccessibleName(*widget_, ToWx(name));
}

std::string Binding::AccessibleName() const {
  return accessibleName_.empty() ? FromWx(widget_->GetLabel()) : accessibleName_;
}

void Binding::Act(const Handler& action) {
  known_ = false;
  front_.run(action);
}

std::unique_ptr<Binding> Bind(wxWindow* parent, Control& control, const Layout& layout,
                              const Front& front) {
  for (const auto bind : {BindText, BindButton, BindField, BindDate, BindList, BindTree}) {
    if (auto binding = bind(parent, control, layout, front)) return binding;
  }
  return nullptr;
}

std::string NameInWords(const Control& control, const Layout& layout) {
  if (!layout.text.empty()) return layout.text;
  const std::string& name = control.Name();
  constexpr size_t kPrefix = 3;
  std::string words;
  for (size_t i = name.size() > kPrefix ? kPrefix : 0; i < name.size(); ++i) {
    const auto letter = static_cast<unsigned char>(name[i]);
    if (!words.empty() && std::isupper(letter) != 0 && std::isupper(words.back()) == 0) {
      words += ' ';
    }
    words += static_cast<char>(letter);
  }
  return words;
}

void BindContextMenu(const Binding& binding, const Form& form, const Layout& layout,
                     const Front& front) {
  if (layout.menu.empty()) return;
  struct Entry {
    Control* control;
    wxString text;
  };
  std::vector<Entry> entries;
  for (const auto& [name, text] : layout.menu) {
    if (Control* control = form.Find(name)) entries.push_back({control, ToWx(text)});
  }
  const auto open = [&binding, &front, entries](wxEvent& event) {
    wxMenu menu;
    for (const Entry& entry : entries) {
      wxMenuItem* item = menu.Append(wxID_ANY, entry.text);
      item->Enable(entry.control->Enabled() && entry.control->Visible());
      menu.Bind(
          wxEVT_MENU,
          [&front, control = entry.control](wxCommandEvent&) {
            front.run([control] { control->ClickByUser(); });
          },
          item->GetId());
    }
    const auto* asked = dynamic_cast<wxContextMenuEvent*>(&event);
    const bool byKey = asked != nullptr && asked->GetPosition() == wxDefaultPosition;
    binding.Widget()->PopupMenu(&menu, byKey ? binding.MenuPlace() : wxDefaultPosition);
  };
  wxWindow& widget = *binding.Widget();
  widget.Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, open);
  widget.Bind(wxEVT_CONTEXT_MENU, open);
}

}  // namespace quarnel
