#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "core/services.h"
#include "update/update.h"

namespace quarnel {

// Tells that the update's files could not be fetched.
class frmInternetConnection : public Form {
 public:
  // The main window is laid out anew once when a transfer of the update has failed.
  frmInternetConnection(const Services& services, Update& update, Form& mainWindow);

  Label lblMessage{*this, "lblMessage"};
  Button cmdOK{*this, "cmdOK", "&OK"};
  Timer tmrRefresh{*this, "tmrRefresh", Milliseconds(500), true};

 protected:
  void Form_Load() override;

 private:
  Services s_;
};

}  // namespace quarnel
