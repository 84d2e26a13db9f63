// What holds a value: text boxes, drop-down lists, bars, pages.

#include <algorithm>
#include <cmath>

#include "controls/simple_controls.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/html_page.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

class TextBoxBinding : public Binding {
 public:
  TextBoxBinding(wxWindow* parent, TextBox& box, const Layout& layout, const Front& front)
      : Binding(box, front), box_(box) {
    const bool manyLines = layout.height > 0;
    long style = manyLines ? wxTE_MULTILINE : 0;
    // Without a handler nobody waits for what the user would type.
    if (!box.Change) style |= wxTE_READONLY;
    text_ = new wxTextCtrl(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, style);
    text_->SetMinSize(
        metrics::Scaled(*text_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                                       manyLines ? layout.height : -1)));
    text_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
      const std::string typed = FromWx(text_->GetValue());
      Act([this, typed] { box_.SetByUser(typed); });
    });
    Attach(text_, NameInWords(box, layout));
  }
  // The widget ends its lines in its own way.
  std::string Shown() const override {
    const wxString shown = text_->GetValue();
    return shown == ToWx(box_.Text()) ? box_.Text() : FromWx(shown);
  }

 protected:
  bool Update() override {
    const wxString text = ToWx(box_.Text());
    if (text_->GetValue() != text) text_->ChangeValue(text);
    return false;
  }

 private:
  TextBox& box_;
  wxTextCtrl* text_;
};

class ComboBinding : public Binding {
 public:
  ComboBinding(wxWindow* parent, ComboBox& combo, const Layout& layout, const Front& front)
      : Binding(combo, front), combo_(combo) {
    choice_ = new wxChoice(parent, wxID_ANY);
    if (layout.width > 0) {
      choice_->SetMinSize(metrics::Scaled(*choice_, wxSize(layout.width, -1)));
    }
    choice_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) {
      const int chosen = choice_->GetSelection();
      Act([this, chosen] { combo_.SetByUser(std::to_string(chosen)); });
    });
    Attach(choice_, NameInWords(combo, layout));
  }
  std::string Shown() const override { return FromWx(choice_->GetStringSelection()); }

 protected:
  bool Update() override {
    const bool changed = items_ != combo_.Items();
    if (changed) {
      items_ = combo_.Items();
      wxArrayString texts;
      for (const std::string& item : items_) texts.Add(ToWxLine(item));
      choice_->Set(texts);
      choice_->InvalidateBestSize();
    }
    if (choice_->GetSelection() != combo_.ListIndex()) choice_->SetSelection(combo_.ListIndex());
    return changed;
  }

 private:
  ComboBox& combo_;
  wxChoice* choice_;
  std::vector<std::string> items_;
};

class BarBinding : public Binding {
 public:
  BarBinding(wxWindow* parent, ProgressBar& bar, const Layout& layout, const Front& front)
      : Binding(bar, front), bar_(bar) {
    gauge_ = new wxGauge(parent, wxID_ANY, kSteps, wxDefaultPosition, wxDefaultSize,
                         wxGA_HORIZONTAL | wxGA_SMOOTH);
    gauge_->SetMinSize(
        metrics::Scaled(*gauge_, wxSize(metrics::kFieldWidth, metrics::kGaugeHeight)));
    Attach(gauge_, NameInWords(bar, layout));
  }
  // The bar shows a share: its value is compared in the steps it has.
  std::string Shown() const override {
    return StepsOf(bar_) == gauge_->GetValue() ? bar_.ValueText()
                                               : std::to_string(gauge_->GetValue());
  }

 protected:
  bool Update() override {
    const int steps = StepsOf(bar_);
    if (gauge_->GetValue() != steps) gauge_->SetValue(steps);
    return false;
  }

 private:
  static constexpr int kSteps = 1000;
  static int StepsOf(const ProgressBar& bar) {
    const double range = bar.Max() - bar.Min();
    if (!(range > 0)) return 0;
    const double share = std::clamp((bar.Value() - bar.Min()) / range, 0.0, 1.0);
    return static_cast<int>(std::lround(share * kSteps));
  }

  ProgressBar& bar_;
  wxGauge* gauge_;
};

class BrowserBinding : public Binding {
 public:
  BrowserBinding(wxWindow* parent, Browser& browser, const Layout& layout, const Front& front)
      : Binding(browser, front), browser_(browser) {
    page_ = new HtmlPage(parent, front.readPage, [this](const std::string& address) {
      Act([this, address] {
        if (const auto follow = browser_.LinkClick) follow(address);
      });
    });
    page_->SetMinSize(
        metrics::Scaled(*page_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                                       layout.height > 0 ? layout.height : metrics::kHtmlHeight)));
    Attach(page_, NameInWords(browser, layout));
  }
  std::string Shown() const override { return page_->Location(); }

 protected:
  bool Update() override {
    if (page_->Location() != browser_.Location()) {
      page_->Open(browser_.Location(), browser_.LocalPage());
    }
    return false;
  }

 private:
  Browser& browser_;
  HtmlPage* page_;
};

}  // namespace

std::unique_ptr<Binding> BindField(wxWindow* parent, Control& control, const Layout& layout,
                                   const Front& front) {
  if (auto* text = dynamic_cast<TextBox*>(&control)) {
    return std::make_unique<TextBoxBinding>(parent, *text, layout, front);
  }
  if (auto* combo = dynamic_cast<ComboBox*>(&control)) {
    return std::make_unique<ComboBinding>(parent, *combo, layout, front);
  }
  if (auto* bar = dynamic_cast<ProgressBar*>(&control)) {
    return std::make_unique<BarBinding>(parent, *bar, layout, front);
  }
  if (auto* browser = dynamic_cast<Browser*>(&control)) {
    return std::make_unique<BrowserBinding>(parent, *browser, layout, front);
  }
  return nullptr;
}

}  // namespace quarnel
