// The start of the main window, step by step, and what it does when it is shown for the first time.

#include "core/messages.h"
#include "core/paths.h"
#include "core/product.h"
#include "core/startup.h"
#include "platform/shell.h"
#include "ui/forms.h"
#include "ui/main/frm_main.h"

namespace quarnel {

std::span<const frmMain::LoadStep> frmMain::LoadSteps() {
  static constexpr LoadStep kSteps[] = {
      [](frmMain& window) { window.LayPages(); },
      [](frmMain& window) { window.engine_.startups().LoadJustAfterInstallation(); },
      [](frmMain& window) { window.SetCaption(MainCaption(window.s_.settings)); },
      [](frmMain& window) { window.LayScanButtons(); },
      [](frmMain& window) { window.engine_.results().LoadSafeList(); },
      [](frmMain& window) { window.engine_.results().BuildColumns(); },
      [](frmMain& window) { window.RestTimers(); },
      [](frmMain& window) { window.NameMenus(); },
      [](frmMain& window) { window.ShowSplash(); },
      // One that an earlier run has left.
      [](frmMain& window) { window.tray.RemoveIcon(); },
      [](frmMain& window) {
        window.timers.tmrIsConnectionOk.SetEnabled(false);
        window.timers.tmrBlink.SetEnabled(false);
      },
      [](frmMain& window) { window.LoadFirstPage(); },
      [](frmMain& window) { window.engine_.scheduler().LoadSchedule(); },
      [](frmMain& window) { window.engine_.ListDrives(); },
      [](frmMain& window) { window.GetSettingOfFormMain(); },
      [](frmMain& window) { window.engine_.ShowSignatureTotals(); },
      [](frmMain& window) { window.ShowTransferValues(); },
      [](frmMain& window) { window.TestSignatures(); },
      [](frmMain& window) { window.engine_.results().ReloadSafeList(); },
      [](frmMain& window) { window.ShowTrayIcon(); },
      [](frmMain& window) { window.StartBrowserGuardTimer(); },
      [](frmMain& window) { window.engine_.LoadLastScan(); },
      [](frmMain& window) { window.RefreshSummary(); },
      [](frmMain& window) { window.engine_.browserSettings().LoadBrowserSettings(); },
      [](frmMain& window) { window.engine_.browserSettings().LoadAllowedBlockedURLs(); },
      [](frmMain& window) { window.engine_.options().LoadUpdateOptions(); },
      [](frmMain& window) { window.engine_.summary().CreateBalloons(); },
      [](frmMain& window) { window.engine_.tools().AddNodes(); },
      [](frmMain& window) { window.engine_.helpers().LoadBHOList(window.tools.lvwBHOs); },
      [](frmMain& window) { window.LoadStartups(); },
      [](frmMain& window) { window.newsLogic_.ShowFile(); },
      [](frmMain& window) { window.RegisterTransferComponent(); },
      [](frmMain& window) { window.EmptyResultTree(); },
  };
  return kSteps;
}

void frmMain::Form_Load() {
  SetTag(kDoNotShow);
  for (const LoadStep step : LoadSteps()) {
    // A step that fails must not take those behind it from the user.
    Reporting(s_.log, "Form_Load of frmMain", [&] { step(*this); });
  }
  formLoaded_ = true;
}

void frmMain::LayPages() {
  results.facts.back = false;
  quarnel::Show(results);
  backup.picBackupProgress.SetVisible(false);
  backup.lvwRegBackup.SetVisible(false);
}

void frmMain::LayScanButtons() {
  scan.facts.running = false;
  quarnel::Show(scan);
}

void frmMain::RestTimers() {
  scan.facts.percent = scan.facts.told = false;
  quarnel::Show(scan);
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

void frmMain::LoadFirstPage() {
  DeleteOldExe(s_.platform.files(), s_.platform.machine());
  engine_.ClearLeftoversOfRestores();
  ShowPage(Tab::kScan);
}

void frmMain::GetSettingOfFormMain() {
  engine_.options().Load(startOptions_.registersItself);
  if (s_.settings.Get(setting::kShowScreenWithOptions) == "YES") {
    forms_.splash->tmrUnload.SetEnabled(false);
    forms_.splash.Unload();
    host().SetMousePointer(Pointer::kDefault);
    SetWindowState(WindowState::kNormal);
    tray.RemoveIcon();
    Show();
  } else {
    RestInTray();
    bMainWindowShowing_ = false;
  }
}

void frmMain::TestSignatures() {
  if (engine_.SignaturesPresent()) {
    if (s_.settings.Get(setting::kShowScreen) == "True") {
      OpenTab(Tab::kScan);
      SetWindowState(WindowState::kNormal);
      Show();
    }
    return;
  }
  Messages(s_.host, s_.settings)
      .Inform("Signature files are missing. These file are required to run " +
              s_.settings.ApplicationName());
  engine_.update().HideCancel();
  timers.tmrBlink.SetEnabled(true);
  OpenTab(Tab::kScan);
  OpenTab(Tab::kLiveUpdate);
  SetWindowState(WindowState::kNormal);
  Show();
}

void frmMain::ShowTransferValues() {
  Reporting(s_.log, "SetFileTransferProtocolValues",
            [&] { engine_.update().SetFileTransferProtocolValues(); });
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

// It allows, blocks and asks, as the ticks of its timer do.
void frmMain::LoadStartups() {
  if (startOptions_.keepsGuard) engine_.startups().LoadStartups();
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
    if (formLoaded_ && options.chkRunAtStartup.Checked() && minimised.Checked() &&
        minimised.Enabled() && options.chkRunAtStartup.Tag().empty()) {
      options.chkRunAtStartup.SetTag("Done");
      HideToTray();
    }
    if (bSummaryLoaded_) return;
    bSummaryLoaded_ = true;
    LoadSpywareList(s_.platform.files(), s_.platform.machine(), [this] { host().DoEvents(); });
    RefreshSummary();
  });
}

}  // namespace quarnel
