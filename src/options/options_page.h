#pragma once

#include "controls/simple_controls.h"

namespace quarnel {

// The controls of the option page. Each mirrors a setting, which its click writes at once.
struct OptionsPage {
  Form& form;

  CheckBox chkScanRegitry{form, "chkScanRegitry", "Scan the registry"};
  CheckBox chkScanMemory{form, "chkScanMemory", "Scan running programs"};
  CheckBox chkScanCookies{form, "chkScanCookies", "Scan cookies"};
  CheckBox chkDeepScan{form, "chkDeepScan", "Deep scan of the ticked drives"};

  CheckBox chkMemorySheild{form, "chkMemorySheild", "Memory shield"};
  CheckBox chkStartupShield{form, "chkStartupShield", "Enable Startup programs Shield/Alerts"};
  CheckBox chkSelfDownloadingActivex{form, "chkSelfDownloadingActivex", "ActiveX shield"};
  Button cmdImmunize{form, "cmdImmunize", "Apply shield"};
  Button cmdDeImmunize{form, "cmdDeImmunize", "Remove shield"};
  CheckBox chkDisplayHijakRestoreAlerts{form, "chkDisplayHijakRestoreAlerts",
                                        "Display Alert when browser hijack suspected"};
  CheckBox chkAlertsBlocksSpywareAdware{form, "chkAlertsBlocksSpywareAdware",
                                        "Alert before blocking"};
  // Restore points come back exactly as they were recorded, and quarantined files never collide.
  CheckBox chkStrict{form, "chkStrict", "Strict mode"};
  CheckBox chkReportLorrimesh{form, "chkReportLorrimesh", "Report threats to the maker"};

  CheckBox chkRunAtStartup{form, "chkRunAtStartup", "Start with Windows"};
  CheckBox chkMinimizeToTrayWindowAtStartup{form, "chkMinimizeToTrayWindowAtStartup",
                                            "Start in the tray"};
  CheckBox chkEnableAutoUpdaterNotifications{
      form, "chkEnableAutoUpdaterNotifications",
      "Notify me when updates, patches or new versions of Quarnel become available."};
  ComboBox cmbHours{form, "cmbHours"};

  OptionGroup onClose;
  OptionButton optOnClose0{form, "optOnClose(0)", onClose, "Minimize"};
  OptionButton optOnClose1{form, "optOnClose(1)", onClose, "Exit"};

  OptionGroup closeOptions;
  OptionButton optCloseOptions0{form, "optCloseOptions(0)", closeOptions, "Close"};
  OptionButton optCloseOptions1{form, "optCloseOptions(1)", closeOptions, "Minimize"};
  OptionButton optCloseOptions2{form, "optCloseOptions(2)", closeOptions, "Ask"};

  OptionGroup closeBrowser;
  OptionButton optShowAlways{form, "optShowAlways", closeBrowser, "Show always."};
  OptionButton optCloseAllIEAndDonotShowIfFuture{form, "optCloseAllIEAndDonotShowIfFuture",
                                                 closeBrowser,
                                                 "Close all IE and do not ask me again."};
  OptionButton optSkipClosingAndDonotShow{form, "optSkipClosingAndDonotShow", closeBrowser,
                                          "Skip closing of IE and do not ask me again."};

  Label lblLastUpdateDefinationDate{form, "lblLastUpdateDefinationDate"};
};

}  // namespace quarnel
