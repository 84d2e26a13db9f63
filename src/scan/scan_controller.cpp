#include "scan/scan_controller.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "core/inifile.h"
#include "core/paths.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

constexpr std::string_view kCongratulations = "Congratulations! No Spyware found on your system.";

}  // namespace

Answer ScanController::Box(std::string_view text, MessageIcon icon, MessageButtons buttons) {
  return u_.host.MsgBox({.text = std::string(text),
                         .title = settings_.ApplicationName(),
                         .icon = icon,
                         .buttons = buttons});
}

void ScanController::Congratulate() {
  u_.resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.SetTag("1");
  Box(kCongratulations, MessageIcon::kExclamation, MessageButtons::kOk);
}

// The buttons of a scan that runs, or of one that does not: visible where they can be used.
void ScanController::ShowRunning(bool running) {
  u_.page.ImgStopScanMouseMove.SetEnabled(running);
  u_.page.ImgStartScanMouseMove.SetEnabled(!running);
  u_.page.imgPause.SetEnabled(running);
  for (Image* image :
       {&u_.page.ImgStopScanMouseMove, &u_.page.ImgStartScanMouseMove, &u_.page.imgPause}) {
    image->SetVisible(image->Enabled());
  }
}

void ScanController::ResetPage() {
  ResultsPage& results = u_.resultsPage;
  results.txtSpywareDescription.SetText("");
  u_.flags.lastProcessCount = 0;
  u_.unread.Clear();
  results.imgNext0.SetVisible(false);
  u_.page.form.SetTag(kDoNotShow);
  results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.SetTag("0");

  surroundings_.SelectScanTab();
  surroundings_.Done();
  surroundings_.SwitchSummary(false);
  for (Control* control : std::initializer_list<Control*>{
           &results.cmdDone, &results.cmdRemoveSpywares, &results.cmdCheckUncheckAll,
           &results.chkCreateRestore, &results.ImgAddToIgnoredListNormal,
           &results.cmdIgnoredProcesses}) {
    control->SetVisible(false);
  }
  results.picSearchResultsLeftWindow.SetVisible(true);
  u_.page.picScanningProcessRightWindow.SetVisible(true);
  u_.page.pbgMain.SetVisible(true);

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
    ResetPage();
    surroundings_.MakeTimersEnabledOrDisableAcordingToSetting(true);
    ShowRunning(true);
    u_.results.RecomputeCounters();
    u_.flags.scanStopRequested = false;
    u_.page.lblStatus.SetCaption("");
    u_.page.lblStatus.SetVisible(false);
    if (const std::string_view total = Trim(u_.page.lblTotalNoOfSignature.Caption());
        total != "0") {
      ShowMaximum(Val(total));
    }
    const DateTime start = u_.host.clock().Now();
    const std::string historyKey = SingleText(static_cast<float>(SecondsOfDay(start)));
    settings_.Save(setting::kScanStart, GeneralDateText(start));
    if (surroundings_.MemoryShieldOn()) surroundings_.StopMemoryTimer();

    StartScanning();

    u_.page.ImgStopScanMouseMove.SetEnabled(false);
    WriteHistory(historyKey, GeneralDateText(start));
    settings_.Save(setting::kScanEnd, GeneralDateText(u_.host.clock().Now()));
    surroundings_.RefreshSystemSummary();
    SaveLastScanResults();
    EndScan();
  });
}

void ScanController::EndScan() {
  ResultsPage& results = u_.resultsPage;
  u_.page.lblPercentageCompleted.SetVisible(false);
  ShowRunning(false);
  u_.results.RecomputeCounters();
  u_.page.lblStatus.SetCaption(u_.flags.scanStopRequested ? "Scanning cancelled."
                                                          : "Scanning completed.");
  surroundings_.MakeTimersEnabledOrDisableAcordingToSetting(false);
  ListView& threats = results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  if (threats.Empty()) {
    if (threats.Tag() != "1") {
      Congratulate();
      surroundings_.SwitchSummary(true);
      surroundings_.Done();
    }
    results.imgNext0.SetVisible(false);
    results.imgNext1.SetVisible(false);
    return;
  }
  surroundings_.Next();
  if (u_.flags.scheduledScanRunning) {
    Box("Scheduled scan complete. Click [Next >>] button to proceed to the removal process.",
        MessageIcon::kInformation, MessageButtons::kOk);
  }
}

void ScanController::WriteHistory(std::string_view key, std::string_view start) {
  cInifile history(u_.files);
  history.SetPath(GetPathWithSlash(u_.machine.ProgramFolder()) + "ScanHistory.ini");
  history.SetSection("Scan History");
  history.SetKey(key);
  history.SetValue(Join({std::string(start), GeneralDateText(u_.host.clock().Now()),
                         u_.page.lblTotalSpywares.Caption()},
                        ";"));
}

std::vector<WholeFile> ScanController::LastScanResults() const {
  struct Dump {
    std::string_view file;
    const ListView& list;
  };
  const ResultsPage& results = u_.resultsPage;
  const std::array<Dump, 4> dumps = {
      Dump{"10001.qks", results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved},
      Dump{"10002.qks", results.lvwTrackingCookieObjectrecognized},
      Dump{"10003.qks", results.lvwRegistryEntriesFound},
      Dump{"10004.qks", results.lvwFilesToBeDeleted},
  };
  std::vector<WholeFile> files;
  for (const Dump& dump : dumps) {
    std::string text;
    for (const ListRow& row : dump.list.Rows()) {
      text += row.text;
      for (size_t column = 1; column < dump.list.ColumnHeaders().size(); ++column) {
        text.append("[[]]").append(row.SubItem(column));
      }
      text += "\r\n";
    }
    files.push_back({DataFolder(u_.machine) + std::string(dump.file), std::move(text)});
  }
  return files;
}

void ScanController::SaveLastScanResults() {
  const std::vector<WholeFile> results = LastScanResults();
  std::vector<WholeFile> all = results;
  all.push_back(UnreadFile(u_.machine, u_.unread));
  // What was not read is of less weight: when not all can be saved, the results are.
  if (!IgnoringErrors([&] { ReplaceWholeFiles(u_.files, all); })) {
    ReplaceWholeFiles(u_.files, results);
  }
}

void ScanController::NextPhase(std::string_view caption) {
  u_.page.form.Refresh();
  u_.page.pbgMain.SetValue(0);
  u_.page.lblPercentageCompleted.SetCaption(caption);
}

void ScanController::BeginPhases() {
  u_.page.form.Refresh();
  u_.resultsPage.vbatvwResults.Clear();
  u_.page.lblMD5Scanned.SetCaption("0");
  u_.page.lblMD5Infected.SetCaption("0");
  u_.resultsPage.sfttvwResults.SetVisible(true);
  for (Label* label : {&u_.page.lblScanning, &u_.page.lblPercentageCompleted}) {
    label->SetCaption("");
    label->SetVisible(true);
  }
  u_.page.pbgMain.SetValue(0);
  u_.page.pbgMain.SetVisible(true);
}

bool ScanController::Present(std::string_view signatureFile) {
  return SignaturePresent(u_.files, u_.machine, signatureFile);
}

// A torn option must not make a scan find less.
bool ScanController::IsOn(const SettingKey& option) {
  return ToBooleanOr(settings_.GetOther(option), true);
}

// The bar's maximum is what the file's first line says, whatever it holds.
void ScanController::MeasureBy(std::string_view signatureFile) {
  ShowMaximum(GetSignatureCount(u_.files, u_.machine, signatureFile));
}

// A number below zero is torn, and no reason to end a scan.
void ScanController::ShowMaximum(double maximum) {
  u_.page.pbgMain.SetMax(std::max(maximum, u_.page.pbgMain.Min()));
}

void ScanController::CookiePhase() {
  u_.page.form.Refresh();
  if (!IsOn(setting::kScanCookies)) return;
  u_.page.lblStatus.SetCaption("Scanning Cookies...");
  u_.page.lblPercentageCompleted.SetCaption("Scanning Cookies...         ");
  if (Present(signature_file::kBlockedCookies)) {
    u_.resultsPage.lvwTrackingCookieObjectrecognized.Clear();
    phases_.cookies.DeleteSelectedCookies(u_.resultsPage.lvwTrackingCookieObjectrecognized, false);
  }
  u_.page.lblStatus.SetCaption("");
}

void ScanController::MemoryPhase() {
  NextPhase("Scanning Memory - 0% Completed");
  if (!IsOn(setting::kSweepMemory)) return;
  u_.page.lblStatus.SetCaption("Inspecting memory...");
  if (!Present(signature_file::kPrograms)) return;
  MeasureBy(signature_file::kPrograms);
  switch (GetOSVersionInfo(u_.machine, u_.host, settings_.ApplicationName())) {
    case static_cast<int>(SystemFamily::kWindows9x):
      phases_.memory.CountProcessIn95();
      break;
    case static_cast<int>(SystemFamily::kWindowsNt):
      phases_.memory.MemoryItemsInspection(u_.page.pbgMain);
      break;
    default:
      break;
  }
}

void ScanController::RegistryPhase() {
  NextPhase("Scanning Registry - 0% Completed");
  if (!IsOn(setting::kScanRegistry)) return;
  if (!Present(signature_file::kRegistry)) return;
  MeasureBy(signature_file::kRegistry);
  phases_.registry.ScanRegistry();
}

void ScanController::FilePhase() {
  u_.page.lblStatus.SetVisible(true);
  NextPhase("Scanning Files/Folder - 0% Completed");
  if (!Present(signature_file::kFiles)) return;
  MeasureBy(signature_file::kFiles);
  phases_.files.ScanSignatureFiles();
}

void ScanController::DeepPhase() {
  if (ValLong(settings_.Get(setting::kDeepScan)) != 1) return;
  u_.page.form.Refresh();
  for (size_t i = 0; i < u_.page.lvwHardDrives.Count(); ++i) {
    if (u_.flags.scanStopRequested) return;
    const ListRow row = u_.page.lvwHardDrives.At(i);
    // Each drive ends with the signatures forgotten, so each loads them.
    if (row.checked && phases_.deep.LoadSignatureHashText())
      phases_.deep.ScanDrive(row.key + ":\\");
  }
}

void ScanController::EndPhases() {
  u_.page.form.Refresh();
  u_.page.pbgMain.SetVisible(false);
  u_.page.lblStatus.SetCaption("");
  u_.page.pbgMain.SetValue(0);
}

void ScanController::StartScanning() {
  Reporting(u_.log, "StartScanning in frmMain", [&] {
    BeginPhases();
    using Phase = void (ScanController::*)();
    for (const Phase phase :
         {&ScanController::CookiePhase, &ScanController::MemoryPhase,
          &ScanController::RegistryPhase, &ScanController::FilePhase, &ScanController::DeepPhase}) {
      if (u_.flags.scanStopRequested) return;
      // A failure ends its own phase only.
      Reporting(u_.log, "StartScanning in frmMain", [&] { (this->*phase)(); });
    }
    if (!u_.flags.scanStopRequested) EndPhases();
  });
}

void ScanController::ImgStopScanMouseMove_Click() {
  Reporting(u_.log, "ImgStopScanMouseMove_Click in frmMain", [&] {
    const auto asksNothing = [&] { return u_.page.form.Tag() == kDoNotShow; };
    if (!asksNothing() && Box("Are you sure you want to stop the scan process?",
                              MessageIcon::kQuestion, MessageButtons::kYesNo) != Answer::kYes) {
      return;
    }
    u_.page.picScanningProcessRightWindow.SetVisible(true);
    ShowRunning(false);
    u_.page.pbgMain.SetVisible(false);
    u_.page.lblStatus.SetCaption("");
    u_.flags.scanStopRequested = true;
    ListView& threats = u_.resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
    if (threats.Empty() && threats.Tag() != "1") {
      if (!asksNothing()) Congratulate();
      surroundings_.Done();
    }
    if (asksNothing()) {
      surroundings_.Done();
    } else {
      surroundings_.Next();
    }
  });
}

void ScanController::imgPause_Click() {
  Reporting(u_.log, "imgPause_Click in frmMain", [&] {
    u_.page.imgPause.SetEnabled(false);
    Box("Click OK to resume the scanning...", MessageIcon::kInformation, MessageButtons::kOk);
    u_.page.imgPause.SetEnabled(true);
  });
}

}  // namespace quarnel
