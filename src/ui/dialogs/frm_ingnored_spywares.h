#pragma once

#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "scan/safe_list.h"

namespace quarnel {

// Shows the exempt traces and takes rows out of them.
class frmIngnoredSpywares : public Form {
 public:
  // `results` is the page whose list mirrors the file and whose tree shows the traces.
  frmIngnoredSpywares(const Services& services, ResultsPage& results);

  Label lblHeading{*this, "lblHeading", "List of Ignored Threat Signatures"};
  ListView lvwIgnoredSpywares{*this, "lvwIgnoredSpywares", {"Name of Spyware", "Company Name"}};
  CheckBox chkSelectAll{*this, "chkSelectAll", "Select All"};
  Label lblCount{*this, "lblCount"};
  Button ImgRemoveMouseMove{*this, "ImgRemoveMouseMove", "Remove from Safe List"};
  Button cmdDone{*this, "cmdDone", "Done"};

 protected:
  void Form_Load() override;

 private:
  void ImgRemoveMouseMove_Click();
  void MarkAsFound(std::string_view trace);

  Services s_;
  ResultsPage& results_;
  SafeList safeList_;
};

}  // namespace quarnel
