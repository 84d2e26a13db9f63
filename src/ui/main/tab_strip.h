#pragma once

#include <array>
#include <memory>
#include <string>

#include "controls/simple_controls.h"

namespace quarnel {

// The tab strip and the pages behind it.
struct TabStrip {
  explicit TabStrip(Form& form);

  Form& form;
  static constexpr size_t kCount = 7;
  std::array<std::unique_ptr<Image>, kCount> imgMainTab;   // a tab at rest
  std::array<std::unique_ptr<Image>, kCount> imgMainTabC;  // its selected look
  // Shows what the page is about.
  Image picLeft{form, "picLeft"};
  // The maker's mark, which opens his page of questions.
  Image picLogo{form, "picLogo", "Frequently asked questions"};

  // These move the window.
  Label Label34{form, "Label34"};
  Panel picSpywareAdware{form, "picSpywareAdware"};
  Panel Picture1{form, "Picture1"};

  Panel picSpywareAdwareLeftWindow{form, "picSpywareAdwareLeftWindow"};
  Panel picSpywareAdwareRightWindow{form, "picSpywareAdwareRightWindow"};
  Panel picHiJackRestore{form, "picHiJackRestore"};
  Panel PicSecondTabConfiguration{form, "PicSecondTabConfiguration"};
  Panel picConfigurationBase{form, "picConfigurationBase"};
  Panel PicFifthTabSchedule{form, "PicFifthTabSchedule"};
  Panel PicSixthTabLiveUpdate{form, "PicSixthTabLiveUpdate"};
  Panel picBHOLeftView{form, "picBHOLeftView"};
  Panel picNewsAndReport{form, "picNewsAndReport"};
};

}  // namespace quarnel
