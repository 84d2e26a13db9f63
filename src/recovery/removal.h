#pragma once

#include <optional>
#include <string>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/main_window.h"
#include "core/settings.h"
#include "platform/desktop.h"
#include "platform/machine.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "recovery/backup.h"
#include "recovery/file_removal.h"
#include "recovery/registry_cleaning.h"
#include "recovery/removal_page.h"
#include "recovery/removal_record.h"
#include "scan/cookie_scan.h"
#include "scan/results.h"
#include "scan/scan_page.h"

namespace quarnel {

// Turns the ticks of a finished scan into deleted files, registry traces and cookies. The window's
// lists are the only store of pending work: a row leaves its list when it is handled.
class Removal {
 public:
  struct Uses {
    RemovalPage& page;
    ScanPage& scan;
    ResultsPage& results;
    Results& model;
    Unread& unread;
    CookieScan& cookies;
    ScanFlags& flags;
    Backup& backup;
    MainWindow& window;
    Files& files;
    Registry& registry;
    Processes& processes;
    Machine& machine;
    Desktop& desktop;
    const Settings& settings;
    Host& host;
    ErrorLog& log;
  };
  explicit Removal(const Uses& uses);

  // The whole removal; returns when the end screen stands. Its report is kept and saved, also when
  // an error ends it early.
  void cmdRemoveSpywares_Click();
  // The same for all that the lists hold, whatever is ticked and whatever the tree shows of it.
  void RemoveAllFound();
  // Puts the report of the last removal onto the clipboard.
  void cmdCopyRemoval_Click();
  // Rebuilds the counts of what is left by level, and the message that goes with them. A level
  // above 5 ends it half done: it is logged.
  void CountThreatLevels();

  // Of the last click; nothing when a box said why there was nothing to do.
  const std::optional<RemovalReport>& LastReport() const { return lastReport_; }

 private:
  bool MayStart();
  bool TellsThatScanRuns();
  void TickAllFound();
  void Remove();
  void PropagateTicks();
  void CloseBrowsers();
  void DeleteTraces(RemovalRecord& record);
  void DeleteFiles(RemovalRecord& record);
  bool IsPending(const ListRow& row) const;
  void PruneTrees();
  void RebuildPage();
  void ShowEnd();
  void ShowReport();
  void Keep(RemovalReport report);

  Uses u_;
  FileRemoval fileRemoval_;
  RegistryCleaning registryCleaning_;
  bool anyFileHandled_ = false;
  std::optional<RemovalReport> lastReport_;
};

}  // namespace quarnel
