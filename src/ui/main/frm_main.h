#pragma once

#include <span>
#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/tray_icon.h"
#include "core/main_window.h"
#include "core/services.h"
#include "engine/engine.h"
#include "engine/pages.h"
#include "ui/main/main_menu_page.h"
#include "ui/main/news.h"
#include "ui/main/tab_strip.h"
#include "ui/main/tray.h"

namespace quarnel {

class Forms;

// How the front wants the program to come up.
struct StartOptions {
  bool showSplash = true;
  // Whether the set-up wizard runs at the first start of a user.
  bool runWizard = true;
  // Whether a start writes the program's Run value as its option says, which a click does anyhow.
  bool registersItself = true;
  // Whether guards and update look by themselves as time goes by.
  bool keepsGuard = true;
};

// The one window: its pages, tabs, menu and tray icon, and its states on the screen. The work on
// the pages is the engine's.
class frmMain : public Form, public Pages, public MainWindow {
 public:
  frmMain(Services services, Forms& forms, StartOptions options);

  TabStrip tabs{*this};
  MainMenuPage menu{*this};
  NewsPage news{*this};
  ProgressBar vbaPrgBar{*this, "vbaPrgBar", ProgressBar::Range::kLoose};
  TrayIcon trayIcon{*this, "trayIcon"};
  clsTray tray{trayIcon};

  Engine& engine() { return engine_; }

  // Selects a page; asks first when a scan runs.
  void imgMainTab_Click(int index);

  // Takes the window off the screen, for the icon to bring it back; without a tray it is minimised.
  void HideToTray();
  // The icon's events come as movements of the mouse: `x` in twips tells which.
  void Form_MouseMove(double x);

  // MainWindow
  void ShowPage(Tab tab) override;
  void SelectPage(Tab tab) override;
  void OpenTab(Tab tab) override { imgMainTab_Click(static_cast<int>(tab)); }
  void LayOut() override { Form_Resize(); }
  void RefreshSummary() override { engine_.summary().RefreshSystemSummary(); }
  bool Showing() const override { return bMainWindowShowing_; }
  void BringToFront() override { Show(); }
  void RestoreFromTray() override;
  void RestInTray() override;
  void EndProgram() override;
  void AskToCloseBrowser() override;
  void AskToRestart() override;
  void ShowSafeList() override;
  void Immunize() override;
  void DeImmunize() override;
  std::string ChooseRestorePoint() override;
  void Alert(const MemoryAlert& alert) override;
  void AlertBrowserChange() override;
  void AlertStartup() override;
  void EndAlert() override;

 protected:
  void Form_Load() override;
  void Form_Activate() override;
  void Form_Resize() override;
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override;
  void Form_Unload() override;

 private:
  // One step of the start.
  using LoadStep = void (*)(frmMain& window);
  static std::span<const LoadStep> LoadSteps();

  void LayPages();
  void LayScanButtons();
  void RestTimers();
  void NameMenus();
  void ShowSplash();
  void LoadFirstPage();
  void GetSettingOfFormMain();
  void ShowTransferValues();
  void TestSignatures();
  void ShowTrayIcon();
  void StartBrowserGuardTimer();
  void LoadStartups();
  void RegisterTransferComponent();
  void EmptyResultTree();

  void MarkTab(int index);
  void SelectTab(int index);
  void ShowResultMode();
  bool AskToCloseResults();

  void WireMenu();
  void WireTray();
  void Minimise();
  void KeepWindowState();
  void SetTrayToolTip();

  Services s_;
  Forms& forms_;
  StartOptions startOptions_;
  Engine engine_;
  News newsLogic_;
  // Activations before the end of Form_Load are the load's own, which shows the window twice.
  bool formLoaded_ = false;
  int mCurrentTab_ = 0;
  bool bMainWindowShowing_ = false;
  bool bSummaryLoaded_ = false;
};

}  // namespace quarnel
