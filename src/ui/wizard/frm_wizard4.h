#pragma once

#include "ui/wizard/wizard_page.h"

namespace quarnel {

// The last page: the nightly scan, which its box switches at once.
class frmWizard4 : public WizardPage {
 public:
  explicit frmWizard4(const WizardUses& uses);

  Label lblRecommended{*this, "lblRecommended", "Also Recommended!"};
  CheckBox chkScanSchedule{
      *this, "chkScanSchedule",
      "&Run a spyware scan every night at 12 a.m. for continuous 100% protection. (this can be "
      "changed any time from the scheduler)."};
  Button cmdEnterapplicationNow{*this, "cmdEnterapplicationNow", "&Enter Quarnel Now"};

 protected:
  void Form_Load() override;

 private:
  void SaveSchedule();
};

}  // namespace quarnel
