// The pages, timers and small windows of the program.

#include "core/existing_files.h"
#include "core/startup.h"
#include "signatures/cipher.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

using WindowTest = ApplicationTest;

TEST_F(WindowTest, TabsDoTheirWork) {
  frmMain& main = Start();
  main.schedule.cmbDays.SetByUser("Friday");
  main.tabs.imgMainTab[3]->ClickByUser();
  EXPECT_FALSE(main.schedule.cmdProceed.Visible());
  EXPECT_EQ(main.schedule.cmbDays.Text(), "Daily");

  const std::string news = GetPathWithSlash(machine().ProgramFolder()) + "News.html";
  EXPECT_EQ(main.news.wbrNewsAndReport.Location(), news);
  EXPECT_TRUE(FileExists(files(), news));
  main.tabs.imgMainTab[6]->ClickByUser();
  EXPECT_TRUE(IsNetworkAddress(main.news.wbrNewsAndReport.Location()));
  EXPECT_EQ(main.news.wbrNewsAndReport.LocalPage(), news);

  EXPECT_FALSE(main.tools.lvwBHOs.Visible());
  main.tabs.imgMainTab[5]->ClickByUser();
  EXPECT_TRUE(main.tools.lvwBHOs.Visible());
  main.tools.tvwAdvancedTools.ClickByUser(main.tools.tvwAdvancedTools.At(2));
  EXPECT_FALSE(main.tools.lvwBHOs.Visible());
  EXPECT_TRUE(main.tools.lvwStartup.Visible());

  // While it can be clicked, the download button hides the cancel button on its page.
  main.tabs.imgMainTab[4]->ClickByUser();
  EXPECT_FALSE(main.update.cmdFTPDownloadCancel.Visible());
  main.update.cmdDownload.SetEnabled(false);
  main.tabs.imgMainTab[4]->ClickByUser();
  EXPECT_TRUE(main.update.cmdFTPDownloadCancel.Visible());
}

// Every change of tab stops a scan by code first, which leaves the form's mark and runs the Done
// handler: so the question about closed results is never asked, and the results do not stay.
TEST_F(WindowTest, ChangeOfTabClosesTheResultsUnasked) {
  frmMain& main = Start();
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_EQ(main.results.imgNext0.Tag(), kResultMode);
  EXPECT_EQ(main.results.cmdDone.Tag(), "");
  main.SetTag("");  // as after a press on Stop
  main.tabs.imgMainTab[2]->ClickByUser();
  EXPECT_EQ(main.results.cmdDone.Tag(), "DONE");
  EXPECT_EQ(main.results.imgNext0.Tag(), "");
  main.tabs.imgMainTab[0]->ClickByUser();
  EXPECT_TRUE(main.results.imgNext0.Enabled());
  // The results are still there to look at, until the tab is clicked once more.
  EXPECT_FALSE(main.summary.picSummary.Visible());
  main.tabs.imgMainTab[0]->ClickByUser();
  EXPECT_TRUE(main.summary.picSummary.Visible());
  EXPECT_THAT(host.messages, IsEmpty());
}

// Nothing sets the flag of the scheduled scan, so such a scan ends as one started by hand.
TEST_F(WindowTest, ScheduledScanEndsLikeAnyOther) {
  SetOption("Day", "7");
  SetOption("Time", "2:30:02 PM");
  SetOption("chkAutomaticScanYesOrNo", "1");
  frmMain& main = Start();
  EXPECT_TRUE(main.timers.tmrScheduler.Enabled());
  main.tabs.imgMainTab[2]->ClickByUser();
  host.Advance(Milliseconds(1995));
  EXPECT_EQ(main.results.lvwFilesToBeDeleted.Count(), 0U);
  host.Advance(Milliseconds(20));
  EXPECT_EQ(main.results.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_TRUE(main.tabs.picSpywareAdwareRightWindow.Visible());
  EXPECT_THAT(host.messages, IsEmpty());
  EXPECT_EQ(main.summary.rows[2].lblSystemSummaryValue.Caption(), "At 02:30:02 PM Daily");
}

TEST_F(WindowTest, MenuOpensTabsAndPretendsNoUpdates) {
  frmMain& main = Start();
  EXPECT_FALSE(main.summary.lblUpdatesAvailable.Visible());
  EXPECT_EQ(main.update.txtFTPSignatureZIPFile.Text(), "[NOT UPDATED YET]");
  main.menu.mnuFCheckForUpdates.ClickByUser();
  EXPECT_TRUE(main.tabs.PicSixthTabLiveUpdate.Visible());
  EXPECT_THAT(main.update.lblFTPStatus.Caption(), HasSubstr("cannot download"));
  const std::pair<MenuItem*, Panel*> others[] = {
      {&main.menu.mnuTDefender, &main.tabs.picHiJackRestore},
      {&main.menu.mnuOConfiguration, &main.tabs.PicSecondTabConfiguration},
      {&main.menu.mnuTSchedule, &main.tabs.PicFifthTabSchedule},
      {&main.menu.mnuTLiveUpdate, &main.tabs.PicSixthTabLiveUpdate}};
  for (const auto& [item, page] : others) {
    item->ClickByUser();
    EXPECT_TRUE(page->Visible()) << page->Name();
  }
}

TEST_F(WindowTest, BalloonsTellTheRowsPresentValue) {
  frmMain& main = Start();
  const auto tip = [&](size_t row) {
    const Label& label = main.summary.rows[row].lblSystemSummaryLabel;
    EXPECT_EQ(label.Balloon()->Look().title, label.Caption());
    label.MouseMove();
    return label.Balloon()->TipText();
  };
  EXPECT_EQ(main.summary.rows[0].lblSystemSummaryLabel.Balloon()->TipText(), "Text");
  EXPECT_THAT(tip(0), StartsWith("The last scan run was on [NOT SCANNED YET].\r\n\r\nIn order"));
  EXPECT_EQ(tip(1), "Scan ran on: N/A.");
  EXPECT_THAT(tip(2), StartsWith("Your spyware scan schedule is In-active.\r\n\r\nUse the"));
  EXPECT_THAT(tip(3), StartsWith("3 of 4 of 3 Security Agents are currently active.\r\n\r\n"));
  EXPECT_EQ(tip(4), "Your spyware deffinitions have not been updated yet.");
  EXPECT_EQ(tip(5), "AutoUpdater is currently Active.");
  main.schedule.chkAutomaticScanYesOrNo.ClickByUser();
  main.schedule.cmdProceed.ClickByUser();
  EXPECT_THAT(tip(2), StartsWith("Your spyware scan schedule is set to run at At 12:00:00 AM "
                                 "Daily."));
}

TEST_F(WindowTest, StartupTimerEndsTheFirstRun) {
  frmMain& main = Start();
  const auto stored = [&] { return settings.GetSetting("BHO", "JustAfterInstallation", "-"); };
  host.Advance(Milliseconds(4 * 5000));
  EXPECT_EQ(stored(), "-");
  main.options.chkStartupShield.SetValue(0);
  // Only the count goes on, and the timer stands still with its option.
  main.timers.tmrStartup.SetEnabled(true);
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(stored(), "-");
  main.options.chkStartupShield.SetValue(1);
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(stored(), "FALSE");
}

TEST_F(WindowTest, ConnectionTimerGivesUpAfterFourTicks) {
  frmMain& main = Start();
  Timer& timer = main.timers.tmrIsConnectionOk;
  EXPECT_FALSE(timer.Enabled());
  timer.SetEnabled(true);
  host.Advance(Milliseconds(20000));
  main.engine().update().NoteConnection();  // begins to count anew
  host.Advance(Milliseconds(30000));
  EXPECT_TRUE(timer.Enabled());
  host.Advance(Milliseconds(10000));
  EXPECT_FALSE(timer.Enabled());
}

TEST_F(WindowTest, ListsOfTheBrowserPageTakeTurns) {
  frmMain& main = Start();
  BrowserSettingsPage& page = main.browserSettings;
  page.lvwAllowedBlockedURLs.Add({.text = "http://a/"});
  page.imgListOfAllowedBlockedURLs.ClickByUser();
  EXPECT_FALSE(page.lvwBrowserHijackRestore.Visible());
  page.chlSelectAllBHR.ClickByUser();
  EXPECT_TRUE(page.lvwAllowedBlockedURLs.At(0).checked);
  page.imgSwitchTORestoreListOfURLs.ClickByUser();
  EXPECT_TRUE(page.lvwBrowserHijackRestore.Visible());
  page.lvwBrowserHijackRestore.SelectByUser(page.lvwBrowserHijackRestore.Add(
      {.text = "Home Page", .subItems = {"now", "back", "help", "d"}}));
  EXPECT_EQ(page.txtSetting.Text(), "help");
  EXPECT_EQ(page.txtRestoreSettingTo.Text(), "back");
}

TEST_F(WindowTest, SecondInstanceBringsTheWindowBack) {
  frmMain& main = Start();
  main.HideToTray();
  const auto other = OpenPlatform(machineFolder());
  Settings seen(other->registry(), "Quarnel");
  EXPECT_TRUE(IsPrevInstanceRunning(other->desktop(), seen));
  for (int turn = 0; turn < 100 && !main.Visible(); ++turn) {
    application->AnswerForwardRequest();
    if (!main.Visible()) RealClock().Pass(Milliseconds(10));
  }
  EXPECT_TRUE(main.Visible());
}

TEST_F(WindowTest, ApprovalKeepsItsAnswerHoweverItCloses) {
  Start();
  const auto stored = [&] { return settings.GetSetting("Settings", "Starup-allow-block", "-"); };
  application->forms().approveAllStartup->cmdOK.ClickByUser();
  EXPECT_EQ(stored(), "True");
  frmApproveAllStartup& form = application->forms().approveAllStartup.Touch();
  form.optStartups1.ClickByUser();
  form.Close(UnloadMode::kUser);
  EXPECT_EQ(stored(), "False");
}

TEST_F(WindowTest, HomePageAlertWritesOrKeeps) {
  Start();
  constexpr std::string_view kMain = "Software\\Microsoft\\Internet Explorer\\Main";
  const auto startPage = [&] {
    return QueryText(registry(), hive::kCurrentUser, kMain, "Start Page");
  };
  const std::string before = startPage();
  RegCreateKeyValue(registry(), hive::kCurrentUser, kMain, "Start Page",
                    std::string("http://hijacked.example/"));
  FormSlot<frmHomePageChangedAlert>& alert = application->forms().homePageChangedAlert;
  EXPECT_THAT(alert->lblHomePageInfo.Caption(), HasSubstr("http://hijacked.example/"));
  alert->cmdNo.ClickByUser();
  EXPECT_FALSE(alert.IsLoaded());
  EXPECT_EQ(Option("Homepage"), "http://hijacked.example/");
  SetOption("Homepage", "http://home.example/");
  alert->cmdYes.ClickByUser();
  EXPECT_EQ(startPage(), "http://home.example/");
  RegCreateKeyValue(registry(), hive::kCurrentUser, kMain, "Start Page", before);
}

TEST_F(WindowTest, ConnectionMessageLaysTheWindowOutAnew) {
  frmMain& main = Start();
  FormSlot<frmInternetConnection>& form = application->forms().internetConnection;
  EXPECT_THAT(form->lblMessage.Caption(),
              StartsWith("Live Update could not retrieve the files of signatures and Quarnel "));
  main.engine().update().NoteConnectionLost();
  const uint64_t revision = main.Revision();
  host.Advance(Milliseconds(1000));
  EXPECT_FALSE(main.engine().update().TakeConnectionLost());
  EXPECT_GT(main.Revision(), revision);
  form->cmdOK.ClickByUser();
  EXPECT_FALSE(form.IsLoaded());
}

TEST_F(WindowTest, DeclinedProgramsAreListedAndTakenOut) {
  Start();
  const std::string path = DataFolder(machine()) + "ENoSignature.dll";
  Write(path, Encrypt("aaaa^Adware^One ") + "\r\n" + Encrypt("bbbb^Spyware^Two") + "\r\n");
  FormSlot<frmIngnoredProcesses>& slot = application->forms().ingnoredProcesses;
  frmIngnoredProcesses& form = slot.Touch();
  EXPECT_EQ(form.lblCount.Caption(), "Total no of items : 2");
  form.chkSelectAll.ClickByUser();
  form.lvwIgnoredProcesses.CheckByUser(1, false);  // unticks the box, which leaves the other row
  EXPECT_FALSE(form.chkSelectAll.Checked());
  EXPECT_TRUE(form.lvwIgnoredProcesses.At(0).checked);
  form.ImgRemoveMouseMove.ClickByUser();
  EXPECT_EQ(form.lblCount.Caption(), "Total no of items : 1");
  EXPECT_EQ(Read(path), "bbbb^Spyware^Two\r\n");
  form.chkSelectAll.ClickByUser();
  form.ImgRemoveMouseMove.ClickByUser();
  EXPECT_FALSE(FileExists(files(), path));
}

}  // namespace
}  // namespace quarnel
