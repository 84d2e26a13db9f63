#include <gmock/gmock.h>

#include "platform/held_folders.h"
#include "support/blind_host.h"
#include "support/breakable_platform.h"
#include "support/second_process.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kRunOfAll = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

// The program behind its first run, on a machine on which something may come to start.
class StartupAlertTest : public ApplicationTest {
 protected:
  StartupAlertTest() {
    Sweep();
    settings.Save(setting::kJustAfterInstallation, false);
    host.screen = {.desktop = {.right = 1024, .bottom = 768},
                   .taskBar = {.right = 1024, .bottom = 30}};
  }
  ~StartupAlertTest() override { Sweep(); }

  void Sweep() {
    IgnoringErrors([&] { files().Delete(verdicts); });
    for (const uint32_t hive : {hive::kLocalMachine, hive::kCurrentUser}) {
      DeleteValue(registry(), hive, kRunOfAll, "Sample");
    }
  }
  // What the machine starts already is nothing new.
  frmMain& StartKnown() {
    frmMain& main = Start();
    for (const StartupShield::State& state : main.engine().startups().States()) {
      main.engine().startups().Remember(state.entry, verdict::kAllowed);
    }
    application->forms().starUpAlert.Unload();
    return main;
  }
  // Another process adds an entry, and the timer goes once round all locations.
  frmStarUpAlert& Appear(const std::string& hive = "HKEY_LOCAL_MACHINE") {
    EXPECT_TRUE(ImportByAnotherProcess(
        machineFolder(), "REGEDIT4\r\n\r\n[" + hive + "\\" + std::string(kRunOfAll) +
                             "]\r\n\"Sample\"=\"\\\"C:\\\\sample.exe\\\" /quiet\"\r\n\r\n"));
    host.Advance(Milliseconds(7 * 5000));
    EXPECT_TRUE(application->forms().starUpAlert.IsLoaded());
    return application->forms().starUpAlert.Touch();
  }
  std::string Value(uint32_t hive = hive::kLocalMachine) {
    return QueryText(registry(), hive, kRunOfAll, "Sample");
  }

  std::string verdicts = GetPathWithSlash(machine().ProgramFolder()) + "Quarnel_Startup.txt";
};

TEST_F(StartupAlertTest, SlidesInAndAllows) {
  frmMain& main = StartKnown();
  frmStarUpAlert& alert = Appear();
  EXPECT_FALSE(main.timers.tmrPreventChangeHomePage.Enabled());
  EXPECT_TRUE(alert.Visible() && alert.TopMost());
  EXPECT_FALSE(alert.tmrPopupSignatureUpdate.Enabled());
  EXPECT_LE(alert.Place().top,
            AlertPlan(host.screen, alert.Place().width, alert.Place().height).target);
  EXPECT_EQ(alert.Caption(), "Quarnel Startup Program Alert");
  EXPECT_EQ(alert.lblApproval.Caption(),
            "Quarnel has detected a program trying to add itself to the startup programs/Registry. "
            "Startup programs are loaded automatically when Windows boots up.");
  EXPECT_EQ(alert.lblSection.Caption(), "[Registry Local Machine Run]");
  EXPECT_EQ(alert.lblApplication.Caption(), "Application: Sample");
  EXPECT_EQ(alert.lblPath.Caption(), "File Path: C:\\sample.exe");

  alert.chkRememberURL.SetValue(0);
  alert.cmdAllow.ClickByUser();
  EXPECT_FALSE(application->forms().starUpAlert.IsLoaded());
  EXPECT_TRUE(main.timers.tmrPreventChangeHomePage.Enabled());
  EXPECT_EQ(Value(), "\"C:\\sample.exe\" /quiet") << "the entry stays as it is";
  EXPECT_THAT(Read(verdicts), HasSubstr("Sample=C:\\sample.exe[ALLOWED]\r\n"));
  EXPECT_TRUE(main.tools.lvwStartup.FindText("Sample"));
  host.Advance(Milliseconds(7 * 5000));
  EXPECT_FALSE(application->forms().starUpAlert.IsLoaded());
}

TEST_F(StartupAlertTest, BlocksAfterAQuestionAndThenUnasked) {
  StartKnown();
  frmStarUpAlert& alert = Appear("HKEY_CURRENT_USER");
  host.answers = {Answer::kNo, Answer::kYes};
  alert.cmdBlock.ClickByUser();
  EXPECT_TRUE(alert.IsLoaded());
  EXPECT_THAT(Read(verdicts), Not(HasSubstr("Sample")));
  alert.cmdBlock.ClickByUser();
  EXPECT_EQ(host.messages.back().text,
            "Are you sure you would like to block Sample  Startup program?");
  EXPECT_EQ(host.messages.back().title, "Startup Manager");
  EXPECT_FALSE(application->forms().starUpAlert.IsLoaded());
  EXPECT_EQ(Value(hive::kCurrentUser), "");
  EXPECT_THAT(Read(verdicts), HasSubstr("Sample=C:\\sample.exe[BLOCKED]\r\n"));
  RegCreateKeyValue(registry(), hive::kCurrentUser, kRunOfAll, "Sample",
                    std::string("C:\\sample.exe"));
  host.Advance(Milliseconds(7 * 5000));
  EXPECT_EQ(Value(hive::kCurrentUser), "");
  EXPECT_FALSE(application->forms().starUpAlert.IsLoaded());
}

TEST_F(StartupAlertTest, KeepsItsTextsWhileAnotherEntryIsPending) {
  frmMain& main = StartKnown();
  frmStarUpAlert& alert = Appear();
  RegCreateKeyValue(registry(), hive::kCurrentUser, kRunOfAll, "Sample", std::string("C:\\b.exe"));
  // The next steps of the walk are those behind the other entry's.
  for (const char* path : {"C:\\sample.exe", "C:\\b.exe"}) {
    for (int tick = 0; main.engine().startups().Pending().path != path && tick < 8; ++tick) {
      host.Advance(Milliseconds(5000));
    }
  }
  EXPECT_EQ(alert.lblPath.Caption(), "File Path: C:\\sample.exe");
  host.answers = {Answer::kYes};
  alert.cmdBlock.ClickByUser();
  EXPECT_EQ(Value(hive::kCurrentUser), "") << "what is pending goes";
  EXPECT_NE(Value(), "");
  EXPECT_THAT(Read(verdicts), HasSubstr("[Registry Local Machine Run]\r\n"));
  EXPECT_THAT(Read(verdicts), HasSubstr("Sample=C:\\sample.exe[BLOCKED]\r\n"));
}

TEST_F(StartupAlertTest, AJobOfTheConsoleDecidesNothing) {
  settings.Save(setting::kJustAfterInstallation, true);
  Start({.showSplash = false, .runWizard = false, .keepsGuard = false});
  host.Advance(Milliseconds(10 * 5000));
  EXPECT_FALSE(Exists(verdicts));
  EXPECT_EQ(settings.GetSetting("BHO", "JustAfterInstallation", "-"), "TRUE");
}

// Each procedure's failure is logged under its own label, wrong names included.
TEST_F(StartupAlertTest, FailuresHaveTheirLabels) {
  BreakablePlatform machinery(platform());
  BreakableRegistry& broken = machinery.registry();
  BlindHost blind;
  ErrorLog log(files(), machine(), blind, "Quarnel");
  Application program(machinery, blind, {.showSplash = false, .runWizard = false});
  ASSERT_TRUE(program.Main());
  frmMain& main = program.MainForm();
  StartupShield& startups = main.engine().startups();
  const StartupEntry entry{"Sample", "C:\\sample.exe", "Registry Local Machine Run"};
  startups.Remember(entry, verdict::kAllowed);
  startups.Reload();
  const auto select = [&] {
    main.tools.lvwStartup.SelectByUser(main.tools.lvwStartup.FindText("Sample").value());
  };
  const auto breaks = [&](bool on) { broken.broken = on; };
  const auto goesBlind = [&](bool on) { blind.blind = on; };
  FormSlot<frmStarUpAlert>& alert = program.forms().starUpAlert;
  const struct {
    std::string_view label;
    std::function<void(bool)> fault;
    std::function<void()> act;
  } cases[] = {
      {"EnumerateRegKeyValues", breaks, [&] { startups.Reload(); }},
      {"lblAllowThisStartupItem_Click", breaks,
       [&] { main.tools.lblAllowThisStartupItem.ClickByUser(); }},
      {"lblBlockThisStartupItem_Click", breaks,
       [&] { main.tools.lblBlockThisStartupItem.ClickByUser(); }},
      {"Form_Load of frmBHR", goesBlind,
       [&] {
         alert.Unload();
         alert.Touch();
       }},
      {"cmdBlock_Click", breaks,
       [&] {
         main.tools.vbatvwStartup.Clear();
         RegCreateKeyValue(registry(), hive::kLocalMachine, kRunOfAll, "Sample",
                           std::string("C:\\other.exe"));
         broken.broken = false;
         for (int i = 0; i < 7; ++i) startups.Reload();
         broken.broken = true;
         alert->cmdBlock.ClickByUser();
       }},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.label);
    select();
    WriteWholeFile(files(), log.Path(), "");
    blind.answers = {Answer::kYes};
    test.fault(true);
    test.act();
    test.fault(false);
    EXPECT_THAT(Read(log.Path()), HasSubstr(std::string(test.label) + "\r\n"));
  }
}

}  // namespace
}  // namespace quarnel
