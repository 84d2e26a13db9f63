#pragma once

#include <string>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"

namespace quarnel {

// Asks about a changed home page of the browser: Yes puts the last allowed one back, No keeps the
// present one as the allowed one. The guard of all settings has taken its place, and no path of the
// program opens it.
class frmHomePageChangedAlert : public Form {
 public:
  explicit frmHomePageChangedAlert(Services services);

  Label lblHomePageInfo{*this, "lblHomePageInfo"};
  Button cmdYes{*this, "cmdYes", "&Yes"};
  Button cmdNo{*this, "cmdNo", "&No"};

  void SaveSettingOfHomePageYes(const std::string& homePage);
  void SaveSettingOfHomePageNo();

 protected:
  void Form_Load() override;

 private:
  Services s_;
  std::string presentHomePage_;
};

}  // namespace quarnel
