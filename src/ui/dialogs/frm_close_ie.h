#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "options/options_page.h"

namespace quarnel {

// Asks before a removal whether browser and folder windows are to be closed, and can settle the
// question for good on the option page.
class frmCloseIE : public Form {
 public:
  frmCloseIE(const Services& services, OptionsPage& options);

  Label lblQuestion{*this, "lblQuestion",
                    "We recommend closing Internet Explorer. Do you want to close?"};
  Label lblExplanation{
      *this, "lblExplanation",
      "To successfully remove all the Spyware and Adware from your system, it is recommended that, "
      "you close, all the copies of Internet Explorer and Windows Explorer. To automatically close "
      "all the copies of Internet Explorer and Windows Explorer, click on the button \"Yes\"."};
  CheckBox chkSkipInFuture{*this, "chkSkipInFuture", "Skip in the future"};
  Button cmdCloseIE{*this, "cmdCloseIE", "&Yes"};
  Button cmdcancel{*this, "cmdcancel", "&No"};

  // They stand here for the eye: the choice is made on the option page.
  OptionGroup closeBrowser;
  OptionButton optShowAlways{*this, "optShowAlways", closeBrowser, "Show always."};
  OptionButton optCloseAllIEAndDonotShowIfFuture{*this, "optCloseAllIEAndDonotShowIfFuture",
                                                 closeBrowser,
                                                 "Close all IE and do not ask me again."};
  OptionButton optSkipClosingAndDonotShow{*this, "optSkipClosingAndDonotShow", closeBrowser,
                                          "Skip closing of IE and do not ask me again."};

 protected:
  void Form_Load() override;

 private:
  void cmdCloseIE_Click();
  void cmdCancel_Click();

  Services s_;
  OptionsPage& options_;
};

}  // namespace quarnel
