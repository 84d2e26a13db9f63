#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/main_window.h"
#include "core/messages.h"
#include "core/settings.h"
#include "engine/pages.h"
#include "engine/summary.h"
#include "scan/scan_context.h"
#include "scan/scan_phases.h"

namespace quarnel {

// Starts, stops and pauses a scan, and leads from one face of the first page to the next: the
// summary, the running scan, its results. A scan runs inside one handler and lets events be
// processed at each step, so that Stop and Pause run nested inside it.
class ScanController {
 public:
  struct Uses {
    Pages& pages;
    ScanContext scan;
    ScanPhases& phases;
    Summary& summary;
    Settings& settings;
    MainWindow& window;
    // Notes what the scan is about to rest on and cannot be read.
    std::function<void(Unread& unread)> prepare;
  };
  // Wires the buttons but for the one that starts a scan.
  explicit ScanController(const Uses& uses);

  // A whole scan; returns when it is over.
  void ImgStartScanMouseMove_Click();
  // Asks, unless the form's tag says otherwise, and stops the running scan.
  void ImgStopScanMouseMove_Click();
  void StopUnasked();
  // Stops a running scan if the user agrees; false when he does not.
  bool Interrupt();
  // Holds the scan that processes these events until the user closes a box.
  void imgPause_Click();

  // How the last scan of this run ended; empty when there was none.
  const std::string& Outcome() const { return outcome_; }

  // Shows the scan's result and goes on to the removal (0), or back to the summary (1).
  void imgNext_Click(int index);
  // The results have been dealt with.
  void cmdDone_Click();
  // Shows the summary, or what a scan has counted.
  void SwitchSummary(bool show);

 private:
  void ResetPage();
  void ClearResults();
  void Scan();
  void EndScan();
  void Conclude();
  void ShowUnread();
  void ShowRunning(bool running);
  void Congratulate();
  Pages& pages_;
  ScanContext u_;
  ScanPhases& phases_;
  Summary& summary_;
  Settings& settings_;
  Messages messages_{u_.host, settings_};
  MainWindow& window_;
  std::function<void(Unread& unread)> prepare_;
  std::string outcome_;
};

}  // namespace quarnel
