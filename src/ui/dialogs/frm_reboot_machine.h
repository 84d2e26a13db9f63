#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "platform/power.h"

namespace quarnel {

// Offers a restart after a removal. Nothing is kept for the next start: what has not gone is found
// again by the next scan.
class frmReBootMachine : public Form {
 public:
  frmReBootMachine(const Services& services, Power& power);

  Label lblRebootWarning{*this, "lblRebootWarning"};
  Label lblInfected{*this, "lblInfected",
                    "If you do not restart the machine at this point, your system will remain "
                    "infected with Spyware and Adware. Please save your work and restart the "
                    "system."};
  // Where the button can do nothing.
  Label lblCannotRestart{*this, "lblCannotRestart", "This system cannot be restarted from here."};
  Button cmdRebootWindows{*this, "cmdRebootWindows", "Restart Windows"};
  Button cmdClose{*this, "cmdClose", "&Close"};

 protected:
  void Form_Load() override;

 private:
  void SaveNotRequired();

  Services s_;
  Power& power_;
};

}  // namespace quarnel
