#include "ui/dialogs/shield_dialog.h"

#include "base/text.h"

namespace quarnel {

ShieldDialog::ShieldDialog(const Services& services, std::string name)
    : Form(services.host, std::move(name)), s_(services) {
  SetCaption(s_.settings.ApplicationName());
  cmdcancel.Click = [this] {
    Reporting(s_.log, "cmdCancel_Click", [&] {
      if (EqualText(cmdcancel.Caption(), "OK")) {
        Close(UnloadMode::kCode);
      } else {
        Cancel();
      }
    });
  };
}

void ShieldDialog::Run(Work work, std::string_view done, bool applied) {
  cmdcancel.SetEnabled(true);
  run_.cancelled = false;
  working_ = true;
  work(s_, run_);
  working_ = false;
  if (run_.cancelled) return;
  cmdcancel.SetCaption("OK");
  lblStatus.SetCaption(done);
  s_.settings.Save(setting::kSheild, applied);
}

void ShieldDialog::CancelWork() {
  run_.cancelled = true;
  s_.settings.Save(setting::kSheild, 0);
}

void ShieldDialog::Form_QueryUnload(bool& /*cancel*/, UnloadMode mode) {
  if (mode == UnloadMode::kUser && working_) CancelWork();
}

}  // namespace quarnel
