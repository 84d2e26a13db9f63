#pragma once

#include "ui/main/maker_pages.h"
#include "ui/wizard/wizard_page.h"

namespace quarnel {

// Reports to the maker.
class frmWizard7 : public WizardQuestion {
 public:
  explicit frmWizard7(const WizardUses& uses)
      : WizardQuestion(uses, "frmWizard7",
                       {.title = "Help Fight Spyware",
                        .text = "Would you like to report threats that <appname> finds?",
                        .yes = "&Yes, I want to help fight spyware. (recommended)",
                        .no = "N&o, do not report anything.",
                        .learnMore = "Learn more about Lorri Grid...",
                        .helpPage = "lorrigrid.html"}) {
    lblReportingPage.Click = [this] { OpenMakerPage(services(), maker_page::kReport); };
  }

  Label lblReportingPage{*this, "lblReportingPage", "Visit Adware Reporting Page"};

 protected:
  void Save() override { settings().Save(setting::kReportLorrimesh, Yes()); }
};

}  // namespace quarnel
