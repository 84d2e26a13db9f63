#include "ui/application.h"

#include "core/existing_files.h"
#include "core/inifile.h"
#include "core/product.h"
#include "scan/found_traces.h"
#include "scan/scan_records.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

TEST_F(ApplicationTest, FreshStoreComesUpWithItsDefaults) {
  frmMain& main = Start({.showSplash = true, .runWizard = false});
  EXPECT_EQ(main.Caption(), "Quarnel v3.0.4");
  EXPECT_TRUE(main.Visible());
  EXPECT_EQ(host.LoadedForms().size(), 1U);  // the splash has gone
  EXPECT_EQ(main.options.chkScanRegitry.Value(), 1);
  EXPECT_EQ(main.options.chkSelfDownloadingActivex.Value(), 0);
  EXPECT_EQ(main.options.closeOptions.Chosen(), 2);
  EXPECT_EQ(main.options.cmbHours.Text(), "12");
  EXPECT_TRUE(main.timers.tmrMemoryInspected.Enabled());
  EXPECT_TRUE(main.timers.tmrStartup.Enabled());
  EXPECT_FALSE(main.timers.tmrScheduler.Enabled());
  EXPECT_EQ(main.timers.tmrPreventChangeHomePage.Interval(), Milliseconds(2000));
  // Loading wrote the keys back, and only those whose box changed.
  EXPECT_EQ(Option("chkScanRegistry"), "1");
  EXPECT_EQ(Option("Sheild"), "(absent)");
  ASSERT_FALSE(main.scan.lvwHardDrives.Empty());
  EXPECT_EQ(main.scan.lvwHardDrives.At(0).text, "Drive C: Fixed Disk");
  EXPECT_TRUE(main.scan.lvwHardDrives.At(0).checked);
  EXPECT_EQ(main.summary.rows[0].lblSystemSummaryValue.Caption(), "[NOT SCANNED YET]");
  EXPECT_EQ(main.summary.rows[1].lblSystemSummaryValue.Caption(), "N/A");
  EXPECT_EQ(main.summary.rows[3].lblSystemSummaryValue.Caption(), "3 of 4");
  EXPECT_TRUE(main.summary.imgSystemSummaryBigLogoRed.Visible());
}

// What each step needs of those before it, seen from the two places where the start stands still.
TEST_F(ApplicationTest, StartGoesStepByStep) {
  SetOption("chkAutomaticScanYesOrNo", "1");
  SetOption("Day", "7");
  settings.SaveSetting("Drives", "Drive C: Fixed Disk", "True");
  Write(SafeListPath(machine()), planted + "^Threat^Threat\r\n");
  files().Delete(DataFolder(machine()) + "QNLFSig.dll");
  const std::string updated = Write(GetPathWithSlash(machine().ProgramFolder()) + "old" +
                                    ToUpper(kExecutableName) + ".EXE");
  application = std::make_unique<Application>(platform(), host, StartOptions{.runWizard = false});
  frmMain& main = application->MainForm();
  bool splash = false;
  host.players["frmSplash"] = [&](Form&) {
    splash = true;
    EXPECT_EQ(main.Caption(), "Quarnel v3.0.4");
    EXPECT_EQ(main.menu.mnuOnlineHelp.Caption(), "Quarnel Online Help");
    EXPECT_EQ(main.results.lvwIgnoredSpywares.Count(), 1u);
    AppendToFile(files(), SafeListPath(machine()), "C:\\other^Threat^Threat\r\n");
    EXPECT_FALSE(main.timers.tmrMemoryInspected.Enabled() || main.timers.tmrScheduler.Enabled());
    EXPECT_TRUE(main.scan.lvwHardDrives.Empty());
    EXPECT_FALSE(main.Visible());
  };
  bool asked = false;
  host.onEvents = [&] {
    if (asked || host.messages.empty()) return;
    asked = true;
    EXPECT_TRUE(main.timers.tmrScheduler.Enabled());
    EXPECT_TRUE(main.scan.lvwHardDrives.At(0).checked);
    EXPECT_TRUE(main.timers.tmrMemoryInspected.Enabled());
    EXPECT_NE(main.scan.lblTotalSignatureInTabSignature.Caption(), "");
    EXPECT_EQ(main.update.txtFTPSignatureZIPFile.Text(), "[NOT UPDATED YET]");
    EXPECT_EQ(main.results.lvwIgnoredSpywares.Count(), 1u);
    EXPECT_FALSE(main.timers.tmrBlink.Enabled());
    EXPECT_FALSE(main.tray.bRunningInTray());
  };
  EXPECT_TRUE(application->Main());
  EXPECT_TRUE(splash && asked);
  EXPECT_THAT(host.Texts(), ElementsAre("Signature files are missing. These file are required to "
                                        "run Quarnel"));
  EXPECT_TRUE(main.timers.tmrBlink.Enabled());
  EXPECT_TRUE(main.tabs.PicSixthTabLiveUpdate.Visible());
  EXPECT_TRUE(main.tray.bRunningInTray());
  EXPECT_EQ(main.results.lvwIgnoredSpywares.Count(), 2u);
  EXPECT_FALSE(Exists(updated));
  EXPECT_EQ(main.summary.rows[2].lblSystemSummaryValue.Caption(), "At 12:00:00 AM Daily");
}

TEST_F(ApplicationTest, TextsOfTheTrayAndTornOnesComeUpUnchecked) {
  SetOption("optMemorySheildOn", "True");
  SetOption("optLorrigrid", "no number");
  SetOption("chkScanRegistry", "7");
  SetOption("ShowAlways", "perhaps");
  SetOption("QNLExe.zip", "05.03.2024 14:30:00");
  SetOption("chkStrict", "1");
  frmMain& main = Start();
  EXPECT_EQ(main.options.chkMemorySheild.Value(), 0);
  EXPECT_EQ(main.options.chkReportLorrimesh.Value(), 0);
  EXPECT_EQ(main.options.chkScanRegitry.Value(), 0);
  // A value that makes no sense costs its own option alone, and a foreign date stands as it is.
  EXPECT_EQ(main.options.chkStrict.Value(), 1);
  EXPECT_TRUE(main.scan.lvwHardDrives.At(0).checked);
  EXPECT_EQ(main.summary.rows[4].lblSystemSummaryValue.Caption(), "05.03.2024 14:30:00");
  EXPECT_THAT(Read(DataFolder(machine()) + "Quarnel_ErrLogFile.txt"), HasSubstr("Type mismatch"));
}

TEST_F(ApplicationTest, ScanFindsRecordsAndOpensTheResults) {
  frmMain& main = Start();
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_THAT(host.Texts(), IsEmpty());
  ASSERT_EQ(main.results.vbatvwResults.Count(), 2U);
  EXPECT_EQ(main.results.vbatvwResults.At(2)->text, "[Found] - " + planted);
  EXPECT_TRUE(main.results.vbatvwResults.At(2)->checked);
  EXPECT_EQ(main.results.txtAdwareSpyware.Caption(), "1");
  EXPECT_EQ(main.scan.lblStatus.Caption(), "Scanning completed.");
  EXPECT_TRUE(main.scan.ImgStartScanMouseMove.Visible());
  EXPECT_FALSE(main.scan.ImgStopScanMouseMove.Visible());
  EXPECT_TRUE(main.results.cmdRemoveSpywares.Visible());
  EXPECT_EQ(main.summary.rows[1].lblSystemSummaryValue.Caption(), "1 threats detected");
  EXPECT_EQ(settings.GetSetting("ScanTime", "Start", ""), "3/5/2024 2:30:00 PM");
  EXPECT_EQ(Read(DataFolder(machine()) + "10004.qks"), planted + "[[]]Adware[[]]Threat\r\n");
  EXPECT_EQ(Read(DataFolder(machine()) + "10001.qks"), "Threat[[]]Adware[[]]Any\r\n");
  cInifile history(files());
  history.SetPath(GetPathWithSlash(machine().ProgramFolder()) + "ScanHistory.ini");
  history.SetSection("Scan History");
  history.SetKey("52200");
  EXPECT_EQ(history.Value(),
            "3/5/2024 2:30:00 PM;3/5/2024 2:30:00 PM;" + main.scan.lblTotalSpywares.Caption());
  // The next start knows of it.
  application.reset();
  EXPECT_EQ(Start().engine().CouldNotRead().Outcome(), "Scanning completed.");
  Form form(host, "copy");
  ResultsPage copy{form};
  EXPECT_TRUE(LoadLastScanResults(files(), machine(), copy));
  const std::vector<FoundTrace> traces = FoundTraces(copy, files());
  ASSERT_EQ(traces.size(), 1U);
  EXPECT_EQ(traces[0].text + traces[0].threat + traces[0].typeName, planted + "ThreatAdware");
}

TEST_F(ApplicationTest, TornOptionsAndCountsHideNothing) {
  const std::string cookie = Write(GetPath(machine(), csidl::kCookies) + "\\u@an.example[1].txt");
  SetOption("chkScanCookies", "perhaps");
  for (const std::string_view name : {"QNLFSig.dll", "QNLESig.dll", "QNLRSig.dll"}) {
    const std::string path = DataFolder(machine()) + std::string(name);
    const std::string text = Read(path);
    Write(path, "-70000" + text.substr(text.find('\r')));
  }
  frmMain& main = Start();
  EXPECT_EQ(main.scan.lblTotalNoOfSignature.Caption(), "-210000");
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_EQ(main.results.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_EQ(main.results.lbltracesFound.Caption(), "1");
  EXPECT_FALSE(ScanRuns(main.scan));
  files().Delete(cookie);
  EXPECT_THAT(host.Texts(), IsEmpty());
}

// Neither a full disk nor missing rights may keep a scan from its end.
TEST_F(ApplicationTest, ScanWhoseRecordsCannotBeSavedEndsAndTells) {
  frmMain& main = Start();
  const std::string history = GetPathWithSlash(machine().ProgramFolder()) + "ScanHistory.ini";
  const std::string dump = DataFolder(machine()) + "10001.qks";
  for (const std::string& path : {history, dump}) {
    IgnoringErrors([&] { files().Delete(path); });
    files().CreateFolder(path);
  }
  main.scan.ImgStartScanMouseMove.ClickByUser();
  for (const std::string& path : {history, dump}) files().DeleteFolder(path);
  EXPECT_FALSE(ScanRuns(main.scan));
  EXPECT_TRUE(main.results.cmdRemoveSpywares.Visible());
  EXPECT_THAT(host.Texts(), IsEmpty());
  EXPECT_EQ(main.engine().CouldNotRead().NotSaved().size(), 2U);
  EXPECT_THAT(std::string(main.results.txtSpywareDescription.Text()),
              HasSubstr("Not saved: ScanHistory.ini: "));
}

TEST_F(ApplicationTest, PhasesWithoutSignaturesAreNamedAndNothingIsCalledClean) {
  files().Delete(planted);
  frmMain& main = Start();
  files().Delete(DataFolder(machine()) + "QNLRSig.dll");
  Write(DataFolder(machine()) + "QNLESig.dll", "");
  // A torn option is no reason to leave a phase out.
  for (const char* option : {"chkSweepMemory", "chkScanRegistry", "chkDeepScan"}) {
    SetOption(option, "perhaps");
  }
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_THAT(main.engine().CouldNotRead().NotRun(),
              ElementsAre("Memory: QNLESig.dll is empty", "Registry: QNLRSig.dll is missing",
                          "Deep scan: QNLESig.dll is empty"));
  EXPECT_EQ(main.scan.lblStatus.Caption(), "Scanning completed. Not all was scanned.");
  EXPECT_EQ(main.summary.rows[1].lblSystemSummaryValue.Caption(), "Not all was scanned");
  // Nor by the next start.
  application.reset();
  EXPECT_EQ(Start().summary.rows[1].lblSystemSummaryValue.Caption(), "Not all was scanned");
}

TEST_F(ApplicationTest, StartGoesOnBehindASettingThatStopsAStep) {
  settings.SaveSetting("ScanTime", "Start", "05.03.2024 14:30:00");
  settings.SaveSetting("LiveUpdate", "AfterHours", "99");
  frmMain& main = Start();
  EXPECT_EQ(main.summary.rows[0].lblSystemSummaryValue.Caption(), "");
  EXPECT_TRUE(main.options.chkEnableAutoUpdaterNotifications.Checked());
  EXPECT_EQ(main.tools.tvwAdvancedTools.Count(), 2U);
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_EQ(main.summary.rows[0].lblSystemSummaryValue.Caption(), "Mar 05, 2024 at 2:30:00 PM");
}

TEST_F(RunningScanTest, UsersStopAsks) {
  frmMain& main = Start();
  const auto pressStop = [&] {
    EXPECT_TRUE(ScanRuns(main.scan));
    EXPECT_FALSE(main.timers.tmrMemoryInspected.Enabled());
    main.scan.ImgStopScanMouseMove.MouseDown();
    main.scan.ImgStopScanMouseMove.ClickByUser();
  };
  host.answers = {Answer::kNo};
  ScanWith(main, pressStop);
  EXPECT_EQ(Found(main), 20U);
  host.answers = {Answer::kYes};
  ScanWith(main, pressStop);
  EXPECT_LT(Found(main), 20U);
  EXPECT_EQ(main.scan.lblStatus.Caption(), "Scanning cancelled.");
  // A stop by code asks nothing.
  ScanWith(main, [&] { main.scan.ImgStopScanMouseMove.ClickByUser(); });
  EXPECT_LT(Found(main), 20U);
  EXPECT_THAT(host.Texts(), ElementsAre("Are you sure you want to stop the scan process?",
                                        "Are you sure you want to stop the scan process?"));
}

TEST_F(RunningScanTest, NothingFoundIsCongratulatedOnceHoweverItEnds) {
  files().Delete(planted);
  frmMain& main = Start();
  main.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_THAT(host.Texts(), ElementsAre("Congratulations! No Spyware found on your system."));
  EXPECT_EQ(host.messages[0].icon, MessageIcon::kExclamation);
  EXPECT_TRUE(main.summary.picSummary.Visible());
  host.messages.clear();
  host.answers = {Answer::kYes};
  ScanWith(main, [&] {
    main.scan.ImgStopScanMouseMove.MouseDown();
    main.scan.ImgStopScanMouseMove.ClickByUser();
  });
  EXPECT_THAT(host.Texts(), ElementsAre("Are you sure you want to stop the scan process?",
                                        "Congratulations! No Spyware found on your system."));
}

TEST_F(RunningScanTest, PauseAndCloseAndTabsFromInside) {
  frmMain& main = Start();
  ScanWith(main, [&] { main.scan.imgPause.ClickByUser(); });
  EXPECT_EQ(host.messages.back().text, "Click OK to resume the scanning...");
  EXPECT_EQ(Found(main), 20U);

  settings.SaveSetting("Settings", "chkSkipMessages", "1");
  settings.SaveSetting("Settings", "Button", "6");
  ScanWith(main, [&] { EXPECT_FALSE(main.Close(UnloadMode::kUser)); });
  EXPECT_EQ(host.messages.back().text, "Scanning is in progress...! Please stop the scan first.");
  EXPECT_EQ(Found(main), 20U);

  host.answers = {Answer::kNo};
  ScanWith(main, [&] { main.tabs.imgMainTab[2]->ClickByUser(); });
  EXPECT_EQ(Found(main), 20U);
  EXPECT_FALSE(main.tabs.PicSecondTabConfiguration.Visible());
  host.answers = {Answer::kYes};
  ScanWith(main, [&] { main.tabs.imgMainTab[2]->ClickByUser(); });
  EXPECT_LT(Found(main), 20U);
}

TEST_F(ApplicationTest, ClosingFollowsTheAnswer) {
  frmMain& main = Start();
  const auto closeWith = [&](std::string_view button, bool skip) {
    host.players["frmClose"] = [button = std::string(button), skip](Form& form) {
      if (skip) form.Find("chkSkipMessages")->ClickByUser();
      form.Find(button)->ClickByUser();
    };
    return Ends([&] { main.Close(UnloadMode::kUser); });
  };
  EXPECT_FALSE(closeWith("cmdCancel", false));
  EXPECT_TRUE(main.Visible());
  EXPECT_TRUE(closeWith("cmdYes", false));  // a plain Yes closes
  EXPECT_EQ(main.options.closeOptions.Chosen(), 2);
  // The answer is that of an earlier time: no answer now is none to close.
  host.players["frmClose"] = [](Form& form) { form.Close(UnloadMode::kUser); };
  EXPECT_FALSE(main.Close(UnloadMode::kUser));
  EXPECT_TRUE(main.Visible());
  EXPECT_FALSE(closeWith("cmdNo", true));
  EXPECT_FALSE(main.Visible());
  EXPECT_EQ(main.tools.lblAllowBHO.Tag(), "0");
  EXPECT_EQ(main.options.closeOptions.Chosen(), 1);
  // From now on nothing is asked.
  host.players.clear();
  main.SetWindowState(WindowState::kNormal);
  main.Show();
  EXPECT_FALSE(main.Close(UnloadMode::kUser));
  EXPECT_FALSE(main.Showing());
}

TEST_F(ApplicationTest, SkippedQuestionWithoutAnAnswerMinimises) {
  settings.SaveSetting("Settings", "chkSkipMessages", "1");
  frmMain& main = Start();
  EXPECT_FALSE(main.Close(UnloadMode::kUser));
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMinimised);
}

TEST_F(ApplicationTest, SessionEndForgetsTheDeclinedPrograms) {
  frmMain& main = Start();
  const std::string declined = DataFolder(machine()) + "ENoSignature.dll";
  Write(declined, "x");
  EXPECT_TRUE(main.Close(UnloadMode::kSessionEnd));
  EXPECT_FALSE(FileExists(files(), declined));
}

TEST_F(ApplicationTest, OptionsWriteThrough) {
  frmMain& main = Start();
  main.options.optCloseOptions0.ClickByUser();
  EXPECT_EQ(settings.GetSetting("Settings", "Button", ""), "6");
  EXPECT_EQ(settings.GetSetting("Settings", "chkSkipMessages", ""), "1");
  main.options.optSkipClosingAndDonotShow.ClickByUser();
  EXPECT_EQ(Option("SkipClosingAndDonotShow"), "True");
  EXPECT_EQ(Option("ShowAlways"), "False");
  main.scan.lvwHardDrives.CheckByUser(0, false);
  EXPECT_EQ(settings.GetSetting("Drives", "Drive C: Fixed Disk", ""), "False");
  // A stray change of the alert option is taken back by its timer.
  main.options.chkAlertsBlocksSpywareAdware.ClickByUser();
  host.Advance(Milliseconds(1000));
  EXPECT_EQ(main.options.chkAlertsBlocksSpywareAdware.Value(), 1);
}

// The window's program starts with Windows, whichever front runs, and only the window sees to that
// by its start alone.
TEST_F(ApplicationTest, RunValueNamesTheWindowsProgram) {
  constexpr std::string_view kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
  const auto value = [&]() -> std::string {
    std::string path = "(absent)";
    GetKeyValue(registry(), hive::kLocalMachine, kRun, kExecutableName, path);
    return path;
  };
  DeleteValue(registry(), hive::kLocalMachine, kRun, kExecutableName);
  const std::string program = GetPathWithSlash(machine().ProgramFolder()) + "quarnel.exe";
  frmMain& console = Start({.showSplash = false, .runWizard = false, .registersItself = false});
  EXPECT_EQ(value(), "(absent)");
  console.options.chkRunAtStartup.ClickByUser();
  console.options.chkRunAtStartup.ClickByUser();
  EXPECT_EQ(value(), program);
  DeleteValue(registry(), hive::kLocalMachine, kRun, kExecutableName);
  application.reset();
  Start();
  EXPECT_EQ(value(), program);
}

TEST_F(ApplicationTest, StartsInTheTrayOnce) {
  settings.Save(setting::kMinimizeAtStartup, 1);
  frmMain& main = Start();
  EXPECT_EQ(main.StateOfWindow(), WindowState::kMinimised);
  EXPECT_FALSE(main.Visible());
  EXPECT_FALSE(main.Showing());
  main.RestoreFromTray();
  EXPECT_EQ(main.StateOfWindow(), WindowState::kNormal);
  EXPECT_TRUE(main.Visible());
  // Without the start with Windows the box is off, and means nothing.
  application.reset();
  settings.Save(setting::kRunAtStartup, 0);
  EXPECT_TRUE(Start().Visible());
}

TEST_F(ApplicationTest, DetailAndCopyOfTheResults) {
  frmMain& main = Start();
  main.results.cmdViewSpywareDetail.ClickByUser();
  EXPECT_THAT(host.Texts(), ElementsAre("There is no Spyware/Adware in the results list."));
  main.scan.ImgStartScanMouseMove.ClickByUser();
  main.results.Command1.ClickByUser();
  EXPECT_EQ(host.clipboard, "\r\nThreat\r\n[Found] - " + planted + "\r\n");
  main.results.vbatvwResults.ClickByUser(main.results.vbatvwResults.At(2));
  EXPECT_THAT(main.results.txtSpywareDescription.Text(),
              StartsWith("Threat Name:Threat\r\nTraces under this Threat:1\r\nTrace: [Found] - "));
  EXPECT_EQ(main.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.SelectedRow(), 0U);
  main.results.vbatvwResults.ClickByUser(main.results.vbatvwResults.At(1));
  EXPECT_EQ(std::string(main.results.txtSpywareDescription.Text()),
            "Threat Name:Threat\r\nTraces under this Threat:1");
}

TEST_F(ApplicationTest, SecondInstanceEndsAtOnce) {
  platform().desktop().Announce(kWindowClass, "Quarnel v3.0.4");
  application = std::make_unique<Application>(
      platform(), host, StartOptions{.showSplash = false, .runWizard = false});
  EXPECT_FALSE(application->Main());
  EXPECT_THAT(host.LoadedForms(), IsEmpty());
  platform().desktop().Announce(kWindowClass, "");
}

}  // namespace
}  // namespace quarnel
