#pragma once

#include <array>
#include <functional>
#include <memory>
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
#include "ui/options_page.h"
#include "ui/services.h"
#include "ui/summary_page.h"

namespace quarnel {

class Forms;

// The tab strip and the pages behind it.
struct TabStrip {
  Form& form;
  static constexpr size_t kCount = 7;
  std::array<std::unique_ptr<Image>, kCount> imgMainTab;   // a tab at rest
  std::array<std::unique_ptr<Image>, kCount> imgMainTabC;  // its selected look
  Panel picLeft{form, "picLeft"};

  Panel picSpywareAdware{form, "picSpywareAdware"};
  Panel picSpywareAdwareLeftWindow{form, "picSpywareAdwareLeftWindow"};
  Panel picSpywareAdwareRightWindow{form, "picSpywareAdwareRightWindow"};
  Panel picHiJackRestore{form, "picHiJackRestore"};
  Panel PicSecondTabConfiguration{form, "PicSecondTabConfiguration"};
  Panel PicFifthTabSchedule{form, "PicFifthTabSchedule"};
  Panel PicSixthTabLiveUpdate{form, "PicSixthTabLiveUpdate"};
  Panel picBHOLeftView{form, "picBHOLeftView"};
  Panel picNewsAndReport{form, "picNewsAndReport"};
};

struct MainMenu {
  Form& form;
  MenuItem mnuFile{form, "mnuFile", "&File"};
  MenuItem mnuFCheckForUpdates{form, "mnuFCheckForUpdates", "Check for Updates..."};
  MenuItem mnuFClose{form, "mnuFClose", "&Close"};
  MenuItem mnuOption{form, "mnuOption", "&Options"};
  MenuItem mnuOConfiguration{form, "mnuOConfiguration", "&Configuration"};
  MenuItem mnuTools{form, "mnuTools", "&Tools"};
  MenuItem mnuTDefender{form, "mnuTDefender", "&Defender"};
  MenuItem mnuTSchedule{form, "mnuTSchedule", "&Schedule"};
  MenuItem mnuTLiveUpdate{form, "mnuTLiveUpdate", "Live Update"};
  MenuItem mnuHelp{form, "mnuHelp", "&Help"};
  MenuItem mnuOnlineHelp{form, "mnuOnlineHelp"};
  MenuItem mnuHAbout{form, "mnuHAbout"};
};

// The controls of the Live Update page that the rest of the window looks at: a download runs while
// cmdDownload is hidden and the cancel button shows.
struct UpdatePage {
  Form& form;
  Button cmdDownload{form, "cmdDownload", "Download"};
  Button cmdFTPDownloadCancel{form, "cmdFTPDownloadCancel", "Cancel"};
};

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
};

// The one window that owns nearly all state. It is built of the pages, wires their events, and
// leaves the work to the subsystems.
class frmMain : public Form, private ScanSurroundings {
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
  MainTimers timers{*this};
  TrayIcon trayIcon{*this, "trayIcon"};
  // Hidden; its tag holds the window state that was in force before a minimise.
  Label lblAllowBHO{*this, "lblAllowBHO"};

  // Selects a page; asks first when a scan runs.
  void imgMainTab_Click(int index);
  // Shows the scan page's result and goes on to the removal (0), or back to the summary (1).
  void imgNext_Click(int index);
  void cmdDone_Click();
  // Sets the window minimised and keeps the state that it had.
  void Minimise();
  void MakeTimersEnabledOrDisableAcordingToSetting(bool leaveAlone) override;
  bool DownloadRuns() const;
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
  void RestTimers();
  void NameMenus();
  void ShowSplash();
  void RestConnectionTimers();
  void LoadFirstPage();
  void GetSettingOfFormMain();
  void ShowSignatureTotals();
  void TestSignatures();
  void ReloadSafeList();
  void StartBrowserGuardTimer();
  void LoadUpdateCheck();
  void EmptyResultTree();

  // Which page shows; exactly one argument is true, or none.
  struct ShownPages {
    bool scan = false, configuration = false, hijack = false, schedule = false, liveUpdate = false,
         bho = false;
  };
  void ChangePicOnTabClicked(const ShownPages& shown);
  void MarkTab(int index);
  void SelectTab(int index);
  bool AskToInterruptScan();
  bool AskToCloseResults();
  void StopScanUnasked();

  void WireScan();
  void WireResults();
  void WireRemoval();
  RemovalSurroundings SurroundingsOfRemoval();
  void WireMenu();
  void WireTimers();
  OptionEffects Effects();
  void cmdViewSpywareDetail_Click();
  void Command1_Click();
  void cmdRestore_Click();
  void ImgAddToIgnoredListNormal_Click();
  Answer Inform(std::string_view text);

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
  Summary summaryLogic_;

  std::string justAfterInstallation_ = "TRUE";
  int mCurrentTab_ = 0;
  bool bMainWindowShowing_ = false;
  bool bSummaryLoaded_ = false;
  bool bStartupBaselineDone_ = false;
};

}  // namespace quarnel
