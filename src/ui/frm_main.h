#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "controls/tray_icon.h"
#include "recovery/backup.h"
#include "recovery/removal.h"
#include "recovery/restore.h"
#include "scan/file_scan.h"
#include "scan/results.h"
#include "scan/safe_list.h"
#include "scan/scan_controller.h"
#include "scan/scan_page.h"
#include "schedule/scheduler.h"
#include "ui/advanced_tools_page.h"
#include "ui/hijack_page.h"
#include "ui/news_page.h"
#include "ui/options_page.h"
#include "ui/services.h"
#include "ui/summary_page.h"
#include "ui/tab_strip.h"
#include "ui/tray.h"
#include "ui/update_page.h"

namespace quarnel {

class Forms;

// The timers of the main window, as designed: interval and whether they start switched on.
struct MainTimers {
  Form& form;
  Timer tmrScheduler{form, "tmrScheduler", Milliseconds(10), true};
  Timer tmrMemoryInspected{form, "tmrMemoryInspected", Milliseconds(10000), true};
  Timer tmrPreventChangeHomePage{form, "tmrPreventChangeHomePage", Milliseconds(10000), true};
  Timer tmrBHO{form, "tmrBHO", Milliseconds(60000), true};
  Timer tmrStartup{form, "tmrStartup", Milliseconds(5000), false};
  Timer tmrLiveUpadate{form, "tmrLiveUpadate", Milliseconds(60000), false};
  Timer tmrAlertEnableDisable{form, "tmrAlertEnableDisable", Milliseconds(1000), true};
  Timer tmrBlink{form, "tmrBlink", Milliseconds(800), true};
  Timer tmrIsConnectionOk{form, "tmrIsConnectionOk", Milliseconds(10000), true};
};

// How the front wants the program to come up.
struct StartOptions {
  bool showSplash = true;
  // Whether the set-up wizard runs at the first start of a user.
  bool runWizard = true;
};

// The one window that owns nearly all state. It is built of the pages, wires their events, and
// leaves the work to the subsystems.
class frmMain : public Form, private ScanSurroundings, private ScheduleSurroundings {
 public:
  frmMain(Services services, Forms& forms, StartOptions options);

  ScanPage scan{*this};
  ResultsPage results{*this};
  RemovalPage removal{*this};
  OptionsPage options{*this};
  TabStrip tabs{*this};
  MainMenu menu{*this};
  UpdatePage update{*this};
  SchedulePage schedule{*this};
  SummaryPage summary{*this};
  BackupPage backup{*this};
  HijackPage hijack{*this};
  AdvancedToolsPage tools{*this};
  NewsPage news{*this};
  MainTimers timers{*this};
  ProgressBar vbaPrgBar{*this, "vbaPrgBar", ProgressBar::Range::kLoose};
  TrayIcon trayIcon{*this, "trayIcon"};
  clsTray tray{trayIcon};

  // Selects a page; asks first when a scan runs.
  void imgMainTab_Click(int index);
  // Shows the scan page's result and goes on to the removal (0), or back to the summary (1).
  void imgNext_Click(int index);
  void cmdDone_Click();
  // A scan as by a click on the start button; returns when it is over.
  void StartScan() override;
  // No closing message for a scheduled scan.
  void ForgetScheduledScan() { flags_.scheduledScanRunning = false; }
  // Stops a running scan if the user agrees; false when he does not.
  bool InterruptScan();
  void StopScanUnasked();

  // Sets the window minimised and keeps the state that it had.
  void Minimise();
  // Takes the window off the screen, for the icon to bring it back; without a tray it is minimised.
  void HideToTray();
  // Shows the window in the state that it had before.
  void RestoreFromTray();
  // The icon's events come as movements of the mouse: `x` in twips tells which.
  void Form_MouseMove(double x);
  void SetTrayToolTip();
  // Ends the program at once, icon and all.
  void EndProgram();
  // A transfer of the update failed for want of a connection: the window is laid out anew when the
  // message about it looks next.
  bool connectionFlag = false;
  // The flag that tmrIsConnectionOk clears.
  bool connectionIsOk = false;

  void MakeTimersEnabledOrDisableAcordingToSetting(bool leaveAlone) override;
  // What the last click on Remove did; nothing when it came to no removal.
  const std::optional<RemovalReport>& LastRemoval() const { return removalLogic_.LastReport(); }
  // What the last scan could not read.
  const Unread& CouldNotRead() const { return unread_; }
  bool MainWindowShowing() const { return bMainWindowShowing_; }
  bool StartupBaselineDone() const { return bStartupBaselineDone_; }

 protected:
  void Form_Load() override;
  void Form_Activate() override;
  void Form_Resize() override;
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override;
  void Form_Unload() override;

 private:
  // One step of the start. A step without a procedure belongs to a subsystem that has not joined
  // the window yet.
  struct LoadStep {
    std::string_view name;
    void (frmMain::*run)();
  };
  static std::span<const LoadStep> LoadSteps();

  void LayPages();
  void NameWindow();
  void LayScanButtons();
  void LoadSafeList();
  void BuildResultColumns();
  void RemoveTrayIcon() { tray.RemoveIcon(); }
  void RestTimers();
  void MakeControlsEnableandDisable();
  void NameMenus();
  void ShowSplash();
  void RestConnectionTimers();
  void LoadFirstPage();
  void ListDrives();
  void LoadSchedule() { scheduler_.LoadSchedule(); }
  void ShowTransferValues();
  void GetSettingOfFormMain();
  void ShowSignatureTotals();
  void TestSignatures();
  void ReloadSafeList();
  void ShowTrayIcon();
  void StartBrowserGuardTimer();
  void LoadUpdateCheck();
  void BuildSummaryBalloons() { summaryLogic_.CreateBalloons(); }
  void AddToolNodes() { tools.AddNodes(); }
  void BeginStartupBaseline() { bStartupBaselineDone_ = true; }
  void ShowNews();
  void RegisterTransferComponent();
  void EmptyResultTree();

  // Which page shows; exactly one argument is true, or none.
  struct ShownPages {
    bool scan = false, configuration = false, hijack = false, schedule = false, liveUpdate = false,
         bho = false;
  };
  void ChangePicOnTabClicked(const ShownPages& shown);
  void MarkTab(int index);
  void SelectTab(int index);
  void ShowResultMode();
  bool AskToCloseResults();

  void WireScan();
  void WireResults();
  void WireRemoval();
  // Runs a removal or a restore. A second click, another of these jobs and a scan are left undone
  // until it has ended: they would work on the same lists and files in the middle of it.
  void RunAlone(const Handler& job);
  RemovalSurroundings SurroundingsOfRemoval();
  void WireMenu();
  void WireTimers();
  void WireTray();
  void KeepWindowState();
  void mnuFCheckForUpdates_Click();
  void OpenMakerPageReporting(std::string_view label, std::string_view page);
  void tmrMemoryInspected_Timer();
  void tmrPreventChangeHomePage_Timer();
  void tmrBHO_Timer();
  void tmrStartup_Timer();
  void tmrLiveUpadate_Timer();
  void tmrIsConnectionOk_Timer();
  OptionEffects Effects();
  void cmdViewSpywareDetail_Click();
  void Command1_Click();
  void cmdRestore_Click();
  void ImgAddToIgnoredListNormal_Click();
  Answer Inform(std::string_view text);

  // ScheduleSurroundings
  bool ScanIsRunning() const override { return ScanRuns(scan) || recoveryRuns_; }
  void ShowFirstPage() override { ChangePicOnTabClicked({.scan = true}); }

  // ScanSurroundings
  void SelectScanTab() override;
  void SwitchSummary(bool show) override;
  void Done() override { cmdDone_Click(); }
  void Next() override { imgNext_Click(0); }
  void RefreshSystemSummary() override { summaryLogic_.RefreshSystemSummary(); }
  bool MemoryShieldOn() const override { return options.chkMemorySheild.Checked(); }
  void StopMemoryTimer() override { timers.tmrMemoryInspected.SetEnabled(false); }

  Services s_;
  Forms& forms_;
  StartOptions startOptions_;
  ScanFlags flags_;
  Unread unread_;
  SafeList safeList_;
  Results resultsModel_;
  ScanContext scanContext_;
  CookieScan cookieScan_;
  MemoryScan memoryScan_;
  RegistryScan registryScan_;
  FileScan fileScan_;
  HashPool hashPool_;
  DeepScan deepScan_;
  ScanController controller_;
  Backup backupLogic_;
  Removal removalLogic_;
  Restore restore_;
  Options optionLogic_;
  Scheduler scheduler_;
  Summary summaryLogic_;

  std::string justAfterInstallation_ = "TRUE";
  bool recoveryRuns_ = false;
  int mCurrentTab_ = 0;
  bool bMainWindowShowing_ = false;
  bool bSummaryLoaded_ = false;
  bool bStartupBaselineDone_ = false;
  int minutesSinceCheck_ = 0;
  int startupTicks_ = 0;
  int connectionTicks_ = 0;
};

}  // namespace quarnel
