// The window of frmMain: the tab strip at the left, and beside it one page for each tab.

#include "protection/helper_objects.h"
#include "ui/wx/layouts/layouts.h"
#include "ui/wx/metrics.h"

namespace quarnel {
namespace {

using namespace metrics;

std::string Indexed(std::string_view name, int index) {
  return std::string(name) + "(" + std::to_string(index) + ")";
}

Layout Tabs() {
  struct Tab {
    std::string_view caption;
    std::string_view icon;
  };
  constexpr Tab kTabs[] = {
      {"S&can", "tab-scan"},         {"&Defender", "tab-defender"},  {"O&ptions", "tab-options"},
      {"Sch&edule", "tab-schedule"}, {"&Live Update", "tab-update"}, {"Ad&vanced", "tab-advanced"},
      {"Ne&ws", "tab-news"},
  };
  std::vector<Layout> tabs;
  int index = 0;
  for (const Tab& tab : kTabs) {
    tabs.push_back(
        Put(Indexed("imgMainTab", index++)).As(Role::kTab).Called(tab.caption).With(tab.icon));
  }
  tabs.push_back(Spring());
  tabs.push_back(Put("picLogo").As(Role::kQuiet).Called("&Questions").With("message-question"));
  return Column(std::move(tabs)).Gap(kTightGap).Padding(kGap);
}

// What the pictures of a state say.
constexpr std::string_view kGood = "Good:";
constexpr std::string_view kBad = "Needs attention:";

// ---- the scan page -----------------------------------------------------------------------------

// What was found where, in one line.
Layout Finds() {
  struct Place {
    std::string_view caption;
    std::string_view found;
  };
  constexpr Place kPlaces[] = {{"Traces:", "txtAdwareSpyware"},
                               {"programs", "lblMemoryInfected"},
                               {"registry", "lblRegistryInfected"},
                               {"files", "lblFilesFolderInfected"},
                               {"cookies", "lbltracesFound"}};
  std::vector<Layout> line;
  for (const Place& place : kPlaces) {
    line.push_back(Row({Text(place.caption).As(Role::kMuted), Put(place.found).As(Role::kStrong)})
                       .Gap(kTightGap));
  }
  line.push_back(Spring());
  return Row(std::move(line));
}

// What the program is at: the state of the machine, or the running scan; and its buttons.
Layout JobCard() {
  Layout state = Row({
      Put("imgSystemSummaryBigLogoBlue").With("good", kHeroIcon).Spoken(kGood),
      Put("imgSystemSummaryBigLogoRed").With("attention", kHeroIcon).Spoken(kBad),
      Column({
                 Put("lblSummaryTitle").As(Role::kTitle),
                 Row({Text("Signatures:").As(Role::kMuted),
                      Put("lblTotalNoOfSignature").As(Role::kMuted).Grow()})
                     .Gap(kTightGap),
             })
          .Gap(kTightGap)
          .Grow()
          .Centred(),
  });
  Layout scan = Row({
      Picture("scanning", kLargeIcon),
      Column(
          {
              Column({Put("lblScanSummary").As(Role::kTitle)}).On("picRemoveSummary"),
              Column({Put("lblStatus").As(Role::kStatus).Called("Results of the last scan"),
                      Finds().On("ImgStartScanMouseMove")})
                  .Gap(kTightGap)
                  .Unless("picRemoveSummary"),
              Column({Put("lblPercentageCompleted"), Put("pbgMain"),
                      Put("lblScanning").As(Role::kPath)})
                  .Gap(kTightGap)
                  .On("pbgMain"),
              Column({Put("lblDeletingCaption").As(Role::kPath),
                      Put("pbrRemoveSpyware").Called("Removal")})
                  .Gap(kTightGap)
                  .On("pbrRemoveSpyware"),
              Column({Put("lblBackupProgress").As(Role::kPath), Put("pgbBackup").Called("Backup")})
                  .Gap(kTightGap)
                  .On("picBackupProgress"),
          })
          .Gap(kTightGap)
          .Grow()
          .Centred(),
  });
  return Card({}, {Row({
                           Column({std::move(state).Gap(kWideGap)})
                               .Padding(kGap)
                               .On("picSummary")
                               .Grow(),
                           Column({std::move(scan).Gap(kWideGap)}).Unless("picSummary").Grow(),
                           Column({Row({
                                      Put("ImgStartScanMouseMove")
                                          .Called("Scan &now")
                                          .With("play")
                                          .As(Role::kPrimary),
                                      Put("imgPause").Called("Pa&use").With("pause"),
                                      Put("ImgStopScanMouseMove").Called("&Stop").With("stop"),
                                  })})
                               .On("picSpywareAdwareLeftWindow")
                               .Centred(),
                       })
                       .Gap(kWideGap)})
      .Padding(kGap);
}

Layout SummaryRow(int index) {
  return Card({}, {Row({
                           Put(Indexed("imgSystemSummaryBigSmallBlue", index))
                               .With("row-good", kRowIcon)
                               .Spoken(kGood),
                           Put(Indexed("imgSystemSummaryBigSmallRed", index))
                               .With("row-attention", kRowIcon)
                               .Spoken(kBad),
                           Column({Put(Indexed("lblSystemSummaryLabel", index)).As(Role::kMuted),
                                   Put(Indexed("lblSystemSummaryValue", index)).As(Role::kStrong)})
                               .Gap(kTightGap)
                               .Grow()
                               .Centred(),
                       })
                       .Gap(kWideGap)});
}

Layout Summary() {
  return Column({
      Row({
          Column({SummaryRow(0), SummaryRow(2), SummaryRow(4)}).Grow(),
          Column({SummaryRow(1), SummaryRow(3), SummaryRow(5)}).Grow(),
      }),
      Card("A scan looks at",
           {Row({
                    Column({Put("chkScanMemory"), Put("chkScanRegitry"), Put("chkScanCookies"),
                            Put("chkDeepScan")})
                        .Grow(),
                    Put("lvwHardDrives").Called("Drives of the deep scan").Ticks().Grow(),
                })
                .Gap(kWideGap)}),
  });
}

Layout Counter(std::string_view caption, std::string_view inspected, std::string_view found) {
  return Card({},
              {Column({
                          Text(caption).As(Role::kMuted),
                          Put(inspected).As(Role::kFigure),
                          Row({Text("found").As(Role::kMuted), Put(found).As(Role::kStrong).Grow()})
                              .Gap(kTightGap),
                      })
                   .Gap(kTightGap)})
      .Padding(kGap)
      .Grow();
}

Layout Counters() {
  return Row({
      Counter("Programs", "lblMemoryInspected", "lblMemoryInfected"),
      Counter("Registry", "lblRegistryInspected", "lblRegistryInfected"),
      Counter("Files", "lblFilesFolderInspected", "lblFilesFolderInfected"),
      Counter("Cookies", "lblTrackingObjectScanned", "lbltracesFound"),
      Counter("Hashes", "lblMD5Scanned", "lblMD5Infected"),
  });
}

// Narrow enough for the smallest window, row by row; the tree has all room that is left.
Layout Results() {
  return Column({
      Put("vbatvwResults")
          .Called("Threats and their traces")
          .Heading(2, "Level")
          .Ticks()
          .Grow()
          .Menu(
              {{"Command1", "&Copy results"}, {"ImgAddToIgnoredListNormal", "&Add to safe list"}}),
      Row({
              Put("txtSpywareDescription").Called("Description").High(kTextHeight).Grow(2),
              Put("lvwPicRemoveListOfSpywareFoundAndToBeRemoved")
                  .Called("Threats")
                  .High(kTextHeight)
                  .Grow(3),
              Column({Put("cmdViewSpywareDetail"), Spring()}),
          })
          .On("picSearchResultsLeftWindow"),
      Row({
          Put("chkSelectAllDetectedSpywares"),
          Spring(),
          Put("cmdIgnoredSpyware"),
          Put("ImgAddToIgnoredListNormal").Called("&Add to safe list").With("safe"),
          Put("Command1").With("copy"),
      }),
      Row({
          Put("chkCreateRestore"),
          Spring(),
          Put("imgNext(1)").Called("&Back").With("back"),
          Put("imgNext(0)").Called("Ne&xt").With("next"),
          Put("cmdDone"),
          Put("cmdRemoveSpywares").As(Role::kPrimary).With("remove"),
      }),
  });
}

Layout RemovalSummary() {
  constexpr int kLevels = 5;
  std::vector<Layout> levels;
  levels.reserve(kLevels);
  for (int level = 0; level < kLevels; ++level) {
    levels.push_back(Row({Text("Level " + std::to_string(level + 1)).As(Role::kMuted),
                          Put(Indexed("lblThreatLevelCount", level)).As(Role::kStrong).Grow()})
                         .Gap(kTightGap)
                         .Grow());
  }
  return Card({},
              {Put("lblScanSummaryMessage").As(Role::kWrapped),
               Put("lblRestorePointState").As(Role::kWrapped),
               Put("lvwRemovalReport").Called("What became of each trace").Grow(),
               Put("lblThreatLevelNote").As(Role::kMuted), Row(std::move(levels)),
               Put("lblRemoveSummaryMessage").As(Role::kWrapped),
               Row({Put("cmdCopyRemoval").With("copy"), Spring(),
                    Put("cmdRemoveSpyware2").With("remove"), Put("cmdFinish").As(Role::kPrimary)})})
      .Gap(kWideGap)
      .Grow();
}

Layout ScanPageLayout() {
  return Column({
                    JobCard(),
                    // Its button is in reach also where the rest must scroll.
                    Column({Scroll({Summary()}).Grow(),
                            Row({Put("cmdRestore").With("restore"), Spring()})})
                        .On("picSummary")
                        .Grow(),
                    Column({
                               Column({Counters()}).On("ImgStopScanMouseMove"),
                               Column({RemovalSummary()}).On("picRemoveSummary").Grow(),
                               Column({Results().Grow()}).Unless("picRemoveSummary").Grow(),
                           })
                        .Unless("picSummary")
                        .Grow(),
                })
      .Padding(kPagePadding)
      .On("picSpywareAdwareRightWindow")
      .Grow();
}

// ---- the other pages ---------------------------------------------------------------------------

Layout Page(std::string_view panel, std::string_view title, std::string_view explanation,
            std::vector<Layout> items) {
  items.insert(
      items.begin(),
      Column({Text(title).As(Role::kTitle), Text(explanation).As(Role::kMuted)}).Gap(kTightGap));
  return Column(std::move(items)).Gap(kWideGap).Padding(kPagePadding).On(panel).Grow();
}

// A box or circle whose caption takes as many lines as its place needs.
Layout Mark(std::string_view control) { return Put(control).As(Role::kWrapped); }

Layout OptionsLayout() {
  Layout left = Column({
      Card("Scan", {Mark("chkScanRegitry"), Mark("chkScanMemory"), Mark("chkScanCookies"),
                    Mark("chkDeepScan"), Mark("chkDoNotShowIgnoredItem"),
                    Put("lvwHardDrives").Called("Drives").Ticks()}),
      Card("When the window is closed",
           {Mark("optCloseOptions(0)"), Mark("optCloseOptions(1)"), Mark("optCloseOptions(2)")}),
      Card("Open browsers at a removal",
           {Mark("optShowAlways"), Mark("optCloseAllIEAndDonotShowIfFuture"),
            Mark("optSkipClosingAndDonotShow")}),
  });
  Layout right = Column({
      Card("Protection",
           {Mark("chkSelfDownloadingActivex"), Row({Put("cmdImmunize"), Put("cmdDeImmunize")}),
            Mark("chkMemorySheild"), Mark("chkStartupShield"), Mark("chkDisplayHijakRestoreAlerts"),
            Mark("chkAlertsBlocksSpywareAdware"), Mark("chkStrict"), Mark("chkReportLorrimesh")}),
      Card("Start", {Mark("chkRunAtStartup"), Mark("chkMinimizeToTrayWindowAtStartup")}),
      Card("Updates",
           {Mark("chkEnableAutoUpdaterNotifications"),
            Row({Text("Hours between two looks:"),
                 Put("cmbHours").Called("Hours between two looks")}),
            Row({Text("Last update:").As(Role::kMuted), Put("lblLastUpdateDefinationDate").Grow()})
                .Gap(kTightGap)}),
      Card("When the program is left", {Mark("optOnClose(0)"), Mark("optOnClose(1)")}),
  });
  return Page("PicSecondTabConfiguration", "Options", "Changes are kept at once.",
              {Scroll({Row({std::move(left).Grow(), std::move(right).Grow()})}).Grow()});
}

Layout Field(std::string_view caption, std::string_view control) {
  return Row({Text(caption).Wide(kCaptionWidth), Put(control).Called(caption)}).Gap(kWideGap);
}

Layout ScheduleLayout() {
  return Page("PicFifthTabSchedule", "Schedule", "Scans run at their time, while the program runs.",
              {Card("Automatic scan",
                    {Put("chkAutomaticScanYesOrNo"), Field("Day", "cmbDays"),
                     Field("Date", "dtpScheduleDate"), Field("Time", "dtpScheduleTime"),
                     Row({Put("cmdProceed").As(Role::kPrimary), Put("cmdDefaultSetting")})})
                   .Gap(kWideGap),
               Spring()});
}

Layout UpdateLayout() {
  return Page(
      "PicSixthTabLiveUpdate", "Live Update", "Signatures and new versions of the program.",
      {Card(
           "Installed",
           {Put("lblSignatureVersion"), Put("lblApplicationVersion"),
            Row({Text("Signatures:"), Put("lblTotalSignatureInTabSignature").Grow()})
                .Gap(kTightGap),
            Row({Text("Last update:"), Put("lblLastUpdateDefinationDate").Grow()}).Gap(kTightGap)}),
       Card("Update", {Row({Put("imgUpdatesAvailable").With("tab-update", kTabIcon),
                            Put("lblUpdatesAvailable").As(Role::kLink)}),
                       Put("lblFTPStatus").As(Role::kStrong), Put("pgbFTP").Called("Transfer"),
                       Put("lblTransferInfo").As(Role::kMuted),
                       Row({Put("cmdDownload").As(Role::kPrimary), Put("cmdFTPDownloadCancel")})}),
       Card("Fetched", {Field("Program", "txtFTPExecutableZIPFile"),
                        Field("Signatures", "txtFTPSignatureZIPFile")}),
       Spring()});
}

Layout DefenderLayout() {
  const auto detail = [](std::string_view caption, std::string_view control) {
    return Row({Text(caption).Wide(kLongCaptionWidth), Put(control).Called(caption).Grow()});
  };
  return Page(
      "picHiJackRestore", "Defender", "The settings of the browser, and what they go back to.",
      {Column({Put("lvwBrowserHijackRestore").Called("Settings of the browser").Ticks().Grow(),
               Put("lvwAllowedBlockedURLs").Called("Allowed and blocked addresses").Ticks().Grow()})
           .Grow(),
       Card({}, {Put("lblSetting").As(Role::kStrong),
                 Row({Column({detail("Current setting:", "txtCurrentSetting"),
                              detail("Restore to:", "txtRestoreSettingTo"),
                              detail("IE default setting:", "txtInternetExplorerDefaultSetting")})
                          .Grow(3),
                      Put("txtSetting").Called("Description").High(kTextHeight).Grow(2)}),
                 Put("lblChangeRestoreURL").As(Role::kLink).Narrow()}),
       Row({Put("chlSelectAllBHR"), Put("lblHint").As(Role::kMuted), Spring()}),
       Row({Put("imgListOfAllowedBlockedURLs").Called("List of Allowed/Blocked &URLs"),
            Put("imgSwitchTORestoreListOfURLs").Called("S&witch to Restore List of URLs"), Spring(),
            Put("imgRemoveAllowRestoreURLs").Called("Re&move").With("remove"),
            Put("imgRestore")
                .Called("&Restore Internet Explorer Settings")
                .With("restore")
                .As(Role::kPrimary)})});
}

Layout AdvancedLayout() {
  return Page(
      "picBHOLeftView", "Advanced tools", "Browser helper objects and startup programs.",
      {Row({
               Put("tvwAdvancedTools").Called("Tools").Wide(kToolsWidth),
               Column(
                   {Put("lvwBHOs")
                        .Called("Browser helper objects")
                        .Pictures({"trace-program", {}, "message-question", {}, "stop", "row-good"})
                        .States({{{.picture = helper_state::kUndecided}, "Not decided"},
                                 {{.picture = helper_state::kBlocked}, "Blocked"},
                                 {{.picture = helper_state::kAllowed}, "Allowed"}})
                        .Grow(),
                    Put("lvwStartup")
                        .Called("Startup programs")
                        .FilesIn(1)
                        .States({{{.colour = Colour::kRed}, "Blocked"},
                                 {{.colour = Colour::kGreen}, "Allowed"}})
                        .Grow(),
                    Row({Put("lblAllowBHO").As(Role::kLink), Put("lblBlockBHO").As(Role::kLink),
                         Put("lblAllowThisStartupItem").As(Role::kLink),
                         Put("lblBlockThisStartupItem").As(Role::kLink), Spring()})
                        .Gap(kWideGap)})
                   .Grow(),
           })
           .Gap(kWideGap)
           .Grow()});
}

Layout NewsLayout() {
  return Page("picNewsAndReport", "News", "From the maker of the program.",
              {Card({}, {Put("wbrNewsAndReport").Called("News").Grow()}).Grow(),
               Row({Put("lblReportPage").As(Role::kLink), Spring()})});
}

}  // namespace

FormLayout MainLayout() {
  return {
      .form = "frmMain",
      .kind = WindowKind::kMain,
      .content = Row({
                         Tabs(),
                         Column({ScanPageLayout(), DefenderLayout(), OptionsLayout(),
                                 ScheduleLayout(), UpdateLayout(), AdvancedLayout(),
                                 // Until a tab is chosen the first page covers this one.
                                 NewsLayout().Unless("picSpywareAdwareRightWindow")})
                             .Gap(kNoGap)
                             .Grow(),
                     })
                     .Gap(kNoGap),
      .menus = {{"mnuFile", {"mnuFCheckForUpdates", "mnuFTrayMenu", "", "mnuFClose"}},
                {"mnuOption", {"mnuOConfiguration"}},
                {"mnuTools", {"mnuTDefender", "mnuTSchedule", "mnuTLiveUpdate"}},
                {"mnuHelp", {"mnuOnlineHelp", "", "mnuHAbout"}}},
      .keyboard = {"vbatvwResults", "cmdFinish"},
      .behind = {"sfttvwResults", "lvwFilesToBeDeleted", "lvwRegistryEntriesFound",
                 "cmdCheckUncheckAll", "lvwTrackingCookieObjectrecognized", "lvwFileNotFounds",
                 "lvwBlockedCookies", "lvwIgnoredSpywares", "lvwRegBackup", "cmdIgnoredProcesses",
                 "cmdViewResults", "lblTotalSpywares", "cmdcancel", "lblEnableAutoScan", "picLeft",
                 "Label34", "vbatvwStartup", "vbaPrgBar"},
  };
}

}  // namespace quarnel
