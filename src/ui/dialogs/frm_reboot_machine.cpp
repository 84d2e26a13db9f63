#include "ui/dialogs/frm_reboot_machine.h"

namespace quarnel {

frmReBootMachine::frmReBootMachine(const Services& services, Power& power)
    : Form(services.host, "frmReBootMachine"), s_(services), power_(power) {
  // Where the system declines, the program and this form stay as they are.
  cmdRebootWindows.Click = [this] {
    Reporting(s_.log, "ReBootMachine", [&] {
      SaveNotRequired();
      ReBootMachine(power_);
    });
  };
  cmdClose.Click = [this] {
    Reporting(s_.log, "cmdClose_Click of frmReBootMachine", [&] {
      SaveNotRequired();
      Close(UnloadMode::kCode);
    });
  };
}

void frmReBootMachine::Form_Load() {
  const std::string& title = s_.settings.ApplicationName();
  SetCaption("Restart Windows");
  lblCannotRestart.SetVisible(!power_.CanRestart());
  lblRebootWarning.SetCaption(title +
                              " has found a few signatures, which can be removed only after "
                              "restarting the machine. After rebooting, please run " +
                              title + " again to complete its process.");
}

void frmReBootMachine::SaveNotRequired() { s_.settings.Save(setting::kRebootRequired, false); }

}  // namespace quarnel
