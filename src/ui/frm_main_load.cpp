// The start of the main window, step by step, and what it does when it is shown for the first time.

#include "base/text.h"
#include "core/paths.h"
#include "core/product.h"
#include "core/startup.h"
#include "platform/shell.h"
#include "recovery/restore_note.h"
#include "scan/hard_drives.h"
#include "scan/signature_totals.h"
#include "signatures/signature_files.h"
#include "ui/forms.h"
#include "ui/frm_main.h"

namespace quarnel {

std::span<const frmMain::LoadStep> frmMain::LoadSteps() {
  static constexpr LoadStep kSteps[] = {
      {"pages on top of each other", &frmMain::LayPages},
      {"caption", &frmMain::NameWindow},
      {"scan buttons", &frmMain::LayScanButtons},
      {"safe list", &frmMain::LoadSafeList},
      {"columns of the results", &frmMain::BuildResultColumns},
      {"timers at rest", &frmMain::RestTimers},
      {"menu captions", &frmMain::NameMenus},
      {"splash", &frmMain::ShowSplash},
      {"tray icon of an earlier run", &frmMain::RemoveTrayIcon},
      {"connection timers at rest", &frmMain::RestConnectionTimers},
      {"what earlier runs left, first page", &frmMain::LoadFirstPage},
      {"schedule", &frmMain::LoadSchedule},
      {"drives", &frmMain::ListDrives},
      {"options", &frmMain::GetSettingOfFormMain},
      {"signature totals", &frmMain::ShowSignatureTotals},
      {"transfer values of the update", &frmMain::ShowTransferValues},
      {"presence of the signatures", &frmMain::TestSignatures},
      {"safe list once more", &frmMain::ReloadSafeList},
      {"tray icon", &frmMain::ShowTrayIcon},
      {"timer of the browser guard", &frmMain::StartBrowserGuardTimer},
      {"system summary", &frmMain::RefreshSystemSummary},
      {"browser settings", nullptr},
      {"update check", &frmMain::LoadUpdateCheck},
      {"balloons of the summary", &frmMain::BuildSummaryBalloons},
      {"nodes of the tools", &frmMain::AddToolNodes},
      {"browser helper objects", nullptr},
      {"startup programs", &frmMain::BeginStartupBaseline},
      {"news page", &frmMain::ShowNews},
      {"transfer component", &frmMain::RegisterTransferComponent},
      {"empty result tree", &frmMain::EmptyResultTree},
  };
  return kSteps;
}

void frmMain::Form_Load() {
  SetTag(kDoNotShow);
  for (const LoadStep& step : LoadSteps()) {
    // A step that fails must not take those behind it from the user.
    if (step.run) Reporting(s_.log, "Form_Load of frmMain", [&] { (this->*step.run)(); });
  }
}

void frmMain::LayPages() {
  results.imgNext1.SetVisible(false);
  backup.picBackupProgress.SetVisible(false);
  backup.lvwRegBackup.SetVisible(false);
}

void frmMain::NameWindow() {
  justAfterInstallation_ = s_.settings.Get(setting::kJustAfterInstallation);
  SetCaption(MainCaption(s_.settings));
}

void frmMain::LayScanButtons() {
  scan.ImgStartScanMouseMove.SetVisible(true);
  scan.ImgStopScanMouseMove.SetVisible(false);
  scan.imgPause.SetVisible(false);
}

void frmMain::LoadSafeList() {
  results.lvwIgnoredSpywares.Clear();
  safeList_.AddIgnoredSpywaresTolvw(SafeListPath(s_.platform.machine()), "", "", "", false,
                                    results.lvwIgnoredSpywares);
}

void frmMain::ReloadSafeList() {
  if (FileExists(s_.platform.files(), SafeListPath(s_.platform.machine()))) LoadSafeList();
}

void frmMain::BuildResultColumns() {
  results.vbatvwResults.SetColumns({{.header = "Threat Name"},
                                    {.header = "Threat Type"},
                                    {.header = "NOOOO", .visible = false}});
}

void frmMain::RestTimers() {
  MakeTimersEnabledOrDisableAcordingToSetting(true);
  MakeControlsEnableandDisable();
}

void frmMain::MakeControlsEnableandDisable() {
  scan.lblPercentageCompleted.SetVisible(false);
  scan.lblStatus.SetVisible(false);
  timers.tmrMemoryInspected.SetEnabled(false);
  timers.tmrScheduler.SetEnabled(false);
}

void frmMain::NameMenus() {
  menu.mnuOnlineHelp.SetCaption(s_.settings.ApplicationName() + " Online Help");
  menu.mnuHAbout.SetCaption("About " + s_.settings.ApplicationName());
}

// Stands still until the splash has unloaded itself. Touching it once more afterwards loads it
// again, hidden and with its timer running, until the options are loaded.
void frmMain::ShowSplash() {
  if (startOptions_.showSplash) forms_.splash.Touch().ShowModal();
  forms_.splash->lblWebSite.SetCaption(kCompanyName);
}

void frmMain::RestConnectionTimers() {
  timers.tmrIsConnectionOk.SetEnabled(false);
  timers.tmrBlink.SetEnabled(false);
}

void frmMain::LoadFirstPage() {
  DeleteOldExe(s_.platform.files(), s_.platform.machine());
  ClearLeftovers(s_.platform.files(), s_.platform.machine());
  ChangePicOnTabClicked({.scan = true});
}

void frmMain::ListDrives() { GetAllHardDrives(scan, flags_, s_.platform.machine(), s_.log); }

void frmMain::GetSettingOfFormMain() {
  optionLogic_.Load();
  if (s_.settings.GetOther(setting::kShowScreen) == "YES") {
    forms_.splash->tmrUnload.SetEnabled(false);
    forms_.splash.Unload();
    host().SetMousePointer(Pointer::kDefault);
    SetWindowState(WindowState::kNormal);
    tray.RemoveIcon();
    Show();
  } else {
    Minimise();
    bMainWindowShowing_ = false;
    SetTrayToolTip();
  }
}

void frmMain::ShowSignatureTotals() {
  Reporting(s_.log, "LoadTotalNoOfSignature",
            [&] { LoadTotalNoOfSignature(scan, s_.platform.files(), s_.platform.machine()); });
  scan.lblTotalSignatureInTabSignature.SetCaption(scan.lblTotalNoOfSignature.Caption());
}

void frmMain::TestSignatures() {
  bool present = false;
  AllSignatureArePresent(s_.platform.files(), s_.platform.machine(), present);
  if (present) {
    if (s_.settings.Get(setting::kShowScreen) == "True") {
      imgMainTab_Click(0);
      SetWindowState(WindowState::kNormal);
      Show();
    }
    return;
  }
  Inform("Signature files are missing. These file are required to run " +
         s_.settings.ApplicationName());
  update.cmdFTPDownloadCancel.SetVisible(false);
  update.cmdFTPDownloadCancel.SetEnabled(false);
  timers.tmrBlink.SetEnabled(true);
  imgMainTab_Click(0);
  imgMainTab_Click(4);
  SetWindowState(WindowState::kNormal);
  Show();
}

void frmMain::ShowTransferValues() {
  Reporting(s_.log, "SetFileTransferProtocolValues",
            [&] { SetFileTransferProtocolValues(update, s_.settings); });
}

void frmMain::ShowTrayIcon() {
  tray.RemoveIcon();
  tray.ShowIcon(*this);
  SetTrayToolTip();
}

void frmMain::StartBrowserGuardTimer() {
  timers.tmrPreventChangeHomePage.SetInterval(Milliseconds(2000));
  timers.tmrPreventChangeHomePage.SetEnabled(true);
}

void frmMain::LoadUpdateCheck() { optionLogic_.LoadUpdateOptions(); }

void frmMain::ShowNews() {
  const std::string path = GetPathWithSlash(s_.platform.machine().ProgramFolder()) + "News.html";
  if (!FileExists(s_.platform.files(), path)) WriteWholeFile(s_.platform.files(), path, {});
  news.wbrNewsAndReport.Navigate(path);
}

void frmMain::RegisterTransferComponent() {
  RegisterComponent(s_.platform.shell(), DataFolder(s_.platform.machine()) + "AbsoluteHttp.dll",
                    true);
}

void frmMain::EmptyResultTree() {
  vbaPrgBar.SetMin(0);
  vbaPrgBar.SetMax(10);
  results.sfttvwResults.Clear();
}

void frmMain::Form_Activate() {
  Reporting(s_.log, "Form_Activate of frmMain", [&] {
    Refresh();
    const CheckBox& minimised = options.chkMinimizeToTrayWindowAtStartup;
    if (options.chkRunAtStartup.Checked() && minimised.Checked() && minimised.Enabled() &&
        options.chkRunAtStartup.Tag().empty()) {
      options.chkRunAtStartup.SetTag("Done");
      Minimise();
    }
    if (bSummaryLoaded_) return;
    bSummaryLoaded_ = true;
    LoadSpywareList(s_.platform.files(), s_.platform.machine(), [this] { host().DoEvents(); });
    RefreshSystemSummary();
  });
}

}  // namespace quarnel
