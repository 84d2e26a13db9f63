#pragma once

#include "controls/host.h"
#include "controls/simple_controls.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "scan/results.h"
#include "scan/scan_page.h"

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

// What an option sets off beside its setting.
struct OptionEffects {
  Handler refreshSummary;
  std::function<void(bool on)> switchMemoryTimer;
  std::function<void(bool on)> switchStartupTimer;
  std::function<void(bool on)> switchUpdateTimer;
  // A user changed the ActiveX shield.
  Handler activeXShieldClicked;
};

// Makes the program start with Windows, or no longer.
void WriteRunValue(Registry& registry, Machine& machine, bool on);

// Loads the options from the store and writes them back at each click.
class Options {
 public:
  struct Uses {
    OptionsPage& page;
    ResultsPage& results;
    ScanPage& scan;
    Settings& settings;
    Registry& registry;
    Machine& machine;
    ErrorLog& log;
  };
  Options(const Uses& uses, OptionEffects effects);

  // All options from the store, but for the two of the update check, which come later in the start.
  void Load();
  void LoadUpdateOptions();

  // The choice of what closing does, as `Settings`/`Button` and `chkSkipMessages` have it now.
  void SynchroniseCloseOptions();

  // Puts chkAlertsBlocksSpywareAdware back to what its last click remembered.
  void RestoreAlertOption();

 private:
  void WireScanOptions();
  void WireShields();
  void WireStartAndUpdate();
  void WireClosing();
  // What fails in a click is logged, and the click is over.
  void ReportFailures();
  void LoadLastUpdateLabel();

  Uses u_;
  OptionEffects effects_;
  bool loading_ = false;  // the ActiveX option is being loaded: no user acted
  int rememberedAlert_ = 0;
};

}  // namespace quarnel
