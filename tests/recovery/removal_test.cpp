#include "recovery/removal.h"

#include <gmock/gmock.h>

#include "recovery/restore_point.h"
#include "scan/scan_fixture.h"
#include "support/recording_window.h"
#include "support/victim.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

const Threat kThreat{.name = "Threat", .typeName = "Type", .company = "Company", .spywareId = "7"};

// A removal on a machine with real files, keys and cookies.
class RemovalTest : public ScanTest {
 protected:
  RemovalTest() {
    page.ImgStopScanMouseMove.SetVisible(false);
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    CreateFolders(files(), machine().ProgramFolder());
    DeleteTree(files(), Quarantine());
  }
  ~RemovalTest() override {
    DeleteTree(files(), Quarantine());
    DeleteTree(files(), BackupFolder(machine()));
    IgnoringErrors([&] { files().Delete(RemovalReportPath(machine())); });
  }

  std::string Quarantine() { return GetPathWithSlash(machine().ProgramFolder()) + "Quarantine"; }
  std::vector<std::string> Quarantined() {
    return Exists(Quarantine()) ? Names(Quarantine()) : std::vector<std::string>();
  }

  // A file trace in the results, with its file unless it is to be missing.
  std::string AddFile(const std::string& name, bool makeFile = true) {
    std::string path = name.find('\\') == std::string::npos ? Path(name) : name;
    if (makeFile) WriteWholeFile(files(), path, "x");
    results.Enter({.threat = kThreat,
                   .trace = FileTrace{.path = path, .typeName = "Type", .threatName = kThreat.name},
                   .text = path,
                   .knownBy = KnownBy::kFileRows});
    return path;
  }
  void AddKey(const std::string& key, const std::string& value) {
    const RegistryTrace trace{
        .threatName = kThreat.name, .hive = hive::kCurrentUser, .key = key, .valueName = value};
    results.Enter({.threat = kThreat, .trace = trace, .text = trace.Text(), .rowsFirst = true});
  }
  void TickAll() {
    for (const TreeNodeRef& node : resultsPage.vbatvwResults.InOrder()) node->checked = true;
  }
  void RemoveEverything() {
    TickAll();
    removal.cmdRemoveSpywares_Click();
  }
  // "trace: fate (detail)" of every trace of the saved report.
  std::vector<std::string> Fates() {
    std::vector<std::string> fates;
    const auto report = LoadRemovalReport(files(), machine());
    if (!report) return {"no report"};
    for (const ReportedTrace& trace : report->traces) {
      std::string line = FileName_Parse(trace.trace) + ": " + std::string(NameOf(trace.fate));
      if (!trace.detail.empty() && trace.fate != Fate::kQuarantined) line += " " + trace.detail;
      fates.push_back(line);
    }
    return fates;
  }

  Settings settings{registry(), "Quarnel"};
  RemovalPage removalPage{form};
  CookieScan cookieScan{context, "Quarnel"};
  RecordingWindow window;
  BackupPage backupPage{form};
  Backup backup{{.page = backupPage,
                 .results = resultsPage,
                 .files = files(),
                 .registry = registry(),
                 .machine = machine(),
                 .host = host,
                 .log = log}};
  Removal removal{{.page = removalPage,
                   .scan = page,
                   .results = resultsPage,
                   .model = results,
                   .unread = unread,
                   .cookies = cookieScan,
                   .flags = flags,
                   .backup = backup,
                   .window = window,
                   .files = files(),
                   .registry = registry(),
                   .processes = platform().processes(),
                   .machine = machine(),
                   .desktop = platform().desktop(),
                   .settings = settings,
                   .host = host,
                   .log = log}};
  FileRemoval fileRemoval{{.files = files(),
                           .processes = platform().processes(),
                           .machine = machine(),
                           .settings = settings,
                           .host = host,
                           .log = log}};
};

TEST_F(RemovalTest, SaysWhyItDoesNotStart) {
  removal.cmdRemoveSpywares_Click();
  AddFile("a.txt");
  removal.cmdRemoveSpywares_Click();
  page.ImgStopScanMouseMove.SetVisible(true);
  RemoveEverything();
  ASSERT_EQ(host.messages.size(), 3U);
  EXPECT_EQ(host.messages[0].text, "There is no Spyware/Adware in the results list.");
  EXPECT_EQ(host.messages[1].text, "Nothing selected.");
  EXPECT_EQ(host.messages[2].text, "Please wait while [Scanning Process] is running.");
  EXPECT_EQ(host.messages[0].title, "Quarnel");
  EXPECT_EQ(host.messages[0].icon, MessageIcon::kInformation);
  EXPECT_TRUE(Exists(Path("a.txt")));
  EXPECT_FALSE(removal.LastReport());
}

TEST_F(RemovalTest, RemovesEverythingTickedByItsKind) {
  const std::string text = AddFile("a.txt");
  const std::string component = AddFile("b.DLL");
  const std::string control = AddFile("c.ocx");
  const std::string program = AddFile("d.exe");
  const std::string noExtension = AddFile("none");
  AddKey(Key("Whole"), "");
  AddKey(Key("Values"), "Gone");
  RegCreateKeyValue(registry(), kRoot, Key("Whole\\deep\\er"), "v", "1");
  RegCreateKeyValue(registry(), kRoot, Key("Values"), "Gone", "1");
  RegCreateKeyValue(registry(), kRoot, Key("Values"), "Stays", "1");
  resultsPage.chkCreateRestore.SetValue(1);
  const std::string dump = DataFolder(machine()) + "10004.qks";
  window.onAsk = [&](std::string_view what) {
    if (what == "restart") {
      EXPECT_TRUE(Exists(dump));
    }
  };
  RemoveEverything();

  for (const std::string& path : {text, component, control, program, noExtension}) {
    EXPECT_FALSE(Exists(path)) << path;
  }
  EXPECT_THAT(Quarantined(), IsEmpty());
  EXPECT_THAT(EnumSubKeys(registry(), kRoot, kTestKey), ElementsAre("Values"));
  EXPECT_EQ(QueryText(registry(), kRoot, Key("Values"), "Stays"), "1");
  RegistryValue value;
  EXPECT_FALSE(QueryValue(registry(), kRoot, Key("Values"), "Gone", value));
  // By default windows are closed without a word.
  EXPECT_THAT(window.asked, ElementsAre("select 0", "restart"));
  EXPECT_TRUE(resultsPage.lvwFilesToBeDeleted.Empty());
  EXPECT_TRUE(resultsPage.lvwRegistryEntriesFound.Empty());
  EXPECT_EQ(resultsPage.vbatvwResults.Count(), 0U);
  EXPECT_EQ(resultsPage.sfttvwResults.Count(), 0U);
  EXPECT_EQ(resultsPage.txtAdwareSpyware.Caption(), "0");
  EXPECT_EQ(removalPage.lblDeletingCaption.Caption(), "Quarnel - Quarnel");
  EXPECT_EQ(removalPage.lblScanSummaryMessage.Caption(), "YOUR PC IS NOW FREE OF ALL SPYWARE");
  EXPECT_TRUE(removalPage.picRemoveSummary.Visible());
  EXPECT_FALSE(resultsPage.picResultsRightWindow.Visible());
  const RemovalReport& report = *removal.LastReport();
  EXPECT_EQ(report.Count(Fate::kRemoved), 7U);
  EXPECT_EQ(report.traces.size(), 7U);
  // Everything was still there when it was backed up.
  EXPECT_EQ(report.backup->files, 5U);
  EXPECT_TRUE(report.backup->Complete());
  EXPECT_EQ(report.problem, "");
  EXPECT_EQ(LogText(), "");
}

TEST_F(RemovalTest, KeepsWhatIsNotTickedOrExempt) {
  AddFile("gone.txt");
  const std::string unticked = AddFile("unticked.txt");
  const std::string exempt = AddFile("exempt.txt");
  TickAll();
  resultsPage.vbatvwResults.At(3)->checked = false;
  resultsPage.lvwIgnoredSpywares.Add({.text = ToUpper(exempt)});
  removal.cmdRemoveSpywares_Click();
  EXPECT_TRUE(Exists(unticked));
  EXPECT_TRUE(Exists(exempt));
  EXPECT_THAT(Fates(), UnorderedElementsAre("gone.txt: removed", "unticked.txt: kept not ticked",
                                            "exempt.txt: kept on the safe list"));
  EXPECT_THAT(Texts(resultsPage.lvwFilesToBeDeleted), ElementsAre(unticked, exempt));
  // The root keeps its unticked child; the exempt one was pruned with its tick.
  EXPECT_THAT(TreeLines(), ElementsAre("Threat", "  [Found] - " + unticked));
  EXPECT_EQ(removalPage.lblThreatLevelCount[kLevel - 1].Caption(), "1");
  EXPECT_EQ(removalPage.lblScanSummaryMessage.Caption(), "YOUR PC IS CLEAR OF UNWANTED SPYWARE");
  EXPECT_TRUE(removalPage.lblScanSummaryMessage.Bold());
}

TEST_F(RemovalTest, HandlesNothingWhenOnlyExemptTracesAreTicked) {
  const std::string exempt = AddFile("exempt.txt");
  resultsPage.lvwIgnoredSpywares.Add({.text = exempt});
  RemoveEverything();
  EXPECT_THAT(window.asked, ElementsAre("select 0"));  // no restart is offered
  EXPECT_THAT(Texts(resultsPage.lvwFilesToBeDeleted), ElementsAre(exempt));
}

TEST_F(RemovalTest, TellsWhatResistedByWhatIsThere) {
  const std::string component = AddFile("held.dll");
  files().SetAttributes(component, file_attribute::kReadOnly);
  const std::string text = AddFile("held.txt");
  files().SetAttributes(text, file_attribute::kReadOnly);
  const std::string hidden = AddFile("hidden.txt");
  files().SetAttributes(hidden, file_attribute::kHidden);
  AddFile("missing.txt", false);
  RemoveEverything();
  // A component that cannot be deleted is quarantined; any other file only when it was not found.
  EXPECT_THAT(Quarantined(), ElementsAre("10410110810046100108108"));
  EXPECT_FALSE(Exists(component));
  EXPECT_TRUE(Exists(text));
  EXPECT_TRUE(Exists(hidden));
  EXPECT_TRUE(resultsPage.lvwFilesToBeDeleted.Empty());
  EXPECT_THAT(Fates(), UnorderedElementsAre("held.dll: quarantined",
                                            StartsWith("held.txt: failed still there: Permission"),
                                            "hidden.txt: failed still there: a hidden file is "
                                            "left alone",
                                            "missing.txt: gone"));
  EXPECT_THAT(removal.LastReport()->traces[0].detail,
              EndsWith("\\Quarantine\\10410110810046100108108"));
}

TEST_F(RemovalTest, AFileThatComesBackIsAFailure) {
  const std::string path = AddFile("phoenix.txt");
  host.onEvents = [&] {
    if (!Exists(path)) Make("phoenix.txt", "again");
  };
  RemoveEverything();
  host.onEvents = nullptr;
  EXPECT_THAT(Fates(), ElementsAre("phoenix.txt: failed still there"));
}

TEST_F(RemovalTest, RefusesPathsThatLeadElsewhere) {
  Make("precious.txt", "keep");
  files().CreateFolder(Path("sub"));
  const std::string hostile[] = {Path("sub\\..\\precious.txt"), Scratch() + "\\\\precious.txt",
                                 Path("precious.txt:stream"), Path("nul.txt"),
                                 "\\\\.\\PhysicalDrive0"};
  for (const std::string& path : hostile) AddFile(path, false);
  AddFile("nobackslash", false);
  resultsPage.lvwFilesToBeDeleted.SetText(5, "nobackslash");
  TickAll();
  for (size_t i = 0; i < 6; ++i) resultsPage.lvwFilesToBeDeleted.SetChecked(i, true);
  removal.cmdRemoveSpywares_Click();
  EXPECT_EQ(Read(Path("precious.txt")), "keep");
  EXPECT_TRUE(resultsPage.lvwFilesToBeDeleted.Empty());
  const RemovalReport& report = *removal.LastReport();
  EXPECT_EQ(report.Count(Fate::kRefused), std::size(hostile));
  EXPECT_THAT(LogText(), HasSubstr("the path names a stream: "));
}

// A row whose hive has no name is shown, and found on the safe list, under that of the row before.
TEST_F(RemovalTest, RowWithoutAHiveTakesTheNameOfTheRowBefore) {
  AddKey(Key("K"), "v");
  RegistryTrace nameless{.threatName = kThreat.name, .key = Key("K"), .valueName = "w"};
  resultsPage.lvwRegistryEntriesFound.SetChecked(
      resultsPage.lvwRegistryEntriesFound.Add(nameless.Row()), true);
  nameless.hive = hive::kCurrentUser;
  resultsPage.lvwIgnoredSpywares.Add({.text = nameless.Text()});
  RemoveEverything();
  EXPECT_EQ(resultsPage.lvwRegistryEntriesFound.Count(), 1U);
}

TEST_F(RemovalTest, CookiesGoEveryOtherRowAtATime) {
  Install({.blockedCookies = "*.example\n"});
  const std::string folder = GetPath(machine(), csidl::kCookies);
  ListView& list = resultsPage.lvwTrackingCookieObjectrecognized;
  resultsPage.lvwIgnoredSpywares.Add({.text = folder + "\\u@safe[1].txt"});
  std::vector<std::string> paths = {"u@one[1].txt", "u@two[1].txt", "u@safe[1].txt",
                                    "u@four[1].txt"};
  for (std::string& path : paths) {
    path.insert(0, folder + "\\");
    Write(path, "x");
    results.Enter({.threat = {.name = std::string(kTrackingObject)},
                   .trace = CookieTrace{path},
                   .text = path,
                   .ignoredIsListed = true,
                   .rowsFirst = true});
  }
  // Neither a stop of the scan nor a click on another tab in the middle holds it back.
  flags.scanStopRequested = true;
  host.onEvents = [this] { flags.scanStopRequested = true; };
  RemoveEverything();
  host.onEvents = nullptr;
  EXPECT_FALSE(Exists(paths[0]));
  EXPECT_FALSE(Exists(paths[3]));
  EXPECT_THAT(Texts(list), ElementsAre(paths[1], paths[2]));
  EXPECT_THAT(Fates(),
              ElementsAre("u@one[1].txt: removed",
                          "u@two[1].txt: failed still there: not reached, remove it once more",
                          "u@safe[1].txt: kept on the safe list", "u@four[1].txt: removed"));
  for (const size_t left : {1U, 2U}) files().Delete(paths[left]);
}

// What a scan finds of a threat that another phase met before has a row and no node.
TEST_F(RemovalTest, TakesAllThatTheListsHoldWhateverTheTreeShows) {
  AddFile("seen.txt");
  for (const char* name : {"bare.txt", "[Found] - f.txt", "exempt.txt"}) {
    resultsPage.lvwFilesToBeDeleted.Add(FileTrace{.path = Make(name)}.Row());
  }
  resultsPage.lvwIgnoredSpywares.Add({.text = Path("exempt.txt")});
  RegCreateKeyValue(registry(), kRoot, Key("Bare"), "v", "1");
  resultsPage.lvwRegistryEntriesFound.Add(
      RegistryTrace{.hive = kRoot, .key = Key("Bare"), .valueName = "v"}.Row());
  removal.RemoveAllFound();
  EXPECT_THAT(Fates(), ElementsAre("seen.txt: removed", "bare.txt: removed",
                                   "[Found] - f.txt: removed", "exempt.txt: kept on the safe list",
                                   EndsWith("-> Value Name: v: removed")));
  EXPECT_TRUE(removal.LastReport()->AllGone());
  EXPECT_EQ(removal.LastReport()->CountExempt(), 1U);
}

TEST_F(RemovalTest, TellsOfEveryTickedNodeThatReachedNoRow) {
  AddFile("[Found] - f.txt");
  AddFile("gone.txt");
  // The user has taken a file from the safe list since the scan: it has a node alone.
  const TreeNodeRef root = resultsPage.vbatvwResults.Find(kThreat.name);
  resultsPage.vbatvwResults.AddChild(root, "K9", "[Found] - " + Make("unlisted.txt"));
  RemoveEverything();
  const std::vector<std::string> expected = {
      "[Found] - f.txt: failed still there: its name holds a mark of the list", "gone.txt: removed",
      "unlisted.txt: failed still there: not in the lists of this scan, scan again"};
  EXPECT_THAT(Fates(), ElementsAreArray(expected));
  // The end screen shows the same, what is not gone first.
  const ListView& shown = removalPage.lvwRemovalReport;
  ASSERT_EQ(shown.Count(), expected.size());
  EXPECT_EQ(shown.At(0).text, Path("[Found] - f.txt"));
  EXPECT_EQ(shown.At(0).SubItem(1), "failed");
  EXPECT_EQ(shown.At(0).SubItem(2), "still there: its name holds a mark of the list");
  EXPECT_EQ(shown.At(shown.Count() - 1).SubItem(1), "removed");
  removal.cmdCopyRemoval_Click();
  EXPECT_THAT(host.clipboard, HasSubstr("removed      " + Path("gone.txt") + "\r\n"));
}

TEST_F(RemovalTest, TellsFirstWhatCannotBeBroughtBack) {
  AddFile("a.txt");
  AddKey(Key("Gone"), "v");
  resultsPage.chkCreateRestore.SetValue(1);
  RemoveEverything();
  EXPECT_TRUE(removalPage.lblRestorePointState.Visible());
  const ListRow& first = removalPage.lvwRemovalReport.At(0);
  EXPECT_THAT(first.text, EndsWith("_REGBK.bkp"));
  EXPECT_EQ(first.SubItem(1), "not saved");
  EXPECT_THAT(first.SubItem(2), StartsWith("the key is gone"));
}

TEST_F(RemovalTest, AnErrorOnTheWayEndsItWithAReport) {
  AddFile("a.txt");
  window.onAsk = [](std::string_view) { throw RuntimeError(ErrorNumber::kTypeMismatch); };
  RemoveEverything();
  EXPECT_TRUE(Exists(Path("a.txt")));
  EXPECT_THAT(LogText(), HasSubstr("cmdRemoveSpywares_Click in frmMain"));
  EXPECT_THAT(LoadRemovalReport(files(), machine())->problem, HasSubstr("Type mismatch"));
  EXPECT_THAT(Fates(), ElementsAre("a.txt: failed still there: not reached, remove it once more"));
}

TEST_F(RemovalTest, AsksAboutBrowsersByTheSettings) {
  for (const auto& [always, asks] :
       {std::pair{"True", true}, std::pair{"False", false}, std::pair{"perhaps", true}}) {
    window.asked.clear();
    AddFile("a.txt");
    settings.SaveSetting("OptionAndSettings", "ShowAlways", always);
    RemoveEverything();
    EXPECT_EQ(window.asked.front() == "browser", asks);
  }
}

TEST_F(RemovalTest, LevelsAboveFiveEndTheCount) {
  TreeView& tree = resultsPage.vbatvwResults;
  for (const char* level : {"1 ", "\0243 ", "0 ", "none", "5 "}) {
    tree.SetColumn(*tree.AddRoot(level, level), 2, level);
  }
  removal.CountThreatLevels();
  std::vector<std::string> counts;
  for (const Label& count : removalPage.lblThreatLevelCount) counts.push_back(count.Caption());
  EXPECT_THAT(counts, ElementsAre("1", "0", "1", "0", "1"));
  tree.SetColumn(*tree.AddRoot("6", "6"), 2, "6 ");
  removal.CountThreatLevels();
  EXPECT_THAT(LogText(), HasSubstr("Subscript out of range"));
}

TEST_F(RemovalTest, EndsARunningProgramByItsPath) {
  const Victim victim(platform(), Path("averylongprogramname.exe"));
  ASSERT_NE(victim.Id(), 0U);
  AddFile(victim.Path(), false);
  RemoveEverything();
  EXPECT_TRUE(platform().processes().WaitForEnd(victim.Id(), std::chrono::seconds(10)));
  EXPECT_FALSE(Exists(victim.Path()));
  EXPECT_THAT(Fates(), ElementsAre(::testing::AnyOf("averylongprogramname.exe: removed",
                                                    "averylongprogramname.exe: quarantined")));
}

TEST_F(RemovalTest, NoProcessIsEndedForANameThatNoneHas) {
  EXPECT_TRUE(fileRemoval.StopThisProcess("no such program.exe"));
  EXPECT_TRUE(fileRemoval.StopThisProcess(""));
  EXPECT_EQ(fileRemoval.StopAndKillSpyExe("nobackslash.exe"), 0);
  EXPECT_EQ(fileRemoval.StopAndKillSpyExe(Path("missing.exe")), -1);
  EXPECT_EQ(fileRemoval.UnregisterAndDeleteDLLAndOCX(Path("missing.dll")), 0);
  EXPECT_FALSE(fileRemoval.DeleteSpywareFile(Path("missing.txt")));
}

TEST_F(RemovalTest, ANameTakenInTheQuarantineStaysOrGetsASuffix) {
  const auto quarantine = [&](std::string_view content) {
    FileOutcome outcome;
    fileRemoval.MoveThisFile(Make("a.b", content), outcome);
    return outcome;
  };
  EXPECT_EQ(quarantine("1").quarantine, Quarantine() + "\\974698");
  EXPECT_NE(quarantine("2").obstacle, "");
  EXPECT_TRUE(Exists(Path("a.b")));
  EXPECT_THAT(LogText(), HasSubstr("MoveThisFile"));
  settings.Save(setting::kStrict, 1);
  EXPECT_EQ(quarantine("3").quarantine, Quarantine() + "\\974698_2");
  EXPECT_EQ(Read(Quarantine() + "\\974698"), "1");
}

TEST(RemovalReports, ComeBackWholeOrNotAtAll) {
  RemovalReport report{.time = "2008-06-14 10:25:16", .problem = "a\tb\\c\r\nd"};
  report.backup = BackupReport{.stem = "1_2", .folder = "C:\\B", .registryTraces = 1, .files = 2};
  report.backup->failures = {{"C:\\a", "gone"}};
  report.traces = {{TraceKind::kCookie, "C:\\\xE4\n", "T", Fate::kKept, "why"}};
  const std::string text = RemovalReportText(report);
  const auto back = ReadRemovalReport(text);
  ASSERT_TRUE(back);
  EXPECT_EQ(RemovalReportText(*back), text);
  EXPECT_EQ(back->problem, report.problem);
  EXPECT_EQ(back->traces, report.traces);
  for (size_t length = 0; length < text.size(); ++length) {
    EXPECT_FALSE(ReadRemovalReport(std::string_view(text).substr(0, length))) << length;
  }
  EXPECT_FALSE(ReadRemovalReport(text + "x\n"));
}

}  // namespace
}  // namespace quarnel
