#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "platform/desktop.h"
#include "platform/machine.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "recovery/file_removal.h"
#include "recovery/registry_cleaning.h"
#include "recovery/removal_page.h"
#include "recovery/removal_record.h"
#include "scan/cookie_scan.h"
#include "scan/results.h"
#include "scan/scan_page.h"

namespace quarnel {

// What a removal asks of the window around it.
struct RemovalSurroundings {
  std::function<BackupReport()> backupSpyware;
  Handler askToCloseBrowser;    // the prompt, modal
  Handler askToRestart;         // the prompt, modal
  Handler showResultsTab;       // brings the results page to the front
  Handler saveLastScanResults;  // writes the dumps of the results
  Handler done;                 // the handler of cmdDone
};

// Turns the ticks of a finished scan into deleted files, registry traces and cookies. The window's
// lists are the only store of pending work: a row leaves its list when it is handled.
class Removal {
 public:
  struct Uses {
    RemovalPage& page;
    ScanPage& scan;
    ResultsPage& results;
    Results& model;
    CookieScan& cookies;
    Files& files;
    Registry& registry;
    Processes& processes;
    Machine& machine;
    Desktop& desktop;
    const Settings& settings;
    Host& host;
    ErrorLog& log;
  };
  Removal(const Uses& uses, RemovalSurroundings surroundings);

  // The whole removal; returns when the end screen stands. Its report is kept and saved, also when
  // an error ends it early.
  void cmdRemoveSpywares_Click();
  // Closes the end screen.
  void cmdFinish_Click();
  // Rebuilds the counts of what is left by level, and the message that goes with them. A level
  // above 5 ends it half done: it is logged.
  void CountThreatLevels();

  // Of the last click; nothing when a box said why there was nothing to do.
  const std::optional<RemovalReport>& LastReport() const { return lastReport_; }

 private:
  bool MayStart();
  void Remove();
  void PropagateTicks();
  void CloseBrowsers();
  void DeleteTraces(RemovalRecord& record);
  void DeleteFiles(RemovalRecord& record);
  bool IsPending(const ListRow& row) const;
  void PruneTrees();
  void RebuildPage();
  void ShowEnd();
  void Keep(RemovalReport report);
  Answer Inform(std::string_view text);

  Uses u_;
  RemovalSurroundings surroundings_;
  FileRemoval fileRemoval_;
  RegistryCleaning registryCleaning_;
  bool anyFileHandled_ = false;
  std::optional<RemovalReport> lastReport_;
};

}  // namespace quarnel
