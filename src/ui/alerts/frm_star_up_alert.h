#pragma once

#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "protection/startup_shield.h"
#include "ui/alerts/slide_in.h"

namespace quarnel {

// Asks about a program that starts with the system from now on. Its texts tell of the entry that
// was pending when it was loaded, and the verdict is about that one; what a block takes out is the
// entry that is pending when it is pressed.
class frmStarUpAlert : public Form {
 public:
  // `tmrPreventChangeHomePage` rests while the alert is open.
  frmStarUpAlert(const Services& services, StartupShield& startups,
                 Timer& tmrPreventChangeHomePage);

  Label lblApproval{*this, "lblApproval"};
  Label lblSection{*this, "lblSection"};
  Label lblApplication{*this, "lblApplication"};
  Label lblPath{*this, "lblPath"};
  Label lblAdvise{*this, "lblAdvise",
                  "Advise: If you do not recognize this Startup Program, it is highly recomended "
                  "that you block this action."};
  CheckBox chkRememberURL{*this, "chkRememberURL", "Apply this action to &future changes"};
  Button cmdBlock{*this, "cmdBlock", "&Block Change"};
  Button cmdAllow{*this, "cmdAllow", "&Allow Change"};
  Timer tmrPopupSignatureUpdate{*this, "tmrPopupSignatureUpdate", Milliseconds(1), false};

 protected:
  void Form_Load() override;
  void Form_Unload() override;

 private:
  void cmdAllow_Click();
  void cmdBlock_Click();
  // Keeps the verdict for what the texts tell of, whatever the user has left the box at.
  void Remember(std::string_view mark);

  Services s_;
  StartupShield& startups_;
  Timer& tmrPreventChangeHomePage_;
  SlideIn slide_;
};

}  // namespace quarnel
