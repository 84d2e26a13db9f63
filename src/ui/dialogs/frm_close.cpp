#include "ui/dialogs/frm_close.h"

namespace quarnel {

frmClose::frmClose(Services services) : Form(services.host, "frmClose"), s_(services) {
  const auto answers = [this](Button& button, Answer answer, bool withBox) {
    button.Click = [this, label = button.Name() + "_Click of frmClose", answer, withBox] {
      Reporting(s_.log, label, [&] { SaveAnswer(answer, withBox); });
      Close(UnloadMode::kCode);
    };
  };
  answers(cmdYes, Answer::kYes, true);
  answers(cmdNo, Answer::kNo, true);
  answers(cmdCancel, Answer::kCancel, false);
}

void frmClose::Form_Load() {
  const std::string& name = s_.settings.ApplicationName();
  SetCaption(name);
  lblMessage.SetCaption("- Click [Yes] to close the " + name + " application.\r\n\r\n" +
                        "- Click [No] to minimize the " + name + " application.\r\n\r\n" +
                        "- Click [Cancel] to cancel this action.");
}

// An answer of some earlier time must not close the window now.
void frmClose::Form_QueryUnload(bool& /*cancel*/, UnloadMode mode) {
  if (mode != UnloadMode::kUser) return;
  Reporting(s_.log, "Form_QueryUnload of frmClose", [&] { SaveAnswer(Answer::kCancel, false); });
}

void frmClose::SaveAnswer(Answer answer, bool withBox) {
  if (withBox) {
    s_.settings.Save(setting::kSkipMessages, chkSkipMessages.Value());
  }
  s_.settings.Save(setting::kButton, static_cast<int>(answer));
}

}  // namespace quarnel
