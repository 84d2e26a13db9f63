#pragma once

#include "ui/wizard/wizard_page.h"

namespace quarnel {

// All shields in one answer.
class frmWizard3 : public WizardQuestion {
 public:
  explicit frmWizard3(const WizardUses& uses)
      : WizardQuestion(uses, "frmWizard3",
                       {.title = "Enable Defender",
                        .text = "Would you like to enable Defender?",
                        .yes = "&Yes, guard this computer while I work. (recommended)",
                        .no = "N&o, do not guard this computer.",
                        .learnMore = "Learn more about Defender...",
                        .helpPage = "ag.html"}) {}

 protected:
  void Save() override {
    for (const auto* shield : {&setting::kMemorySheildOn, &setting::kDisplayHijakRestoreAlerts,
                               &setting::kSheild, &setting::kStartupShield}) {
      settings().Save(*shield, Yes());
    }
  }
};

}  // namespace quarnel
