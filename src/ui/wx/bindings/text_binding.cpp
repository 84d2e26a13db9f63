// Labels in all their looks, and pictures.

#include <algorithm>

#include "controls/simple_controls.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/boxes.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

class LabelBinding : public Binding {
 public:
  LabelBinding(wxWindow* parent, Label& label, const Layout& layout, const Front& front)
      : Binding(label, front), label_(label), role_(layout.role), ifEmpty_(layout.text) {
    long style = wxST_NO_AUTORESIZE;
    if (IsCut()) style |= wxST_ELLIPSIZE_MIDDLE;
    // A text takes no part in what the mouse does; where that matters, it stands in a window that
    // does.
    wxWindow* around = parent;
    const bool mouse = label.Click || label.MouseMove || label.Balloon() != nullptr;
    if (mouse) {
      around = new StillWindow(parent);
      around->SetBackgroundColour(parent->GetBackgroundColour());
    }
    text_ = native::NewText(around, "", style);
    text_->SetFont(theme::FontOf(parent->GetFont(), role_));
    if (IsCut() || role_ == Role::kTitle) text_->SetMinSize({1, -1});
    if (role_ == Role::kTitle) OnResize(*text_, [this] { WrapTitle(); });
    if (layout.width > 0) text_->SetMinSize({metrics::Scaled(*text_, layout.width), -1});
    wrapWidth_ = metrics::Scaled(*text_, layout.width > 0 ? layout.width : metrics::kReadableWidth);
    Attach(mouse ? around : text_);
    if (!mouse) return;
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(text_, 1, wxEXPAND);
    around->SetSizer(whole);
    WatchMouse(*text_);
    if (!label.Click) return;
    for (wxWindow* part : {around, static_cast<wxWindow*>(text_)}) {
      part->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent&) { Act([this] { label_.ClickByUser(); }); });
    }
  }

  std::string Shown() const override { return shown_; }

 protected:
  bool Update() override {
    const wxColour colour = label_.ForeColour() == Colour::kBlack && role_ == Role::kMuted
                                ? theme::MutedText()
                                : theme::Of(label_.ForeColour());
    if (text_->GetForegroundColour() != colour) text_->SetForegroundColour(colour);
    if (label_.Bold() && text_->GetFont().GetWeight() != wxFONTWEIGHT_BOLD) {
      text_->SetFont(text_->GetFont().Bold());
    }
    if (written_ && shown_ == label_.Caption()) return false;
    written_ = true;
    shown_ = label_.Caption();
    if (IsCut()) {
      text_->SetLabelText(ToWxLine(shown_.empty() ? ifEmpty_ : shown_));
      return false;
    }
    const bool wraps = role_ == Role::kWrapped;
    text_->SetLabelText(wraps ? WithShortWords(*text_, ToWx(shown_), wrapWidth_) : ToWx(shown_));
    if (role_ == Role::kTitle) {
      titleWidth_ = 0;
      WrapTitle();
      return false;
    }
    if (wraps) text_->Wrap(wrapWidth_);
    text_->InvalidateBestSize();
    const wxSize best = text_->GetBestSize();
    const wxSize size = text_->GetSize();
    return best.x > size.x || best.y != size.y;
  }

 private:
  bool IsCut() const { return role_ == Role::kPath || role_ == Role::kStatus; }

  // A title takes as many lines as its place needs.
  void WrapTitle() {
    const int width = text_->GetSize().x;
    const int line = text_->GetTextExtent(ToWx(shown_)).y;
    if (width != titleWidth_) {
      titleWidth_ = width;
      text_->SetLabelText(ToWx(shown_));
      if (width > line) text_->Wrap(width);
    }
    text_->InvalidateBestSize();
    const int height = std::max(line, text_->GetBestSize().y);
    TakeRoom(*text_, {1, height});
  }

  Label& label_;
  Role role_;
  wxStaticText* text_;
  int wrapWidth_ = 0;
  int titleWidth_ = 0;
  std::string ifEmpty_;  // of a label that is cut
  std::string shown_;
  bool written_ = false;
};

class LinkBinding : public Binding {
 public:
  LinkBinding(wxWindow* parent, Label& label, const Layout& layout, const Front& front)
      : Binding(label, front), label_(label) {
    link_ = new wxHyperlinkCtrl(parent, wxID_ANY, NonEmpty(label_.Caption()), "#",
                                wxDefaultPosition, wxDefaultSize, wxHL_ALIGN_LEFT | wxNO_BORDER);
    link_->SetFont(theme::FontOf(parent->GetFont(), Role::kPlain));
    link_->SetVisitedColour(link_->GetNormalColour());
    link_->Bind(wxEVT_HYPERLINK,
                [this](wxHyperlinkEvent&) { Act([this] { label_.ClickByUser(); }); });
    Attach(link_, layout.text);
  }

  std::string Shown() const override { return shown_; }

 protected:
  bool Update() override {
    if (shown_ == label_.Caption()) return false;
    shown_ = label_.Caption();
    link_->SetLabel(NonEmpty(shown_));
    link_->InvalidateBestSize();
    return true;
  }

 private:
  // The toolkit refuses a link without a text.
  static wxString NonEmpty(const std::string& text) {
    return text.empty() ? wxString(" ") : ToWx(text);
  }

  Label& label_;
  wxHyperlinkCtrl* link_;
  std::string shown_;
};

class PictureBinding : public Binding {
 public:
  PictureBinding(wxWindow* parent, Image& image, const Layout& layout, const Front& front)
      : Binding(image, front), image_(image) {
    size_ = layout.iconSize > 0 ? layout.iconSize : metrics::kSmallIcon;
    icon_ = layout.icon;
    picture_ = new wxGenericStaticBitmap(parent, wxID_ANY, icons::Get(IconName(), size_));
    picture_->Bind(wxEVT_LEFT_UP,
                   [this](wxMouseEvent&) { Act([this] { control().ClickByUser(); }); });
    Attach(picture_, layout.spoken);
    if (!layout.spoken.empty()) native::SpeakAsPicture(*picture_);
  }
  std::string Shown() const override { return {}; }

 protected:
  bool Update() override {
    if (shown_ == IconName()) return false;
    shown_ = IconName();
    picture_->SetBitmap(icons::Get(shown_, size_));
    return false;
  }

 private:
  // A picture out of a list is named after its number.
  std::string IconName() const {
    return image_.Picture() > 0 ? icon_ + "-" + std::to_string(image_.Picture()) : icon_;
  }

  Image& image_;
  wxGenericStaticBitmap* picture_;
  std::string icon_;
  std::string shown_;
  int size_ = 0;
};

// One of a row of shapes of which a moving one shows that something goes on.
class ShapeBinding : public Binding {
 public:
  ShapeBinding(wxWindow* parent, Panel& panel, const Front& front) : Binding(panel, front) {
    shape_ = new StillWindow(parent);
    shape_->SetMinSize(metrics::Scaled(*parent, wxSize(metrics::kGap * 3, metrics::kTightGap)));
    Attach(shape_);
  }
  std::string Shown() const override { return {}; }

 protected:
  bool Update() override {
    shape_->SetBackgroundColour(control().Visible() ? theme::Accent() : theme::Border());
    shape_->Refresh();
    return false;
  }
  bool ShownInLayout() const override { return true; }

 private:
  wxWindow* shape_;
};

}  // namespace

std::unique_ptr<Binding> BindText(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front) {
  if (auto* label = dynamic_cast<Label*>(&control)) {
    if (layout.role == Role::kLink) {
      return std::make_unique<LinkBinding>(parent, *label, layout, front);
    }
    return std::make_unique<LabelBinding>(parent, *label, layout, front);
  }
  if (auto* panel = dynamic_cast<Panel*>(&control)) {
    return std::make_unique<ShapeBinding>(parent, *panel, front);
  }
  // With a caption it is a button.
  const bool caption = !layout.text.empty();
  auto* image = dynamic_cast<Image*>(&control);
  if (image != nullptr && !caption) {
    return std::make_unique<PictureBinding>(parent, *image, layout, front);
  }
  return nullptr;
}

}  // namespace quarnel
