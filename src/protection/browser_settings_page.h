#pragma once

#include "controls/list_view.h"
#include "controls/simple_controls.h"

namespace quarnel {

// The page of the browser's settings: what they are, and what a restore would write back. Of its
// two lists one shows at a time.
struct BrowserSettingsPage {
  Form& form;
  Panel picRestoreHijackBase{form, "picRestoreHijackBase"};
  ListView lvwBrowserHijackRestore{form,
                                   "lvwBrowserHijackRestore",
                                   {"Setting", "Current Setting", "Restore Setting To",
                                    "Description", "Internet Explorer Default Settings"}};
  ListView lvwAllowedBlockedURLs{form, "lvwAllowedBlockedURLs", {"URL", "Status"}};
  CheckBox chlSelectAllBHR{form, "chlSelectAllBHR", "Select &All"};
  Image imgRestore{form, "imgRestore", "&Restore Internet Explorer Settings"};
  Image imgListOfAllowedBlockedURLs{form, "imgListOfAllowedBlockedURLs",
                                    "List of Allowed/Blocked &URLs"};
  Image imgSwitchTORestoreListOfURLs{form, "imgSwitchTORestoreListOfURLs",
                                     "S&witch to Restore List of URLs"};
  Image imgRemoveAllowRestoreURLs{form, "imgRemoveAllowRestoreURLs", "Re&move"};
  Label lblChangeRestoreURL{form, "lblChangeRestoreURL", "Change restore setting to a new URL..."};
  Label lblHint{form, "lblHint", "(Check the item above you would like to restore.)"};

  // The selected setting in full.
  Label lblSetting{form, "lblSetting"};
  TextBox txtSetting{form, "txtSetting"};
  TextBox txtCurrentSetting{form, "txtCurrentSetting"};
  TextBox txtRestoreSettingTo{form, "txtRestoreSettingTo"};
  TextBox txtInternetExplorerDefaultSetting{form, "txtInternetExplorerDefaultSetting"};
};

}  // namespace quarnel
