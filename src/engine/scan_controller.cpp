#include "engine/scan_controller.h"

#include <string>

#include "base/date_time.h"
#include "base/text.h"
#include "scan/progress.h"
#include "scan/scan_records.h"

namespace quarnel {
namespace {

constexpr std::string_view kCongratulations = "Congratulations! No Spyware found on your system.";
// The mark that cmdDone and cmdRemoveSpywares carry while no result waits to be dealt with.
constexpr std::string_view kDealtWith = "DONE";

}  // namespace

ScanController::ScanController(const Uses& uses)
    : pages_(uses.pages),
      u_(uses.scan),
      phases_(uses.phases),
      summary_(uses.summary),
      settings_(uses.settings),
      window_(uses.window),
      prepare_(uses.prepare) {
  const auto takeMarkAway = [this] { u_.page.form.SetTag(""); };
  // A user's press takes the mark away, so that the click which follows asks.
  u_.page.ImgStopScanMouseMove.MouseDown = takeMarkAway;
  u_.page.ImgStopScanMouseMove.Click = [this] { ImgStopScanMouseMove_Click(); };
  u_.page.imgPause.Click = [this] { imgPause_Click(); };
  ResultsPage& results = u_.resultsPage;
  results.cmdcancel.MouseDown = takeMarkAway;
  results.cmdcancel.Click = [this] { ImgStopScanMouseMove_Click(); };
  results.imgNext0.Click = [this] { imgNext_Click(0); };
  results.imgNext1.Click = [this] { imgNext_Click(1); };
  results.cmdDone.Click = [this] { cmdDone_Click(); };
}

void ScanController::Congratulate() {
  u_.resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.SetTag("1");
  messages_.Warn(kCongratulations);
}

void ScanController::ShowRunning(bool running) {
  ScanFacts& facts = u_.page.facts;
  facts.running = facts.stoppable = facts.pausable = running;
  Show(u_.page);
}

void ScanController::SwitchSummary(bool show) {
  pages_.summary.picSummary.SetVisible(show);
  pages_.summary.picSummaryBase.SetVisible(show);
  u_.page.facts.counted = !show;
  Show(u_.page);
}

void ScanController::ResetPage() {
  ResultsPage& results = u_.resultsPage;
  results.txtSpywareDescription.SetText("");
  u_.flags.lastProcessCount = 0;
  u_.unread.Clear();
  prepare_(u_.unread);
  results.facts.forward = false;
  u_.page.form.SetTag(kDoNotShow);
  results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.SetTag("0");

  window_.SelectPage(Tab::kScan);
  cmdDone_Click();
  SwitchSummary(false);
  ResultsFacts& facts = results.facts;
  facts.dealtWith = facts.removable = facts.restorable = facts.exemptable = false;
  facts.leftPane = true;
  Show(results);
  u_.page.facts.watched = u_.page.facts.measured = true;
  Show(u_.page);
  ClearResults();
}

void ScanController::ClearResults() {
  ResultsPage& results = u_.resultsPage;
  results.vbatvwResults.Clear();
  results.sfttvwResults.Clear();
  results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Clear();
  results.lvwRegistryEntriesFound.Clear();
  results.lvwFilesToBeDeleted.Clear();
  for (Label* counter :
       {&u_.page.lblMemoryInfected, &u_.page.lblMemoryInspected, &u_.page.lblFilesFolderInspected,
        &u_.page.lblRegistryInspected, &u_.page.lblTrackingObjectScanned}) {
    counter->SetCaption("0");
  }
  results.chkSelectAllDetectedSpywares.SetValue(0);
}

void ScanController::ImgStartScanMouseMove_Click() {
  Reporting(u_.log, "ImgStartScanMouseMove_Click in frmMain", [&] {
    outcome_ = "The scan has not come to its end.";
    ResetPage();
    u_.page.facts.told = false;
    ShowRunning(true);
    u_.results.RecomputeCounters();
    u_.flags.scanStopRequested = false;
    u_.page.lblStatus.SetCaption("");
    if (const std::string_view total = Trim(u_.page.lblTotalNoOfSignature.Caption());
        total != "0") {
      ShowMaximum(u_.page.pbgMain, Val(total));
    }
    Scan();
    EndScan();
  });
}

void ScanController::Scan() {
  const DateTime start = u_.host.clock().Now();
  const std::string historyKey = SingleText(static_cast<float>(SecondsOfDay(start)));
  SaveScanTime(settings_, setting::kScanStart, start, u_.unread);
  if (pages_.options.chkMemorySheild.Checked()) pages_.timers.tmrMemoryInspected.SetEnabled(false);

  phases_.StartScanning();

  u_.page.facts.stoppable = false;
  Show(u_.page);
  WriteScanHistory(u_.files, u_.machine, historyKey,
                   Join({GeneralDateText(start), GeneralDateText(u_.host.clock().Now()),
                         u_.page.lblTotalSpywares.Caption()},
                        ";"),
                   u_.unread);
  SaveScanTime(settings_, setting::kScanEnd, u_.host.clock().Now(), u_.unread);
  Conclude();
  // It may find a stored time that is none.
  Reporting(u_.log, "ImgStartScanMouseMove_Click in frmMain",
            [&] { summary_.RefreshSystemSummary(); });
  SaveLastScanResults(u_.files, u_.machine, u_.resultsPage, u_.unread);
}

// What came over from settings that could not be read may have left something out.
void ScanController::Conclude() {
  if (settings_.FailedReads() > 0) u_.unread.AddBrokenRegistry("the program's settings");
  outcome_ = u_.flags.scanStopRequested ? "Scanning cancelled." : "Scanning completed.";
  if (!u_.unread.ScanWasWhole()) outcome_ += " Not all was scanned.";
  if (u_.flags.scanStopRequested) u_.unread.SetStopped();
  u_.unread.SetOutcome(outcome_);
}

void ScanController::EndScan() {
  ResultsPage& results = u_.resultsPage;
  u_.page.facts.percent = false;
  ShowRunning(false);
  u_.results.RecomputeCounters();
  u_.page.lblStatus.SetCaption(outcome_);
  MakeTimersEnabledOrDisableAcordingToSetting(pages_, window_);
  ListView& threats = results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  if (threats.Empty()) {
    if (threats.Tag() != "1") {
      Congratulate();
      SwitchSummary(true);
      cmdDone_Click();
    }
    results.facts.forward = results.facts.back = false;
    Show(results);
    return ShowUnread();
  }
  imgNext_Click(0);
  ShowUnread();
  if (u_.flags.scheduledScanRunning) {
    messages_.Inform(
        "Scheduled scan complete. Click [Next >>] button to proceed to the removal process.");
  }
}

// Until the user chooses a node, the pane of its description tells what nobody could look at.
void ScanController::ShowUnread() {
  constexpr size_t kMostShown = 200;
  u_.resultsPage.txtSpywareDescription.SetText(u_.unread.Text(kMostShown));
}

void ScanController::ImgStopScanMouseMove_Click() {
  Reporting(u_.log, "ImgStopScanMouseMove_Click in frmMain", [&] {
    const auto asksNothing = [&] { return u_.page.form.Tag() == kDoNotShow; };
    if (!asksNothing() && !messages_.Ask("Are you sure you want to stop the scan process?")) {
      return;
    }
    u_.page.facts.watched = true;
    u_.page.facts.measured = false;
    ShowRunning(false);
    u_.page.lblStatus.SetCaption("");
    u_.flags.scanStopRequested = true;
    ListView& threats = u_.resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
    if (threats.Empty() && threats.Tag() != "1") {
      if (!asksNothing()) Congratulate();
      cmdDone_Click();
    }
    if (asksNothing()) {
      cmdDone_Click();
    } else {
      imgNext_Click(0);
    }
  });
}

void ScanController::StopUnasked() {
  u_.page.form.SetTag(kDoNotShow);
  ImgStopScanMouseMove_Click();
}

bool ScanController::Interrupt() {
  if (!messages_.Ask("Scanning process is in progress. Clicking [Yes] will interrupt the scanning "
                     "process. Do you want to cancel the scanning?")) {
    return false;
  }
  StopUnasked();
  return true;
}

void ScanController::imgPause_Click() {
  Reporting(u_.log, "imgPause_Click in frmMain", [&] {
    u_.page.facts.pausable = false;
    Show(u_.page);
    messages_.Inform("Click OK to resume the scanning...");
    u_.page.facts.pausable = true;
    Show(u_.page);
  });
}

void ScanController::imgNext_Click(int index) {
  Reporting(u_.log, "imgNext_Click in frmMain", [&] {
    ResultsPage& results = u_.resultsPage;
    results.txtSpywareDescription.SetText("");
    ResultsFacts& facts = results.facts;
    facts.removable = facts.restorable = results.txtSpywareDescription.Visible();
    facts.exemptable = true;
    facts.cancellable = facts.rightPane = facts.flatTree = facts.forward = facts.back = false;
    if (index == 0) facts.leftPane = true;
    Show(results);
    u_.page.facts.watched = false;
    Show(u_.page);
    results.imgNext0.SetTag(kResultMode);
    results.cmdDone.SetTag("");
    results.cmdRemoveSpywares.SetTag("");
    results.chkSelectAllDetectedSpywares.SetValue(1);
    if (index == 0) results.cmdViewResults.ClickByUser();
    if (results.vbatvwResults.Count() > 0) {
      results.vbatvwResults.Select(results.vbatvwResults.At(1));
    }
    window_.LayOut();
    u_.page.form.Refresh();
  });
}

void ScanController::cmdDone_Click() {
  Reporting(u_.log, "cmdDone_Click in frmMain", [&] {
    ResultsPage& results = u_.resultsPage;
    results.cmdDone.SetTag(kDealtWith);
    results.cmdRemoveSpywares.SetTag(kDealtWith);
    if (pages_.options.chkMemorySheild.Checked()) pages_.timers.tmrMemoryInspected.SetEnabled(true);
    results.imgNext0.SetTag("");
    pages_.removal.lblThreatLevelCount.front().SetCaption("");
    u_.page.facts.watched = results.facts.rightPane = true;
    Show(u_.page);
    Show(results);
    pages_.removal.facts.ended = false;
    Show(pages_.removal);
    window_.LayOut();
  });
}

}  // namespace quarnel
