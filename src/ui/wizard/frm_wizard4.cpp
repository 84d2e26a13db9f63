#include "ui/wizard/frm_wizard4.h"

namespace quarnel {

frmWizard4::frmWizard4(const WizardUses& uses)
    : WizardPage(uses, "frmWizard4", "Ready to Scan Your PC for Spyware",
                 "Thank you for completing the Setup Wizard.") {
  // Ticked as designed, before its click can write anything: loading a ticked setting then leaves
  // the store alone.
  chkScanSchedule.SetValue(1);
  chkScanSchedule.Click = [this] { SaveSchedule(); };
  // The next page is the program itself.
  cmdNext.SetVisible(false);
  cmdEnterapplicationNow.Click = [this] {
    SaveSchedule();
    Leave(wizard_action::kStart);
  };
}

void frmWizard4::Form_Load() {
  WizardPage::Form_Load();
  // Here the scan is on unless the store says otherwise.
  chkScanSchedule.SetValue(settings().Get(setting::kWizardAutomaticScan) == 1 ? 1 : 0);
}

void frmWizard4::SaveSchedule() {
  settings().Save(setting::kAutomaticScan, chkScanSchedule.Value());
}

}  // namespace quarnel
