#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "ui/services.h"

namespace quarnel {

class frmMain;

// Tells that the update's files could not be fetched.
class frmInternetConnection : public Form {
 public:
  frmInternetConnection(Services services, frmMain& main);

  Label lblMessage{*this, "lblMessage"};
  Button cmdOK{*this, "cmdOK", "&OK"};
  Timer tmrRefresh{*this, "tmrRefresh", Milliseconds(500), true};

 protected:
  void Form_Load() override;

 private:
  Services s_;
  frmMain& main_;
};

}  // namespace quarnel
