#include <gtest/gtest.h>
#include "core/product.h"
#include "support/test_host.h"
#include "ui/alerts/slide_in.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

constexpr double kRightButtonUp = 7755.0;
constexpr double kDoubleClick = 7725.0;

class MenuTest : public RunningScanTest {
 protected:
  frmMenuPopUp& OpenMenu(frmMain& main) {
    main.trayIcon.RightClick();
    return application->forms().menuPopUp.Touch();
  }
  bool MenuIsOpen() { return application->forms().menuPopUp.IsLoaded(); }
};

TEST_F(MenuTest, IconStandsFromTheStartOn) {
  frmMain& main = Start();
  EXPECT_TRUE(main.trayIcon.Visible());
  EXPECT_EQ(main.trayIcon.Tip(), "Quarnel vQuarnel v3.0.4");
  main.tray.ChangeToolTip(std::string(63, 'x') + "\xC3\xA4");
  EXPECT_EQ(main.trayIcon.Tip(), std::string(63, 'x'));  // no half character
  main.tray.ChangeIcon(main.scan.imgPause);
  EXPECT_EQ(main.trayIcon.Picture(), "imgPause");
  main.tray.RemoveIcon();
  main.tray.ChangeToolTip("gone");
  main.Form_MouseMove(kRightButtonUp);
  EXPECT_NE(main.trayIcon.Tip(), "gone");
  EXPECT_FALSE(MenuIsOpen());
  main.tray.ShowIcon(main);
  EXPECT_EQ(main.trayIcon.Tip(), main.Caption());
}

TEST_F(MenuTest, DoubleClickBringsTheWindowBackAsItWas) {
  frmMain& main = Start();
  main.SetWindowState(WindowState::kMaximised);
  main.HideToTray();
  EXPECT_FALSE(main.Visible());
  main.Form_MouseMove(kDoubleClick);
  EXPECT_TRUE(main.Visible());
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMaximised);
  // The desktop's own minimise is remembered as well.
  main.SetWindowState(WindowState::kMinimised);
  main.Form_MouseMove(kDoubleClick);
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMaximised);
}

TEST_F(MenuTest, WithoutATrayTheWindowIsOnlyMinimised) {
  host.hasTray = false;
  frmMain& main = Start();
  EXPECT_TRUE(main.menu.mnuFTrayMenu.Visible());
  main.HideToTray();
  EXPECT_TRUE(main.Visible());
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMinimised);
  main.menu.mnuFTrayMenu.ClickByUser();
  EXPECT_TRUE(MenuIsOpen());
}

TEST_F(MenuTest, SlidesUpWaitsAndSlidesDown) {
  frmMain& main = Start();
  host.screen.mouse = {500, 760};
  frmMenuPopUp& menu = OpenMenu(main);
  EXPECT_TRUE(menu.Visible());
  EXPECT_TRUE(menu.TopMost());
  EXPECT_EQ(menu.Place().top, 11020);
  EXPECT_EQ(menu.Place().left, 7350);
  host.Advance(Milliseconds(100));
  EXPECT_EQ(menu.Place().top, 6420);  // the first one at or above 6436
  EXPECT_FALSE(menu.tmrMenuPopup.Enabled());
  host.screen.mouse = {510, 500};  // over the menu, which now stays
  host.Advance(Milliseconds(20000));
  EXPECT_EQ(menu.Place().top, 6420);
  host.screen.mouse = {10, 10};
  host.Advance(Milliseconds(100));
  EXPECT_EQ(menu.Place().top, 6420 + 50 * kSlideDownStep);
  host.Advance(Milliseconds(1000));
  EXPECT_FALSE(MenuIsOpen());
}

TEST_F(MenuTest, TogglesWriteTheirWordsAndRepaint) {
  frmMain& main = Start();
  frmMenuPopUp& menu = OpenMenu(main);
  EXPECT_EQ(menu.lblMenuMemorySheild.Caption(), "on");
  EXPECT_EQ(menu.PicMenuMemorySheild.Picture(), 2);
  menu.mnuMemorySheild.ClickByUser();
  EXPECT_EQ(Option("optMemorySheildOn"), "False");
  EXPECT_EQ(Option("optMemorySheildOff"), "True");
  EXPECT_EQ(menu.lblMenuMemorySheild.Caption(), "off");
  EXPECT_EQ(menu.PicMenuMemorySheild.Picture(), 1);
  EXPECT_FALSE(main.timers.tmrMemoryInspected.Enabled());
  menu.mnuMemorySheild.ClickByUser();
  EXPECT_EQ(Option("optMemorySheildOn"), "True");
  EXPECT_TRUE(main.timers.tmrMemoryInspected.Enabled());

  menu.mnuCookieSheild.ClickByUser();
  EXPECT_EQ(Option("chkScanCookies"), "False");

  const auto runs = [&] {
    RegistryValue value;
    return QueryValue(registry(), hive::kLocalMachine,
                      "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", kExecutableName, value);
  };
  const bool before = runs();
  menu.mnuRunAtStartup.ClickByUser();
  EXPECT_NE(runs(), before);
  menu.mnuRunAtStartup.ClickByUser();
  EXPECT_EQ(runs(), before);
}

TEST_F(MenuTest, ToggleOfAnAbsentSettingStartsFromItsOwnFallback) {
  Start();
  // Read as on by the row and as off by the toggle: the first click turns it on.
  DeleteValue(registry(), hive::kCurrentUser,
              "Software\\VB and VBA Program Settings\\Quarnel\\OptionAndSettings",
              "chkScanCookies");
  frmMenuPopUp& menu = OpenMenu(application->MainForm());
  EXPECT_EQ(menu.lblMnuCookieSheild.Caption(), "on");
  menu.mnuCookieSheild.ClickByUser();
  EXPECT_EQ(Option("chkScanCookies"), "True");
}

TEST_F(MenuTest, TornSettingReadsAsOffAndCanBePutRight) {
  Start();
  for (const std::string_view torn : {"", "maybe", "\xFF\xFE", "99999999999999999999x"}) {
    SetOption("optMemorySheildOn", torn);
    frmMenuPopUp& menu = OpenMenu(application->MainForm());
    EXPECT_TRUE(menu.Visible());
    EXPECT_EQ(menu.lblMenuMemorySheild.Caption(), "off");
    menu.mnuMemorySheild.ClickByUser();
    EXPECT_EQ(Option("optMemorySheildOn"), "True");
    menu.lblMenuClose.ClickByUser();
  }
}

TEST_F(MenuTest, RowsOpenTheWindowAndScan) {
  frmMain& main = Start();
  main.HideToTray();
  OpenMenu(main).mnuOptions.ClickByUser();
  EXPECT_TRUE(main.Visible());
  EXPECT_TRUE(main.tabs.PicSecondTabConfiguration.Visible());
  EXPECT_FALSE(MenuIsOpen());
  OpenMenu(main).MNUSchedule.ClickByUser();
  EXPECT_TRUE(main.tabs.PicFifthTabSchedule.Visible());
  main.HideToTray();
  OpenMenu(main).mnuScanNow.ClickByUser();
  EXPECT_TRUE(main.Visible());
  EXPECT_EQ(Found(main), 20U);
  OpenMenu(main).lblMenuClose.ClickByUser();
  EXPECT_FALSE(MenuIsOpen());
  // A download holds a scan back.
  main.update.cmdDownload.SetVisible(false);
  main.update.cmdFTPDownloadCancel.SetVisible(true);
  EXPECT_FALSE(OpenMenu(main).mnuScanNow.Enabled());
}

TEST_F(MenuTest, RunningScanIsAskedFor) {
  frmMain& main = Start();
  ScanWith(main, [&] {
    frmMenuPopUp& menu = OpenMenu(main);
    EXPECT_FALSE(menu.mnuScanNow.Enabled());
    host.answers = {Answer::kNo, Answer::kNo};
    menu.mnuOptions.ClickByUser();
    menu.mnuClose.ClickByUser();
    EXPECT_TRUE(MenuIsOpen());
    EXPECT_TRUE(ScanRuns(main.scan));
    host.answers = {Answer::kYes, Answer::kNo};
    menu.mnuClose.ClickByUser();  // stops the scan, but does not close
  });
  EXPECT_LT(Found(main), 20U);
  EXPECT_FALSE(MenuIsOpen());
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMinimised);
  EXPECT_EQ(host.messages.back().text, "Are you sure you want to close this application?");
  host.answers = {Answer::kYes};
  EXPECT_TRUE(Ends([&] { OpenMenu(main).mnuClose.ClickByUser(); }));
  EXPECT_FALSE(main.trayIcon.Visible());
}

TEST(SlideIn, PlacesAlertsAtTheLowerRight) {
  struct Case {
    ScreenFacts screen;
    int width, height;
    SlidePlan plan;
  };
  const Case cases[] = {
      // 1024x768 with a bar of 30: Top = 738 * 14.5, Left = (1024 - 300) * 14.7.
      {{.desktop = {1024, 768}, .taskBar = {1024, 30}}, 4500, 3000, {10643, 10701, 8036}},
      // A bar at the side or at the top counts by its height all the same.
      {{.desktop = {1920, 1080}, .taskBar = {62, 1080}}, 4500, 3000, {23814, 0, 12560}},
      {{.desktop = {800, 600}, .taskBar = {0, 0}}, 13500, 9000, {-1470, 8700, -400}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(AlertPlan(each.screen, each.width, each.height), each.plan)
        << each.screen.desktop.right;
  }
}

TEST(SlideIn, PlacesTheMenuAtTheMouse) {
  struct Case {
    ScreenFacts::Point mouse;
    SlidePlan plan;
  };
  // The desktop ends at 15052.8 twips: 3300 fit up to 11752.8.
  const Case cases[] = {{{0, 0}, {0, 0, 6436}},
                        {{500, 760}, {7350, 11020, 6436}},
                        {{799, 760}, {11745, 11020, 6436}},
                        {{800, 760}, {11653, 11020, 6436}},
                        {{1020, 760}, {11653, 11020, 6436}}};
  for (const Case& each : cases) {
    EXPECT_EQ(MenuPlan({.mouse = each.mouse}, 3300, 4600), each.plan) << each.mouse.x;
  }
}

}  // namespace
}  // namespace quarnel
