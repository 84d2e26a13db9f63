#include "ui/frm_main.h"

#include <algorithm>

#include "base/text.h"
#include "core/paths.h"
#include "core/product.h"
#include "platform/shell.h"
#include "signatures/levels.h"
#include "signatures/signature_files.h"
#include "ui/forms.h"

namespace quarnel {

frmMain::frmMain(Services services, Forms& forms, StartOptions startOptions)
    : Form(services.host, "frmMain"),
      s_(services),
      forms_(forms),
      startOptions_(startOptions),
      safeList_(s_.platform.files(), s_.log),
      resultsModel_(
          results,
          [this](std::string_view name) {
            return GetThreatLevel(s_.platform.files(), s_.platform.machine(), name);
          },
          s_.host, s_.log),
      scanContext_{.page = scan,
                   .resultsPage = results,
                   .flags = flags_,
                   .unread = unread_,
                   .results = resultsModel_,
                   .files = s_.platform.files(),
                   .machine = s_.platform.machine(),
                   .host = s_.host,
                   .log = s_.log},
      cookieScan_(scanContext_, s_.settings.ApplicationName()),
      // The alert's window joins with the guards; its timer does not run before.
      memoryScan_(scanContext_, s_.platform.processes(), [](const MemoryAlert&) {}),
      registryScan_(scanContext_, s_.platform.registry()),
      fileScan_(scanContext_),
      hashPool_(std::max(1U, std::thread::hardware_concurrency())),
      deepScan_(scanContext_, &hashPool_),
      controller_(scanContext_,
                  {.cookies = cookieScan_,
                   .memory = memoryScan_,
                   .registry = registryScan_,
                   .files = fileScan_,
                   .deep = deepScan_},
                  *this, s_.settings),
      backupLogic_({.page = backup,
                    .results = results,
                    .files = s_.platform.files(),
                    .registry = s_.platform.registry(),
                    .machine = s_.platform.machine(),
                    .host = s_.host,
                    .log = s_.log}),
      removalLogic_({.page = removal,
                     .scan = scan,
                     .results = results,
                     .model = resultsModel_,
                     .cookies = cookieScan_,
                     .files = s_.platform.files(),
                     .registry = s_.platform.registry(),
                     .processes = s_.platform.processes(),
                     .machine = s_.platform.machine(),
                     .desktop = s_.platform.desktop(),
                     .settings = s_.settings,
                     .host = s_.host,
                     .log = s_.log},
                    SurroundingsOfRemoval()),
      restore_({.page = backup,
                .files = s_.platform.files(),
                .registry = s_.platform.registry(),
                .machine = s_.platform.machine(),
                .settings = s_.settings,
                .host = s_.host,
                .log = s_.log}),
      optionLogic_({.page = options,
                    .results = results,
                    .scan = scan,
                    .settings = s_.settings,
                    .registry = s_.platform.registry(),
                    .machine = s_.platform.machine(),
                    .log = s_.log},
                   Effects()),
      scheduler_({.page = schedule,
                  .tmrScheduler = timers.tmrScheduler,
                  .settings = s_.settings,
                  .host = s_.host,
                  .log = s_.log,
                  .surroundings = *this}),
      summaryLogic_({.page = summary,
                     .options = options,
                     .schedule = schedule,
                     .results = results,
                     .settings = s_.settings}) {
  SetBorder(BorderStyle::kSizable);
  for (size_t i = 0; i < TabStrip::kCount; ++i) {
    tabs.imgMainTab[i]->Click = [this, i] { imgMainTab_Click(static_cast<int>(i)); };
  }
  WireScan();
  WireResults();
  WireRemoval();
  WireMenu();
  WireTimers();
  WireTray();
}

void frmMain::WireScan() {
  scan.ImgStartScanMouseMove.Click = [this] { StartScan(); };
  scan.ImgStartScanMouseMove.MouseDown = [this] { ForgetScheduledScan(); };
  scan.ImgStopScanMouseMove.Click = [this] { controller_.ImgStopScanMouseMove_Click(); };
  // A user's press takes the mark away, so that the click which follows asks.
  scan.ImgStopScanMouseMove.MouseDown = [this] { SetTag(""); };
  results.cmdcancel.MouseDown = [this] { SetTag(""); };
  results.cmdcancel.Click = [this] { controller_.ImgStopScanMouseMove_Click(); };
  scan.imgPause.Click = [this] { controller_.imgPause_Click(); };
}

void frmMain::WireResults() {
  results.vbatvwResults.NodeCheck = [this](const TreeNodeRef& node) {
    resultsModel_.vbatvwResults_nodeCheck(node);
  };
  results.vbatvwResults.NodeClick = [this](const TreeNodeRef& node) {
    resultsModel_.vbatvwResults_nodeClick(node);
  };
  results.chkSelectAllDetectedSpywares.Click = [this] {
    resultsModel_.chkSelectAllDetectedSpywares_Click();
  };
  results.cmdCheckUncheckAll.Click = [this] { resultsModel_.cmdCheckUncheckAll_Click(); };
  results.cmdViewResults.Click = [this] {
    results.picSearchResultsLeftWindow.SetVisible(true);
    results.picResultsRightWindow.SetVisible(true);
  };
  results.cmdViewSpywareDetail.Click = [this] { cmdViewSpywareDetail_Click(); };
  results.Command1.Click = [this] { Command1_Click(); };
  backup.cmdRestore.Click = [this] { RunAlone([this] { cmdRestore_Click(); }); };
  results.ImgAddToIgnoredListNormal.Click = [this] { ImgAddToIgnoredListNormal_Click(); };
  results.imgNext0.Click = [this] { imgNext_Click(0); };
  results.imgNext1.Click = [this] { imgNext_Click(1); };
  results.cmdDone.Click = [this] { cmdDone_Click(); };
}

OptionEffects frmMain::Effects() {
  return {.refreshSummary = [this] { RefreshSystemSummary(); },
          .switchMemoryTimer = [this](bool on) { timers.tmrMemoryInspected.SetEnabled(on); },
          .switchStartupTimer = [this](bool on) { timers.tmrStartup.SetEnabled(on); },
          .switchUpdateTimer = [this](bool on) { timers.tmrLiveUpadate.SetEnabled(on); },
          .activeXShieldClicked =
              [this] {
                if (SignaturePresent(s_.platform.files(), s_.platform.machine(),
                                     signature_file::kActiveX)) {
                  return;
                }
                const std::string question =
                    std::string(signature_file::kActiveX) +
                    " is missing or it has been corrupted. Would you like to download this "
                    "signature?";
                const Answer answer = s_.host.MsgBox({.text = question,
                                                      .title = s_.settings.ApplicationName(),
                                                      .icon = MessageIcon::kInformation,
                                                      .buttons = MessageButtons::kYesNo});
                if (answer == Answer::kYes) imgMainTab_Click(4);
              }};
}

Answer frmMain::Inform(std::string_view text) {
  return s_.host.MsgBox({.text = std::string(text),
                         .title = s_.settings.ApplicationName(),
                         .icon = MessageIcon::kInformation});
}

void frmMain::SelectScanTab() {
  MarkTab(0);
  ChangePicOnTabClicked({.scan = true});
}

void frmMain::SwitchSummary(bool show) {
  summary.picSummary.SetVisible(show);
  summary.picSummaryBase.SetVisible(show);
  scan.picResultSummary.SetVisible(!show);
}

void frmMain::imgNext_Click(int index) {
  Reporting(s_.log, "imgNext_Click in frmMain", [&] {
    results.txtSpywareDescription.SetText("");
    const bool visible = results.txtSpywareDescription.Visible();
    for (Control* control : std::initializer_list<Control*>{
             &results.cmdRemoveSpywares, &results.cmdCheckUncheckAll, &results.chkCreateRestore}) {
      control->SetVisible(visible);
    }
    scan.picScanningProcessRightWindow.SetVisible(false);
    results.cmdcancel.SetVisible(false);
    results.imgNext0.SetTag(kResultMode);
    results.picResultsRightWindow.SetVisible(false);
    results.sfttvwResults.SetVisible(false);
    results.imgNext0.SetVisible(false);
    results.imgNext1.SetVisible(false);
    results.ImgAddToIgnoredListNormal.SetVisible(true);
    results.cmdDone.SetTag("");
    results.cmdRemoveSpywares.SetTag("");
    results.chkSelectAllDetectedSpywares.SetValue(1);
    if (index == 0) {
      results.picSearchResultsLeftWindow.SetVisible(true);
      results.cmdViewResults.ClickByUser();
    }
    if (results.vbatvwResults.Count() > 0) {
      results.vbatvwResults.Select(results.vbatvwResults.At(1));
    }
    Form_Resize();
    Refresh();
  });
}

void frmMain::StartScan() {
  if (!recoveryRuns_) controller_.ImgStartScanMouseMove_Click();
}

void frmMain::cmdViewSpywareDetail_Click() {
  Reporting(s_.log, "cmdViewSpywareDetail_Click in frmMain", [&] {
    const ListView& threats = results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
    if (threats.Empty()) {
      Inform("There is no Spyware/Adware in the results list.");
      return;
    }
    const auto row = threats.SelectedRow();
    if (!row) return;
    OpenInBrowser(s_.platform.shell(), s_.platform.machine(), s_.platform.files(), host(),
                  std::string(kMakerPages) + "productlist.php?id=" + threats.At(*row).tag, "htm",
                  s_.settings.ApplicationName());
  });
}

void frmMain::Command1_Click() {
  Reporting(s_.log, "Command1_Click in frmMain", [&] {
    host().SetClipboardText(resultsModel_.ResultsText());
    s_.host.MsgBox({.text = "Copied to Clipboard", .title = s_.settings.ApplicationName()});
  });
}

void frmMain::cmdRestore_Click() {
  Reporting(s_.log, "cmdRestore_Click in frmMain", [&] {
    forms_.restore.Touch().ShowModal();
    if (!forms_.chosenRestorePoint.empty()) restore_.RestoreSpyware(forms_.chosenRestorePoint);
  });
}

void frmMain::ImgAddToIgnoredListNormal_Click() {
  const bool moved = safeList_.AddTickedTraces(SafeListPath(s_.platform.machine()), results);
  Inform(moved ? "Added selected spyware successfully to [Ignored Spyware] List."
               : "Select the item from the [Spyware Results] list to move to [Ignored Spyware] "
                 "list.");
}

void frmMain::Form_Resize() {
  if (StateOfWindow() == WindowState::kMinimised) {
    bMainWindowShowing_ = false;
    return;
  }
  // The desktop minimises windows, too, and tells nobody what they were before.
  KeepWindowState();
  if (StateOfWindow() == WindowState::kNormal) {
    SetShowInTaskbar(true);
    bMainWindowShowing_ = true;
    Form_Activate();
  }
}

void frmMain::Form_QueryUnload(bool& cancel, UnloadMode mode) {
  if (mode == UnloadMode::kSessionEnd) return;
  Reporting(s_.log, "ImgCloseApplication_Click in frmMain", [&] {
    cancel = true;
    if (Val(s_.settings.Get(setting::kSkipMessages)) == 0) {
      forms_.close.Touch().ShowModal();
      optionLogic_.SynchroniseCloseOptions();
    }
    const auto answer = static_cast<Answer>(ValLong(s_.settings.GetOther(setting::kButton)));
    if (answer == Answer::kNo) {
      HideToTray();
    } else if (answer == Answer::kCancel) {
      return;
    } else if (ScanRuns(scan)) {
      Inform("Scanning is in progress...! Please stop the scan first.");
    } else if (DownloadRuns(update)) {
      Inform(s_.settings.ApplicationName() +
             " is downloading latest signature. However if you wish to close the application, "
             "please click on Cancel to stop downloading.");
    } else {
      EndProgram();
    }
  });
}

void frmMain::Form_Unload() {
  IgnoringErrors([&] {
    const std::string declined = SignaturePath(s_.platform.machine(), signature_file::kDeclined);
    if (FileExists(s_.platform.files(), declined)) s_.platform.files().Delete(declined);
  });
}

}  // namespace quarnel
