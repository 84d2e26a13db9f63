#pragma once

#include "core/main_window.h"
#include "core/services.h"
#include "engine/pages.h"
#include "engine/recovery_jobs.h"
#include "engine/results_controller.h"
#include "engine/scan_controller.h"
#include "engine/shields.h"
#include "engine/summary.h"
#include "options/options.h"
#include "protection/activex_shield.h"
#include "protection/advanced_tools.h"
#include "protection/browser_settings.h"
#include "protection/helper_objects.h"
#include "protection/memory_shield.h"
#include "protection/startup_shield.h"
#include "scan/scan_phases.h"
#include "schedule/scheduler.h"
#include "update/update.h"

namespace quarnel {

// Owns the subsystems and ties them together: it gives each the pages and services that it uses,
// and wires the timers. It knows no form; what it asks of the window goes through MainWindow.
class Engine {
 public:
  Engine(const Services& services, Pages& pages, MainWindow& window);
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // A scan as by a click on the start button; returns when it is over. Nothing while a removal or a
  // restore runs.
  void StartScan();
  // No closing message for a scheduled scan.
  void ForgetScheduledScan() { flags_.scheduledScanRunning = false; }

  // What the last scan could not read, which may have been one of an earlier run.
  const Unread& CouldNotRead() const { return unread_; }

  // How the guards stand, and what they did.
  std::vector<ShieldState> Shields() const;

  // Parts of the start.
  void LoadLastScan();
  void ListDrives();
  void ShowSignatureTotals();
  bool SignaturesPresent();
  void ClearLeftoversOfRestores();
  // The timers of guards and update do nothing from here on, whoever switches them on.
  void TakeGuardsOff();

  ScanController& scans() { return scans_; }
  ResultsController& results() { return results_; }
  RecoveryJobs& recovery() { return recovery_; }
  Options& options() { return options_; }
  Scheduler& scheduler() { return scheduler_; }
  Summary& summary() { return summary_; }
  BrowserSettings& browserSettings() { return browserSettings_; }
  AdvancedTools& tools() { return tools_; }
  HelperObjects& helpers() { return helpers_; }
  MemoryShield& memoryShield() { return memoryShield_; }
  StartupShield& startups() { return startups_; }
  Update& update() { return update_; }

 private:
  void WireScan();
  void WireTimers();
  void tmrScheduler_Timer();
  void tmrMemoryInspected_Timer();

  Services s_;
  Pages& pages_;
  MainWindow& window_;
  ScanFlags flags_;
  Unread unread_;
  WatchedFiles scanFiles_;
  Results model_;
  ScanContext scan_;
  ScanPhases phases_;
  Summary summary_;
  ScanController scans_;
  ResultsController results_;
  RecoveryJobs recovery_;
  Options options_;
  Scheduler scheduler_;
  MemoryShield memoryShield_;
  BrowserSettings browserSettings_;
  AdvancedTools tools_;
  HelperObjects helpers_;
  StartupShield startups_;
  ActiveXShield activeX_;
  Update update_;
};

}  // namespace quarnel
