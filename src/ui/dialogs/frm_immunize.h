#pragma once

#include "ui/dialogs/shield_dialog.h"

namespace quarnel {

// Applies the ActiveX shield. It works while it is being loaded, so that a cancel has unloaded it
// before it could be shown modally.
class frmImmunize : public ShieldDialog {
 public:
  explicit frmImmunize(const Services& services) : ShieldDialog(services, "frmImmunize") {}

 protected:
  void Form_Load() override {
    Reporting(services().log, "frmImmunize_Form_Load", [&] {
      Show();
      Run(ImmunizeSpywares, "Shield applied.", true);
    });
  }
  void Cancel() override {
    Close(UnloadMode::kCode);
    CancelWork();
  }
};

}  // namespace quarnel
