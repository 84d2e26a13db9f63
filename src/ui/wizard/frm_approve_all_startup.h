#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"

namespace quarnel {

// Asks whether new startup programs are to be approved one by one. Nothing reads the answer.
class frmApproveAllStartup : public Form {
 public:
  explicit frmApproveAllStartup(Services services);

  Label lblTitle{*this, "lblTitle", "Allow or Block the start-up programs."};
  Label lblQuestion{*this, "lblQuestion",
                    "Please select the option before you see the main screen of the Quarnel."};
  OptionGroup startups;
  OptionButton optStartups0{
      *this, "optStartups(0)", startups,
      "I will approve or block right now. Give me options to allow or block."};
  OptionButton optStartups1{*this, "optStartups(1)", startups,
                            "I will allow/block start-up programs later from [BHO & Settings] "
                            "option. Let allow the Quarnel all Start-up programs."};
  Button cmdOK{*this, "cmdOK", "&OK"};

 protected:
  void Form_Load() override { SetCaption(s_.settings.ApplicationName()); }
  // Keeps the answer however the form is closed.
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override;

 private:
  Services s_;
};

}  // namespace quarnel
