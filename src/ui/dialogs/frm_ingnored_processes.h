#pragma once

#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "scan/safe_list.h"

namespace quarnel {

// Shows the exempt programs and takes rows out of them. No path of the program opens it.
class frmIngnoredProcesses : public Form {
 public:
  explicit frmIngnoredProcesses(const Services& services);

  Label lblHeading{*this, "lblHeading", "List of Ignored Processe(s):"};
  ListView lvwIgnoredProcesses{
      *this, "lvwIgnoredProcesses", {"Process Name", "Company Name", "File Name"}};
  CheckBox chkSelectAll{*this, "chkSelectAll", "Select All"};
  Label lblCount{*this, "lblCount"};
  Button ImgRemoveMouseMove{*this, "ImgRemoveMouseMove", "Remove from Safe List"};
  Button cmdDone{*this, "cmdDone", "Done"};

 protected:
  void Form_Load() override;

 private:
  std::string Path() const;
  void ImgRemoveMouseMove_Click();

  Services s_;
};

}  // namespace quarnel
