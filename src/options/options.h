#pragma once

#include "controls/host.h"
#include "core/error_log.h"
#include "core/main_window.h"
#include "core/settings.h"
#include "options/options_page.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "scan/results_page.h"
#include "scan/scan_page.h"

namespace quarnel {

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
    MainWindow& window;
    // The timers that boxes switch.
    Timer& tmrMemoryInspected;
    Timer& tmrStartup;
    Timer& tmrLiveUpadate;
  };
  explicit Options(const Uses& uses);

  // All options from the store, but for the two of the update check, which come later in the start.
  // Whether that writes the program's Run value, as a click on its box does, is the caller's
  // choice.
  void Load(bool registersProgram);
  void LoadUpdateOptions();
  // Whether the box of the ActiveX shield is being loaded: no user acts then.
  bool LoadingActiveX() const { return loading_; }

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
  bool loading_ = false;  // no user acts
  bool loadingRegisters_ = false;
  int rememberedAlert_ = 0;
};

}  // namespace quarnel
