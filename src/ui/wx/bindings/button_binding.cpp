// What is pressed: buttons, pictures that stand for one, the tab strip, check boxes and options.

#include "controls/simple_controls.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

class ButtonBinding : public Binding {
 public:
  ButtonBinding(wxWindow* parent, Control& control, const Layout& layout, const Front& front)
      : Binding(control, front), layout_(layout) {
    const int size = layout.iconSize > 0 ? layout.iconSize : metrics::kButtonIcon;
    if (layout.role == Role::kQuiet) {
      button_ = native::NewFlatButton(parent, WithKey(Caption()), icons::Get(layout.icon, size));
    } else if (IsPrimary()) {
      button_ = native::NewPrimaryButton(parent, WithKey(Caption()));
      button_->SetFont(button_->GetFont().Bold());
      ShowPicture(icons::Get(layout.icon, size, theme::AccentText()));
      if (!layout.icon.empty()) {
        button_->SetBitmapDisabled(icons::Get(layout.icon, size, theme::DisabledText()));
      }
    } else {
      button_ = new wxButton(parent, wxID_ANY, WithKey(Caption()));
      ShowPicture(icons::Get(layout.icon, size));
    }
    Fit();
    button_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
      Act([this] {
        if (const Handler pressed = this->control().MouseDown) pressed();
        this->control().ClickByUser();
      });
    });
    Attach(button_);
  }

  std::string_view KeyCaption() const override { return Caption(); }
  std::string Shown() const override { return FromWx(button_->GetLabel()); }

 protected:
  bool Update() override {
    if (IsPrimary()) {
      const bool enabled = control().Enabled();
      button_->SetBackgroundColour(enabled ? theme::Accent() : theme::Border());
      button_->SetForegroundColour(enabled ? theme::AccentText() : theme::DisabledText());
    }
    const wxString caption = WithKey(Caption());
    if (button_->GetLabel() == caption) return false;
    if (layout_.role == Role::kQuiet) {
      native::SetFlatCaption(*button_, caption);
    } else {
      button_->SetLabel(caption);
    }
    Fit();
    return true;
  }

 private:
  bool IsPrimary() const { return layout_.role == Role::kPrimary; }
  void ShowPicture(const wxBitmapBundle& picture) {
    if (!picture.IsOk()) return;
    button_->SetBitmap(picture);
    button_->SetBitmapMargins(metrics::Scaled(*button_, wxSize(metrics::kGap, 0)));
  }
  // What a picture is called is not drawn on it.
  const std::string& Caption() const {
    const auto* button = dynamic_cast<const Button*>(&control());
    return button != nullptr && layout_.text.empty() ? button->Caption() : layout_.text;
  }
  void Fit() {
    const int width = layout_.role == Role::kQuiet ? 0 : metrics::kButtonWidth;
    button_->SetMinSize(wxDefaultSize);
    button_->InvalidateBestSize();
    wxSize size = button_->GetBestSize();
    size.IncTo(metrics::Scaled(*button_, wxSize(width, metrics::kButtonHeight)));
    button_->SetMinSize(size);
  }

  Layout layout_;
  wxButton* button_;
};

// A tab of the strip: the control shows while the tab is at rest, its partner with a "C" before the
// index while it is selected.
class TabBinding : public Binding {
 public:
  TabBinding(wxWindow* parent, Control& control, const Layout& layout, const Front& front)
      : Binding(control, front), caption_(layout.text) {
    tab_ = native::NewTab(parent, WithKey(caption_), icons::Get(layout.icon, metrics::kTabIcon));
    tab_->SetMinSize(metrics::Scaled(*tab_, wxSize(metrics::kTabWidth, metrics::kTabHeight)));
    tab_->Bind(wxEVT_TOGGLEBUTTON, [this](wxCommandEvent&) {
      // Also the selected one: a click on it takes its page back to the beginning.
      Act([this] { this->control().ClickByUser(); });
    });
    Attach(tab_);
  }
  std::string_view KeyCaption() const override { return caption_; }
  std::string Shown() const override { return {}; }

 protected:
  bool Update() override {
    const wxString caption = WithKey(caption_);
    if (tab_->GetLabel() != caption) native::SetFlatCaption(*tab_, caption);
    const bool selected = !control().Visible();
    if (tab_->GetValue() != selected) tab_->SetValue(selected);
    native::ShowTab(*tab_, selected);
    return false;
  }
  bool ShownInLayout() const override { return true; }

 private:
  std::string caption_;
  wxToggleButton* tab_;
};

// A row of the menu that slides in: no menu of the system, since it comes and goes by its own
// rules.
class MenuRowBinding : public Binding {
 public:
  MenuRowBinding(wxWindow* parent, MenuItem& item, const Layout& layout, const Front& front)
      : Binding(item, front), item_(item) {
    row_ = native::NewFlatButton(parent, ToWx(item.Caption()),
                                 icons::Get(layout.icon, metrics::kSmallIcon));
    row_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Act([this] { item_.ClickByUser(); }); });
    row_->Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent& event) {
      event.Skip();
      Act([this] { item_.SetHighlighted(false); });
    });
    Attach(row_);
  }
  std::string Shown() const override { return FromWx(row_->GetLabel()); }

 protected:
  bool Update() override {
    // A menu that slides in passes under a mouse at rest, whose moves then tell of rows gone by.
    const bool lit = item_.Highlighted() && row_->GetScreenRect().Contains(wxGetMousePosition());
    row_->SetBackgroundColour(lit ? theme::SelectedTab()
                                  : row_->GetParent()->GetBackgroundColour());
    const wxString caption = ToWx(item_.Caption());
    if (row_->GetLabel() == caption) return false;
    native::SetFlatCaption(*row_, caption);
    return true;
  }

 private:
  MenuItem& item_;
  wxButton* row_;
};

// A box or a circle to mark, with a caption that may take several lines. A wrapped one takes as
// many as its place needs, others are broken where lines would be tiring to read.
class MarkBinding : public Binding {
 public:
  MarkBinding(Captioned& control, const Layout& layout, const Front& front)
      : Binding(control, front), captioned_(control), wrapped_(layout.role == Role::kWrapped) {}
  std::string_view KeyCaption() const override { return captioned_.Caption(); }

 protected:
  void AttachMark(wxControl* mark) {
    mark_ = mark;
    markWidth_ = mark->GetBestSize().x;
    mark->SetLabel(" ");
    lineHeight_ = mark->GetBestSize().y;
    if (wrapped_) {
      native::LetCaptionShrink(*mark);
      OnResize(*mark, [this] { ShowCaption(); });
    }
    Attach(mark);
  }
  bool ShowCaption() {
    const int reading = metrics::Scaled(*mark_, metrics::kReadableWidth);
    const int room = mark_->GetSize().x - markWidth_ - metrics::Scaled(*mark_, metrics::kGap);
    const bool placed = wrapped_ && room > markWidth_;
    const wxString caption =
        Wrapped(*mark_, WithKey(captioned_.Caption()), placed ? room : reading);
    if (mark_->GetLabel() == caption) return false;
    mark_->SetLabel(caption);
    mark_->InvalidateBestSize();
    if (!wrapped_) return true;
    // The best size is never less than the one the widget has.
    const int more = caption.Freq('\n') * mark_->GetCharHeight();
    TakeRoom(*mark_, {2 * markWidth_, lineHeight_ + more});
    return false;
  }

 private:
  Captioned& captioned_;
  bool wrapped_;
  wxControl* mark_ = nullptr;
  int markWidth_ = 0;  // without a caption
  int lineHeight_ = 0;
};

class CheckBinding : public MarkBinding {
 public:
  CheckBinding(wxWindow* parent, CheckBox& box, const Layout& layout, const Front& front)
      : MarkBinding(box, layout, front), box_(box) {
    check_ = new wxCheckBox(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxCHK_3STATE);
    check_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) { Act([this] { box_.ClickByUser(); }); });
    AttachMark(check_);
  }
  std::string Shown() const override {
    return std::to_string(static_cast<int>(check_->Get3StateValue()));
  }

 protected:
  bool Update() override {
    const auto state = static_cast<wxCheckBoxState>(box_.Value());
    if (check_->Get3StateValue() != state) check_->Set3StateValue(state);
    return ShowCaption();
  }

 private:
  CheckBox& box_;
  wxCheckBox* check_;
};

class OptionBinding : public MarkBinding {
 public:
  OptionBinding(wxWindow* parent, OptionButton& option, const Layout& layout, const Front& front)
      : MarkBinding(option, layout, front), option_(option) {
    // Of a group of radio buttons one is always chosen, while of options none may be. A button of
    // its own that nobody sees takes that place.
    none_ = new wxRadioButton(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxRB_GROUP);
    none_->Hide();
    radio_ = native::NewOption(parent);
    radio_->Bind(wxEVT_RADIOBUTTON,
                 [this](wxCommandEvent&) { Act([this] { option_.ClickByUser(); }); });
    AttachMark(radio_);
  }
  std::string Shown() const override { return FlagText(radio_->GetValue()); }

 protected:
  bool Update() override {
    if (radio_->GetValue() != option_.Value()) (option_.Value() ? radio_ : none_)->SetValue(true);
    return ShowCaption();
  }

 private:
  OptionButton& option_;
  wxRadioButton* none_;
  wxRadioButton* radio_;
};

}  // namespace

std::unique_ptr<Binding> BindButton(wxWindow* parent, Control& control, const Layout& layout,
                                    const Front& front) {
  if (auto* box = dynamic_cast<CheckBox*>(&control)) {
    return std::make_unique<CheckBinding>(parent, *box, layout, front);
  }
  if (auto* option = dynamic_cast<OptionButton*>(&control)) {
    return std::make_unique<OptionBinding>(parent, *option, layout, front);
  }
  if (auto* item = dynamic_cast<MenuItem*>(&control)) {
    return std::make_unique<MenuRowBinding>(parent, *item, layout, front);
  }
  if (layout.role == Role::kTab) {
    return std::make_unique<TabBinding>(parent, control, layout, front);
  }
  if (dynamic_cast<Button*>(&control) != nullptr || dynamic_cast<Image*>(&control) != nullptr) {
    return std::make_unique<ButtonBinding>(parent, control, layout, front);
  }
  return nullptr;
}

}  // namespace quarnel
