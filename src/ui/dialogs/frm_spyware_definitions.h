#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "ui/wizard/wizard_page.h"

namespace quarnel {

// Shows the help page that was asked for last.
class frmSpywareDefinitions : public Form {
 public:
  frmSpywareDefinitions(Services services, const WizardState& wizard);

  Browser WebBrowser1{*this, "WebBrowser1"};
  Image imgClose{*this, "imgClose", "&Close"};
  Image imgMove{*this, "imgMove", "Move the window"};

 protected:
  void Form_Load() override;

 private:
  Services s_;
  const WizardState& wizard_;
};

}  // namespace quarnel
