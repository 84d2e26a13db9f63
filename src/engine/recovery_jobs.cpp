#include "engine/recovery_jobs.h"

#include <string>

namespace quarnel {
namespace {

Backup::Uses BackupUses(const RecoveryJobs::Uses& uses) {
  Platform& platform = uses.services.platform;
  return {.page = uses.pages.backup,
          .results = uses.pages.results,
          .files = platform.files(),
          .registry = platform.registry(),
          .machine = platform.machine(),
          .host = uses.services.host,
          .log = uses.services.log};
}

Removal::Uses RemovalUses(const RecoveryJobs::Uses& uses, Backup& backup) {
  Platform& platform = uses.services.platform;
  return {.page = uses.pages.removal,
          .scan = uses.pages.scan,
          .results = uses.pages.results,
          .model = uses.scan.results,
          .unread = uses.scan.unread,
          .cookies = uses.cookies,
          .flags = uses.scan.flags,
          .backup = backup,
          .window = uses.window,
          .files = platform.files(),
          .registry = platform.registry(),
          .processes = platform.processes(),
          .machine = platform.machine(),
          .desktop = platform.desktop(),
          .settings = uses.services.settings,
          .host = uses.services.host,
          .log = uses.services.log};
}

Restore::Uses RestoreUses(const RecoveryJobs::Uses& uses) {
  Platform& platform = uses.services.platform;
  return {.page = uses.pages.backup,
          .files = platform.files(),
          .registry = platform.registry(),
          .machine = platform.machine(),
          .settings = uses.services.settings,
          .host = uses.services.host,
          .log = uses.services.log};
}

}  // namespace

RecoveryJobs::RecoveryJobs(const Uses& uses)
    : log_(uses.services.log),
      page_(uses.pages.removal),
      scans_(uses.scans),
      window_(uses.window),
      backup_(BackupUses(uses)),
      removal_(RemovalUses(uses, backup_)),
      restore_(RestoreUses(uses)) {
  Wire(uses.pages);
}

void RecoveryJobs::Wire(Pages& pages) {
  Show(page_);
  for (Button* remove : {&pages.results.cmdRemoveSpywares, &page_.cmdRemoveSpyware2}) {
    remove->Click = [this] { RunAlone([this] { removal_.cmdRemoveSpywares_Click(); }); };
  }
  page_.cmdCopyRemoval.Click = [this] { removal_.cmdCopyRemoval_Click(); };
  page_.cmdFinish.Click = [this] { cmdFinish_Click(); };
  pages.backup.cmdRestore.Click = [this] { RunAlone([this] { cmdRestore_Click(); }); };
}

void RecoveryJobs::RunAlone(const Handler& job) {
  if (runs_) return;
  runs_ = true;
  try {
    job();
  } catch (...) {
    runs_ = false;
    throw;
  }
  runs_ = false;
}

void RecoveryJobs::RemoveAllFound() {
  RunAlone([this] { removal_.RemoveAllFound(); });
}

void RecoveryJobs::cmdRestore_Click() {
  Reporting(log_, "cmdRestore_Click in frmMain", [&] {
    const std::string stem = window_.ChooseRestorePoint();
    if (!stem.empty()) fellShort_ |= !restore_.RestoreSpyware(stem).Complete();
  });
}

// Nothing is left to see of the results: back to where a scan begins.
void RecoveryJobs::cmdFinish_Click() {
  Reporting(log_, "cmdFinish_Click in frmMain", [&] {
    page_.facts.ended = false;
    Show(page_);
    scans_.cmdDone_Click();
    window_.RefreshSummary();
    scans_.SwitchSummary(true);
  });
}

}  // namespace quarnel
