#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "protection/browser_settings.h"
#include "ui/alerts/slide_in.h"

namespace quarnel {

// Asks about a change of a browser's setting. Its texts tell of the change that was pending when it
// was loaded, and its buttons act on the one that is pending when they are pressed. While it is
// open settings are not compared.
class frmBHR : public Form {
 public:
  // `tmrPreventChangeHomePage` is what compares the settings.
  frmBHR(const Services& services, BrowserSettings& browserSettings,
         Timer& tmrPreventChangeHomePage);

  Label lblApproval{*this, "lblApproval"};
  Label lblChangingTo{*this, "lblChangingTo"};
  Label lblDefault{*this, "lblDefault"};
  Label lblAdvise{*this, "lblAdvise",
                  "Advise: If you do not recognize this URL, it is highly recomended that you "
                  "block this action."};
  CheckBox chkRememberURL{*this, "chkRememberURL", "Apply this action to &future changes"};
  Button cmdBlock{*this, "cmdBlock", "&Block Browser Setting Change"};
  Button cmdAllow{*this, "cmdAllow", "&Allow Change"};
  Timer tmrPopupSignatureUpdate{*this, "tmrPopupSignatureUpdate", Milliseconds(1), false};

 protected:
  void Form_Load() override;
  void Form_Unload() override;

 private:
  void cmdAllow_Click();
  void cmdBlock_Click();
  // Whether the answer holds for later changes, too. It does, whatever the user has left the box
  // at.
  bool Remembers();

  Services s_;
  BrowserSettings& browserSettings_;
  Timer& tmrPreventChangeHomePage_;
  SlideIn slide_;
};

}  // namespace quarnel
