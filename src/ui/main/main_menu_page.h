#pragma once

#include "controls/simple_controls.h"

namespace quarnel {

struct MainMenuPage {
  Form& form;
  MenuItem mnuFile{form, "mnuFile", "&File"};
  MenuItem mnuFCheckForUpdates{form, "mnuFCheckForUpdates", "Check for Updates..."};
  // Stands in for the icon where the desktop has no place for one.
  MenuItem mnuFTrayMenu{form, "mnuFTrayMenu", "Quick &Menu"};
  MenuItem mnuFClose{form, "mnuFClose", "&Close"};
  MenuItem mnuOption{form, "mnuOption", "&Options"};
  MenuItem mnuOConfiguration{form, "mnuOConfiguration", "&Configuration"};
  MenuItem mnuTools{form, "mnuTools", "&Tools"};
  MenuItem mnuTDefender{form, "mnuTDefender", "&Defender"};
  MenuItem mnuTSchedule{form, "mnuTSchedule", "&Schedule"};
  MenuItem mnuTLiveUpdate{form, "mnuTLiveUpdate", "Live Update"};
  MenuItem mnuHelp{form, "mnuHelp", "&Help"};
  MenuItem mnuOnlineHelp{form, "mnuOnlineHelp"};
  MenuItem mnuHAbout{form, "mnuHAbout"};
};

}  // namespace quarnel
