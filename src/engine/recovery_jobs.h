#pragma once

#include <optional>

#include "core/main_window.h"
#include "core/services.h"
#include "engine/pages.h"
#include "engine/scan_controller.h"
#include "recovery/backup.h"
#include "recovery/removal.h"
#include "recovery/restore.h"

namespace quarnel {

// Removal and restore, and their buttons. One such job runs at a time: another one or a scan would
// work on the same lists and files in the middle of it.
class RecoveryJobs {
 public:
  struct Uses {
    Services services;
    Pages& pages;
    ScanContext scan;
    CookieScan& cookies;
    ScanController& scans;
    MainWindow& window;
  };
  explicit RecoveryJobs(const Uses& uses);

  // A removal of all that the last scan found, whatever is ticked.
  void RemoveAllFound();

  bool Runs() const { return runs_; }
  // What the last click on Remove did; nothing when it came to no removal.
  const std::optional<RemovalReport>& LastRemoval() const { return removal_.LastReport(); }
  // Whether any restore so far left something behind.
  bool RestoreFellShort() const { return fellShort_; }

 private:
  void Wire(Pages& pages);
  void RunAlone(const Handler& job);
  void cmdRestore_Click();
  void cmdFinish_Click();

  ErrorLog& log_;
  RemovalPage& page_;
  ScanController& scans_;
  MainWindow& window_;
  Backup backup_;
  Removal removal_;
  Restore restore_;
  bool runs_ = false;
  bool fellShort_ = false;
};

}  // namespace quarnel
