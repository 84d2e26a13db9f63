#include <gmock/gmock.h>

#include "protection/home_page_setting.h"
#include "protection/kill_bits.h"
#include "signatures/complement.h"
#include "support/blind_host.h"
#include "support/breakable_platform.h"
#include "support/browser_on_machine.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

using testing::HasSubstr;

// The program on a machine whose browser has a home page.
class BrowserAlertTest : public ApplicationTest {
 protected:
  BrowserAlertTest() { browser.Set(0, "http://mine.example/"); }

  // As another program does.
  void SetHome(const std::string& page) {
    const auto other = OpenPlatform(machineFolder());
    const BrowserSetting& home = BrowserSettingTable().front();
    RegCreateKeyValue(other->registry(), home.hive, home.key, home.value, page);
  }
  // Lets the guard look once at a change, as it does behind one that was handled before.
  frmBHR& Change(frmMain& main) {
    SetHome("http://hijack.example/");
    main.engine().browserSettings().Pending() = {.newValue = "a", .storedValue = "b"};
    host.Advance(Milliseconds(2000));
    EXPECT_TRUE(application->forms().bhr.IsLoaded());
    return application->forms().bhr.Touch();
  }

  BrowserOnMachine browser{platform()};
};

TEST_F(BrowserAlertTest, FirstChangesOfARunPassTheTimer) {
  frmMain& main = Start();
  EXPECT_EQ(main.browserSettings.txtCurrentSetting.Text(), "http://mine.example/");
  EXPECT_EQ(main.timers.tmrPreventChangeHomePage.Interval(), Milliseconds(2000));
  SetHome("http://hijack.example/");
  host.Advance(Milliseconds(60000));
  EXPECT_FALSE(application->forms().bhr.IsLoaded());
  EXPECT_EQ(main.engine().browserSettings().Pending().label, "");
}

TEST_F(BrowserAlertTest, SlidesInAndAllows) {
  host.screen = {.desktop = {.right = 1024, .bottom = 768},
                 .taskBar = {.right = 1024, .bottom = 30}};
  frmMain& main = Start();
  frmBHR& alert = Change(main);
  EXPECT_FALSE(main.timers.tmrPreventChangeHomePage.Enabled());
  EXPECT_TRUE(alert.Visible() && alert.TopMost());
  EXPECT_EQ(alert.Caption(), "Quarnel Alert");
  EXPECT_EQ(alert.lblApproval.Caption(),
            "Internet Explorer Home Page URL Changes Requires Approval");
  EXPECT_EQ(alert.lblChangingTo.Caption(),
            "The Internet Explorer URL for your Home Page is attempting to be changed from "
            "http://mine.example/ to http://hijack.example/");
  EXPECT_EQ(alert.lblDefault.Caption(),
            "The default URL for your Home Page is " + browser.Default(0) + ".");
  const int start = AlertPlan(host.screen, alert.Place().width, alert.Place().height).top;
  host.Advance(Milliseconds(50));
  const int target = AlertPlan(host.screen, alert.Place().width, alert.Place().height).target;
  EXPECT_FALSE(alert.tmrPopupSignatureUpdate.Enabled());
  EXPECT_LE(alert.Place().top, target);
  EXPECT_EQ((start - alert.Place().top) % 500, 0);

  // The box is ticked whatever the user leaves it at.
  alert.chkRememberURL.SetValue(0);
  alert.cmdAllow.ClickByUser();
  EXPECT_FALSE(application->forms().bhr.IsLoaded());
  EXPECT_TRUE(main.timers.tmrPreventChangeHomePage.Enabled());
  EXPECT_EQ(browser.Get(0), "http://hijack.example/");
  EXPECT_THAT(browser.Baselines(), HasSubstr("Start Page=http://hijack.example/\r\n"));
  EXPECT_THAT(browser.Verdicts(), HasSubstr("http://hijack.example/=ALLOW"));
  EXPECT_EQ(main.browserSettings.txtCurrentSetting.Text(), "http://hijack.example/");
  EXPECT_EQ(main.browserSettings.lvwAllowedBlockedURLs.Count(), 1U);
}

TEST_F(BrowserAlertTest, BlocksAfterAQuestionAndThenUnasked) {
  frmMain& main = Start();
  frmBHR& alert = Change(main);
  host.answers = {Answer::kNo, Answer::kYes};
  alert.cmdBlock.ClickByUser();
  EXPECT_TRUE(alert.IsLoaded());
  EXPECT_EQ(browser.Get(0), "http://hijack.example/");
  // Another change that becomes the pending one meanwhile is not what was asked about.
  host.onEvents = [&] { main.engine().browserSettings().Pending().storedValue = "other"; };
  alert.cmdBlock.ClickByUser();
  host.onEvents = nullptr;
  EXPECT_EQ(host.messages.back().text,
            "Are you sure you would like to prevent the Internet Explorer URL Home Page from being "
            "changed to http://hijack.example/ from current setting of "
            "http://mine.example/?\r\nBlock Internet Explorer URL change?");
  EXPECT_EQ(host.messages.back().icon, MessageIcon::kInformation);
  EXPECT_FALSE(application->forms().bhr.IsLoaded());
  EXPECT_EQ(browser.Get(0), "http://mine.example/");
  EXPECT_THAT(browser.Baselines(), HasSubstr("Start Page=http://mine.example/\r\n"));
  EXPECT_EQ(main.browserSettings.lvwAllowedBlockedURLs.At(0).SubItem(1), "Blocked");

  SetHome("http://hijack.example/");
  host.Advance(Milliseconds(2000));
  EXPECT_FALSE(application->forms().bhr.IsLoaded());
  EXPECT_EQ(browser.Get(0), "http://mine.example/");
  // An alert that nobody answers changes nothing, and the guard goes on.
  SetHome("http://third.example/");
  host.Advance(Milliseconds(2000));
  application->forms().bhr.Unload();
  EXPECT_TRUE(main.timers.tmrPreventChangeHomePage.Enabled());
  EXPECT_EQ(browser.Get(0), "http://third.example/");
}

TEST_F(BrowserAlertTest, GuardsOfAJobStayOff) {
  frmMain& main = Start({.showSplash = false, .runWizard = false, .keepsGuard = false});
  SetHome("http://hijack.example/");
  main.engine().browserSettings().Pending() = {.newValue = "a", .storedValue = "b"};
  host.Advance(Milliseconds(60000));
  EXPECT_FALSE(application->forms().bhr.IsLoaded());
}

TEST_F(BrowserAlertTest, FailuresAreLoggedByTheirNames) {
  BlindHost blind;
  BreakablePlatform machinery(platform());
  BreakableRegistry& broken = machinery.registry();
  ErrorLog log(files(), machine(), blind, "Quarnel");
  Settings stored(broken, "Quarnel");
  const Services services{machinery, blind, stored, log};
  Application program(machinery, blind, {.showSplash = false, .runWizard = false});
  ASSERT_TRUE(program.Main());
  frmMain& main = program.MainForm();
  Forms& forms = program.forms();
  WriteWholeFile(files(), DataFolder(machine()) + "QNLImmData.dll", ComplementBytes("A,{1}"));
  blind.players["frmImmunize"] =
      blind.players["frmDeImmunize"] = [](Form& form) { form.Close(UnloadMode::kCode); };
  blind.answers = {Answer::kYes};
  forms.homePageChangedAlert.Touch();
  const auto readsNothing = [&](bool on) { broken.unreadable = on; };
  const auto breaks = [&](bool on) { broken.broken = on; };
  const auto losesFiles = [&](bool on) { machinery.filesAreBroken = on; };
  const auto goesBlind = [&](bool on) { blind.blind = on; };
  Label status(main, "lblTest");
  ShieldRun run{status};
  struct Case {
    std::string_view label;
    std::function<void(bool)> fault;
    std::function<void()> act;
  };
  const Case cases[] = {
      {"tmrPreventChangeHomePage_Timer", losesFiles,
       [&] { main.timers.tmrPreventChangeHomePage.Tick(); }},
      {"Form_Load of frmBHR", goesBlind, [&] { forms.bhr.Touch(); }},
      {"cmdAllow_Click of frmSignatureUpdated", losesFiles,
       [&] { forms.bhr->cmdAllow.ClickByUser(); }},
      {"cmdBlock_Click", breaks, [&] { forms.bhr->cmdBlock.ClickByUser(); }},
      {"imgRemoveAllowRestoreURLs_Click in frmMain", losesFiles,
       [&] { main.browserSettings.imgRemoveAllowRestoreURLs.ClickByUser(); }},
      {"cmdYes_Click in frmHomePageChangedAlert", breaks,
       [&] { forms.homePageChangedAlert->cmdYes.ClickByUser(); }},
      {"SaveSettingOfHomePageYes", breaks,
       [&] { forms.homePageChangedAlert->SaveSettingOfHomePageYes("x"); }},
      {"SaveSettingOfHomePageNo", breaks,
       [&] { forms.homePageChangedAlert->SaveSettingOfHomePageNo(); }},
      {"SetHomePageKeyValue", readsNothing,
       [&] { forms.homePageChangedAlert->SaveSettingOfHomePageYes("x"); }},
      {"Form_Load in frmHomePageChangedAlert", breaks,
       [&] {
         forms.homePageChangedAlert.Unload();
         forms.homePageChangedAlert.Touch();
       }},
      {"GetNetscapeHomePage", breaks, [&] { GetNetscapeHomePage(services); }},
      {"FindProfileFolderPath", losesFiles, [&] { FindProfileFolderPath(services); }},
      {"FindFile", losesFiles, [&] { FindFile(services, "C:\\", "prefs.js"); }},
      {"GetOperaHomePage", breaks, [&] { GetOperaHomePage(services); }},
      {"ImmunizeSpywares", losesFiles, [&] { ImmunizeSpywares(services, run); }},
      {"SetKeyValue_LocalMachine", breaks, [&] { ImmunizeSpywares(services, run); }},
      {"DeImmunizeSpywares", breaks, [&] { DeImmunizeSpywares(services, run); }},
      {"LoadSpywaresInListview", losesFiles,
       [&] { LoadSpywaresInListview(services, main.browserSettings.lvwAllowedBlockedURLs, "x"); }},
      {"frmImmunize_Form_Load", breaks, [&] { main.options.cmdImmunize.ClickByUser(); }},
      {"Form_Activate", breaks, [&] { main.options.cmdDeImmunize.ClickByUser(); }},
      {"cmdCancel_Click", breaks,
       [&] {
         blind.onEvents = [&] {
           if (!forms.immunize.IsLoaded()) return;
           blind.onEvents = nullptr;
           forms.immunize->cmdcancel.ClickByUser();
         };
         main.options.cmdImmunize.ClickByUser();
       }},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.label);
    WriteWholeFile(files(), log.Path(), "");
    test.fault(true);
    test.act();
    test.fault(false);
    EXPECT_THAT(Read(log.Path()), HasSubstr(std::string(test.label) + "\r\n"));
  }
}

}  // namespace
}  // namespace quarnel
