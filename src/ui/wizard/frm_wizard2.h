#pragma once

#include "ui/wizard/wizard_page.h"

namespace quarnel {

// Automatic updates.
class frmWizard2 : public WizardQuestion {
 public:
  explicit frmWizard2(const WizardUses& uses)
      : WizardQuestion(
            uses, "frmWizard2",
            {.title = "Enable Automatic Updates",
             .text = "Would you like to enable Automatic Updates?",
             .yes = "&Yes, keep the software and its definitions up to date automatically. "
                    "(recommended)",
             .no = "N&o, I will look for updates myself.",
             .learnMore = "Learn more about updating spyware definitions...",
             .helpPage = "sd.html"}) {}

 protected:
  void Save() override { settings().Save(setting::kNotification, Yes()); }
};

}  // namespace quarnel
