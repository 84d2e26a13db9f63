// The ways off the screen and back, and the main menu.

#include "base/text.h"
#include "core/startup.h"
#include "ui/forms.h"
#include "ui/main/frm_main.h"
#include "ui/main/maker_pages.h"

namespace quarnel {
namespace {

// The icon's events as the window receives them: the number of a mouse message, in twips.
constexpr double kDoubleClick = 515.0 * kTwipsPerPixel;
constexpr double kRightButtonUp = 517.0 * kTwipsPerPixel;

}  // namespace

void frmMain::WireTray() {
  trayIcon.DoubleClick = [this] { Form_MouseMove(kDoubleClick); };
  trayIcon.RightClick = [this] { Form_MouseMove(kRightButtonUp); };
}

void frmMain::Form_MouseMove(double x) {
  if (!tray.bRunningInTray()) return;
  if (x == kDoubleClick) IgnoringErrors([&] { RestoreFromTray(); });
  if (x == kRightButtonUp) IgnoringErrors([&] { forms_.menuPopUp.Touch().Show(); });
}

void frmMain::SetTrayToolTip() {
  const std::string& name = s_.settings.ApplicationName();
  tray.ChangeToolTip(name + " v" + name + " v" + RunningVersion(s_.settings));
}

void frmMain::Minimise() {
  if (StateOfWindow() == WindowState::kMinimised) return;
  KeepWindowState();
  SetWindowState(WindowState::kMinimised);
}

void frmMain::RestInTray() {
  Minimise();
  SetTrayToolTip();
}

void frmMain::KeepWindowState() {
  tools.lblAllowBHO.SetTag(std::to_string(static_cast<int>(StateOfWindow())));
}

void frmMain::HideToTray() {
  Minimise();
  if (host().HasTray()) Hide();
}

void frmMain::RestoreFromTray() {
  const int32_t state = ValLong(tools.lblAllowBHO.Tag());
  SetWindowState(state == static_cast<int32_t>(WindowState::kMaximised) ? WindowState::kMaximised
                                                                        : WindowState::kNormal);
  Show();
  ZOrder();
}

void frmMain::EndProgram() {
  tray.RemoveIcon();
  s_.host.EndProcess();
}

void frmMain::WireMenu() {
  menu.mnuFTrayMenu.SetVisible(!host().HasTray());
  menu.mnuFTrayMenu.Click = [this] { forms_.menuPopUp.Touch().Show(); };
  menu.mnuFCheckForUpdates.Click = [this] { summary.lblUpdatesAvailable.ClickByUser(); };
  const auto opens = [this](Clickable& control, std::string_view label, std::string_view page) {
    control.Click = [this, label, page] {
      Reporting(s_.log, label, [&] { OpenMakerPage(s_, page); });
    };
  };
  opens(menu.mnuOnlineHelp, "mnuOnlineHelp_Click in frmMain", maker_page::kQuestions);
  opens(menu.mnuHAbout, "mnuHAbout_Click in frmMain", maker_page::kAbout);
  opens(tabs.picLogo, "picLogo_Click in frmMain", maker_page::kQuestions);
  menu.mnuFClose.Click = [this] { Close(UnloadMode::kCode); };
  menu.mnuOConfiguration.Click = [this] { OpenTab(Tab::kConfiguration); };
  menu.mnuTDefender.Click = [this] { OpenTab(Tab::kDefender); };
  menu.mnuTSchedule.Click = [this] { OpenTab(Tab::kSchedule); };
  menu.mnuTLiveUpdate.Click = [this] { OpenTab(Tab::kLiveUpdate); };
}

}  // namespace quarnel
