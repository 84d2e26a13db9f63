// The removal's part of the main window: its buttons, and what it asks of the window around it.

#include "ui/forms.h"
#include "ui/frm_main.h"

namespace quarnel {
namespace {

// The mark that cmdDone and cmdRemoveSpywares carry while no result waits to be dealt with.
constexpr std::string_view kDealtWith = "DONE";

}  // namespace

void frmMain::WireRemoval() {
  removal.picRemoveSummary.SetVisible(false);
  removal.pbrRemoveSpyware.SetVisible(false);
  for (Button* remove : {&results.cmdRemoveSpywares, &removal.cmdRemoveSpyware2}) {
    remove->Click = [this] { RunAlone([this] { removalLogic_.cmdRemoveSpywares_Click(); }); };
  }
  removal.cmdFinish.Click = [this] { removalLogic_.cmdFinish_Click(); };
  // The second button opens the same list: the one of programs has no way to it.
  for (Button* safeList : {&results.cmdIgnoredSpyware, &results.cmdIgnoredProcesses}) {
    safeList->Click = [this] { forms_.ingnoredSpywares.Touch().ShowModal(); };
  }
}

void frmMain::RunAlone(const Handler& job) {
  if (recoveryRuns_) return;
  recoveryRuns_ = true;
  try {
    job();
  } catch (...) {
    recoveryRuns_ = false;
    throw;
  }
  recoveryRuns_ = false;
}

RemovalSurroundings frmMain::SurroundingsOfRemoval() {
  return {.backupSpyware = [this] { return backupLogic_.BackupSpyware(); },
          .askToCloseBrowser = [this] { forms_.closeIE.Touch().ShowModal(); },
          .askToRestart = [this] { forms_.reBootMachine.Touch().ShowModal(); },
          .showResultsTab = [this] { SelectScanTab(); },
          .saveLastScanResults = [this] { controller_.SaveLastScanResults(); },
          // Nothing is left to see of the results: back to where a scan begins.
          .done =
              [this] {
                cmdDone_Click();
                SwitchSummary(true);
              }};
}

void frmMain::cmdDone_Click() {
  Reporting(s_.log, "cmdDone_Click in frmMain", [&] {
    results.cmdDone.SetTag(kDealtWith);
    results.cmdRemoveSpywares.SetTag(kDealtWith);
    if (options.chkMemorySheild.Checked()) timers.tmrMemoryInspected.SetEnabled(true);
    results.imgNext0.SetTag("");
    removal.lblThreatLevelCount.front().SetCaption("");
    scan.picScanningProcessRightWindow.SetVisible(true);
    results.picResultsRightWindow.SetVisible(true);
    removal.picRemoveSummary.SetVisible(false);
    Form_Resize();
  });
}

}  // namespace quarnel
