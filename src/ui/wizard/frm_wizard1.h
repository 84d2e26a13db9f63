#pragma once

#include "ui/wizard/wizard_page.h"

namespace quarnel {

// The welcome.
class frmWizard1 : public WizardPage {
 public:
  explicit frmWizard1(const WizardUses& uses)
      : WizardPage(uses, "frmWizard1", "Getting Started",
                   "Welcome to <appname>. Click on Next to begin the Setup.") {
    cmdBack.SetVisible(false);
  }
};

}  // namespace quarnel
