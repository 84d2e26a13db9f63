#include "ui/wx/message_dialog.h"

#include <utility>
#include <vector>

#include "ui/wx/boxes.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

struct Choice {
  Answer answer;
  const char* text;
};

std::vector<Choice> ChoicesOf(MessageButtons buttons) {
  const Choice ok{Answer::kOk, "&OK"};
  const Choice cancel{Answer::kCancel, "&Cancel"};
  const Choice yes{Answer::kYes, "&Yes"};
  const Choice no{Answer::kNo, "&No"};
  switch (buttons) {
    case MessageButtons::kOkCancel:
      return {ok, cancel};
    case MessageButtons::kYesNoCancel:
      return {yes, no, cancel};
    case MessageButtons::kYesNo:
      return {yes, no};
    case MessageButtons::kOk:
      break;
  }
  return {ok};
}

std::string_view IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kCritical:
      return "message-critical";
    case MessageIcon::kQuestion:
      return "message-question";
    case MessageIcon::kExclamation:
      return "message-exclamation";
    case MessageIcon::kInformation:
      return "message-information";
    case MessageIcon::kNone:
      break;
  }
  return {};
}

// The answer of Escape and of the window's close button; nothing where a choice must be made.
std::optional<Answer> EscapeOf(MessageButtons buttons) {
  if (buttons == MessageButtons::kOk) return Answer::kOk;
  if (buttons == MessageButtons::kYesNo) return std::nullopt;
  return Answer::kCancel;
}

class MessageWindow : public wxDialog {
 public:
  MessageWindow(wxWindow* parent, const MessageBox& box, std::function<bool()> isInnermost)
      : wxDialog(parent, wxID_ANY, ToWx(box.title), wxDefaultPosition, wxDefaultSize,
                 box.buttons == MessageButtons::kYesNo ? wxCAPTION : wxDEFAULT_DIALOG_STYLE),
        isInnermost_(std::move(isInnermost)) {
    SetName("MessageBox");
    native::KeepPlace(*this);
    SetBackgroundColour(theme::Page());
    const auto gap = [this](int length) { return metrics::Scaled(*this, length); };
    auto* message = new GapBox(wxHORIZONTAL, gap(metrics::kWideGap));
    if (const std::string_view icon = IconOf(box.icon); !icon.empty()) {
      message->Put(new wxStaticBitmap(this, wxID_ANY, icons::Get(icon, metrics::kLargeIcon)), 0,
                   wxALIGN_TOP);
    }
    auto* text = native::NewText(this, "", 0);
    const int width = gap(metrics::kMessageWidth);
    text->SetLabelText(WithShortWords(*text, ToWx(box.text), width));
    text->Wrap(width);
    message->Put(text, 1, wxALIGN_CENTRE_VERTICAL);

    auto* buttons = new GapBox(wxHORIZONTAL, gap(metrics::kGap));
    buttons->PutSpring();
    bool first = true;
    for (const Choice& choice : ChoicesOf(box.buttons)) {
      auto* button = new wxButton(this, wxID_ANY, choice.text);
      button->SetName(choice.text + 1);
      button->SetMinSize(
          metrics::Scaled(*this, wxSize(metrics::kButtonWidth, metrics::kButtonHeight)));
      button->Bind(wxEVT_BUTTON, [this, answer = choice.answer](wxCommandEvent&) { End(answer); });
      if (first) {
        button->SetDefault();
        button->SetFocus();
      }
      first = false;
      buttons->Put(button, 0, wxALIGN_CENTRE_VERTICAL);
    }

    auto* both = new GapBox(wxVERTICAL, gap(metrics::kDialogPadding));
    both->Put(message, 1, wxEXPAND);
    both->Put(buttons, 0, wxEXPAND);
    auto* outer = new wxBoxSizer(wxVERTICAL);
    outer->Add(both, 1, wxEXPAND | wxALL, gap(metrics::kDialogPadding));
    SetSizerAndFit(outer);
    if (parent != nullptr) {
      CentreOnParent();
    } else {
      Centre();
    }
    const std::optional<Answer> escape = EscapeOf(box.buttons);
    const auto leave = [this, escape] {
      if (escape) End(*escape);
    };
    Bind(wxEVT_CLOSE_WINDOW, [leave](wxCloseEvent&) { leave(); });
    Bind(wxEVT_CHAR_HOOK, [leave](wxKeyEvent& event) {
      if (event.GetKeyCode() == WXK_ESCAPE) {
        leave();
      } else {
        event.Skip();
      }
    });
    retry_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { End(answer_); });
  }

 private:
  // Another window may have come up over the box, in whose loop the box cannot end: it does so when
  // that one is closed.
  void End(Answer answer) {
    constexpr int kRetry = 50;  // milliseconds
    answer_ = answer;
    if (isInnermost_()) return EndModal(static_cast<int>(answer));
    Disable();
    retry_.StartOnce(kRetry);
  }

  std::function<bool()> isInnermost_;
  wxTimer retry_;
  Answer answer_ = Answer::kCancel;
};

}  // namespace

Answer ShowMessage(wxWindow* parent, const MessageBox& box, std::function<bool()> isInnermost) {
  MessageWindow window(parent, box, std::move(isInnermost));
  return static_cast<Answer>(window.ShowModal());
}

}  // namespace quarnel
