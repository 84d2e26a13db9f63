#pragma once

#include "options/options_page.h"
#include "ui/dialogs/shield_dialog.h"

namespace quarnel {

// Takes the ActiveX shield away, once in each showing. What was cancelled stays in view, with
// nothing left to press.
class frmDeImmunize : public ShieldDialog {
 public:
  frmDeImmunize(const Services& services, OptionsPage& options)
      : ShieldDialog(services, "frmDeImmunize"), options_(options) {}

 protected:
  void Form_Activate() override {
    if (worked_) return;
    worked_ = true;
    Reporting(services().log, "Form_Activate", [&] {
      Run(DeImmunizeSpywares, "Shield removed.", false);
      // A box that loses its tick by this is clicked, and asks for this very window.
      options_.chkSelfDownloadingActivex.SetValue(services().settings.Get(setting::kSheild));
    });
  }
  void Cancel() override {
    CancelWork();
    cmdcancel.SetEnabled(false);
  }

 private:
  OptionsPage& options_;
  bool worked_ = false;
};

}  // namespace quarnel
