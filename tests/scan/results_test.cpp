#include "scan/results.h"

#include <gmock/gmock.h>

#include "scan/safe_list.h"
#include "scan/scan_fixture.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ResultsTest : public ScanTest {
 protected:
  void AddFile(std::string_view path, std::string_view threat) {
    const FileTrace trace{std::string(path), "Adware", std::string(threat)};
    results.Enter({.threat = {trace.threatName, trace.typeName, "Examplesoft", "id-1"},
                   .trace = trace,
                   .text = trace.path,
                   .knownBy = KnownBy::kFileRows,
                   .lastRoot = &root_,
                   .oncePerTrace = true});
  }
  void Ignore(std::string_view trace) {
    resultsPage.lvwIgnoredSpywares.Add({.text = std::string(trace)});
  }
  void AddProgram(std::string_view path, std::string_view threat) {
    results.AddSpaywareToResults(path, {std::string(path), "Trojan", std::string(threat)});
  }

  TreeNodeRef root_;
};

TEST_F(ResultsTest, TwoTracesOfOneThreatMakeOneRoot) {
  AddFile("C:\\a.exe", "Bad One");
  AddFile("C:\\b.exe", "Bad One");
  EXPECT_THAT(TreeLines(),
              ElementsAre("Bad One", "  [Found] - C:\\a.exe", "  [Found] - C:\\b.exe"));
  ASSERT_EQ(resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Count(), 1U);
  const ListRow& threat = resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.At(0);
  EXPECT_EQ(threat.SubItem(1), "Adware");
  EXPECT_EQ(threat.SubItem(2), "Examplesoft");
  EXPECT_EQ(threat.tag, "id-1");
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 2U);
  EXPECT_EQ(resultsPage.vbatvwResults.At(1)->columns, (Strings{"Adware", "4 "}));
  EXPECT_EQ(resultsPage.vbatvwResults.At(3)->key, "K2[[]]C:\\b.exe");
  ASSERT_EQ(resultsPage.sfttvwResults.Count(), 3U);
  EXPECT_EQ(resultsPage.sfttvwResults.At(0).Cell(2), "Adware");
  EXPECT_EQ(resultsPage.sfttvwResults.At(2).level, 1);
}

// The root variable is that of the last new threat, also for a trace of an earlier one.
TEST_F(ResultsTest, ThirdTraceHangsUnderTheLastNewThreat) {
  AddFile("C:\\1", "A");
  AddFile("C:\\2", "B");
  AddFile("C:\\3", "A");
  EXPECT_THAT(TreeLines(),
              ElementsAre("A", "  [Found] - C:\\1", "B", "  [Found] - C:\\2", "  [Found] - C:\\3"));
}

TEST_F(ResultsTest, IgnoredFileEntersNoListAndShowsUnderTheLastRoot) {
  Ignore("C:\\ignored");
  AddFile("C:\\ignored", "A");
  EXPECT_EQ(resultsPage.vbatvwResults.Count(), 0U);
  AddFile("C:\\1", "B");
  AddFile("C:\\ignored", "A");
  EXPECT_THAT(TreeLines(), ElementsAre("B", "  [Found] - C:\\1", "  [Ignored] - C:\\ignored"));
  resultsPage.chkDoNotShowIgnoredItem.SetValue(1);
  AddFile("C:\\ignored", "A");
  EXPECT_EQ(resultsPage.vbatvwResults.Count(), 3U);
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 1U);
}

TEST_F(ResultsTest, SecondCopyOfARunningThreatFailsOnItsRoot) {
  AddProgram("C:\\RUN\\ONE.EXE", "Runner");
  AddProgram("C:\\RUN\\TWO.EXE", "Runner");
  EXPECT_THAT(TreeLines(), ElementsAre("Runner", "  [Found] - C:\\RUN\\ONE.EXE"));
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_THAT(LogText(), HasSubstr("AddSpaywareToResults of modSpyware"));
  EXPECT_THAT(LogText(), HasSubstr("Error Number :  35602"));
}

TEST_F(ResultsTest, IgnoredProgramStaysInTheListsWithoutAChild) {
  resultsPage.chkDoNotShowIgnoredItem.SetValue(1);
  Ignore("C:\\RUN.EXE");
  AddProgram("C:\\RUN.EXE", "Runner");
  results.RecomputeCounters();
  EXPECT_THAT(TreeLines(), ElementsAre("Runner"));
  EXPECT_EQ(resultsPage.txtAdwareSpyware.Caption(), "1");
}

TEST_F(ResultsTest, TicksOfARootGoDownAndNeverUp) {
  AddFile("C:\\1", "A");
  AddFile("C:\\2", "A");
  TreeView& tree = resultsPage.vbatvwResults;
  tree.SetChecked(*tree.At(1), true);
  results.vbatvwResults_nodeCheck(tree.At(1));
  EXPECT_TRUE(tree.At(3)->checked);
  tree.SetChecked(*tree.At(3), false);
  results.vbatvwResults_nodeCheck(tree.At(3));
  EXPECT_TRUE(tree.At(1)->checked);
  EXPECT_EQ(host.MousePointer(), Pointer::kDefault);
  AddFile("C:\\3", "B");
  resultsPage.chkSelectAllDetectedSpywares.SetValue(1);
  results.chkSelectAllDetectedSpywares_Click();
  for (const TreeNodeRef& node : tree.InOrder()) EXPECT_TRUE(node->checked);
  for (const TreeItem& item : resultsPage.sfttvwResults.Items()) EXPECT_TRUE(item.checked);
  for (const ListRow& row : resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Rows()) {
    EXPECT_TRUE(row.checked);
  }
}

// A list finds by any letter case, so a root is found so, too.
TEST_F(ResultsTest, NamesInAnyLetterCaseShareOneRoot) {
  AddProgram("C:\\RUN.EXE", "Evil Tool");
  AddProgram("C:\\SECOND.EXE", "EVIL TOOL");
  for (const std::string_view path : {"C:\\1", "C:\\2"}) {
    results.Enter({.threat = {.name = "evil tool"},
                   .trace = FileTrace{std::string(path), "Adware", "evil tool"},
                   .text = std::string(path)});
  }
  EXPECT_THAT(TreeLines(),
              ElementsAre("Evil Tool", "  [Found] - C:\\RUN.EXE", "  [Found] - C:\\SECOND.EXE",
                          "  [Found] - C:\\1", "  [Found] - C:\\2"));
}

TEST_F(ResultsTest, ButtonTicksAllAndThenNone) {
  AddFile("C:\\1", "A");
  resultsPage.chkSelectAllDetectedSpywares.Click = [&] {
    results.chkSelectAllDetectedSpywares_Click();
  };
  for (const bool ticked : {true, false}) {
    results.cmdCheckUncheckAll_Click();
    for (const TreeNodeRef& node : resultsPage.vbatvwResults.InOrder()) {
      EXPECT_EQ(node->checked, ticked);
    }
  }
}

TEST_F(ResultsTest, WhatWasNotReadIsReadBackWhole) {
  // On a running Windows another program's test may have left one.
  IgnoringErrors([&] { files().Delete(UnreadFile(machine(), unread).path); });
  EXPECT_TRUE(LoadUnread(files(), machine()).Outcome().empty());
  EXPECT_TRUE(LoadUnread(files(), machine()).ScanWasWhole());
  unread.SetOutcome("Scanning completed.");
  for (const auto& [kind, name] : {std::pair{"file", "C:\\tab\there"}, {"folder", "C:\\\xFF\n"}}) {
    unread.Add(kind, name);
  }
  unread.AddUnnamed(5);
  unread.AddNotRun("Registry", "torn");
  unread.AddNotSaved("Log", "full");
  const WholeFile file = UnreadFile(machine(), unread);
  Write(file.path, file.bytes);
  const Unread loaded = LoadUnread(files(), machine());
  EXPECT_EQ(loaded.Outcome(), "Scanning completed.");
  EXPECT_EQ(loaded.Count(), 7U);
  EXPECT_THAT(loaded.Items(),
              ElementsAre(UnreadItem{"file", "C:\\tab\there"}, UnreadItem{"folder", "C:\\\xFF\n"}));
  EXPECT_THAT(loaded.NotRun(), ElementsAre("Registry: torn"));
  EXPECT_THAT(loaded.NotSaved(), ElementsAre("Log: full"));
  // A file that was cut says nothing, and so nothing is called clean.
  for (size_t cut = 0; cut < file.bytes.size(); ++cut) {
    WriteWholeFile(files(), file.path, file.bytes.substr(0, cut));
    EXPECT_FALSE(LoadUnread(files(), machine()).ScanWasWhole()) << cut;
  }
  files().Delete(file.path);
}

TEST_F(ResultsTest, TicksReachTheRowOfExactlyThatTrace) {
  AddFile("C:\\x", "A");
  AddFile("C:\\[Found] - y", "A");
  resultsPage.lvwRegistryEntriesFound.Add(
      RegistryTrace{.hive = hive::kUsers, .key = "K", .valueName = "V"}.Row());
  const auto select = [&](std::string_view text) {
    TreeNode node;
    node.text = text;
    node.checked = true;
    results.SelectUnselectFiles(node, resultsPage.lvwFilesToBeDeleted);
    results.SelectUnselectRegsitry(node);
  };
  select("[Found] - C:\\X");  // another letter case is found, and then refused
  EXPECT_FALSE(resultsPage.lvwFilesToBeDeleted.At(0).checked);
  select("[Ignored] - C:\\x");
  EXPECT_TRUE(resultsPage.lvwFilesToBeDeleted.At(0).checked);
  select("[Found] - C:\\[Found] - y");  // the trace's own text loses the prefix too
  EXPECT_FALSE(resultsPage.lvwFilesToBeDeleted.At(1).checked);
  for (const std::string_view other :
       {"HKEY_USERS\\k -> Value Name: V", "HKEY_USERS\\K -> Value Name: ", "K"}) {
    select("[Found] - " + std::string(other));
    EXPECT_FALSE(resultsPage.lvwRegistryEntriesFound.At(0).checked) << other;
  }
  select("[Found] - HKEY_USERS\\K -> Value Name: V");
  EXPECT_TRUE(resultsPage.lvwRegistryEntriesFound.At(0).checked);
}

TEST_F(ResultsTest, ResultsTextSetsThreatsAndIgnoredTracesApart) {
  Ignore("C:\\2");
  AddFile("C:\\1", "A");
  AddFile("C:\\2", "A");
  EXPECT_EQ(results.ResultsText(), "\r\nA\r\n[Found] - C:\\1\r\n\r\n[Ignored] - C:\\2\r\n");
}

class SafeListTest : public ResultsTest {
 protected:
  SafeList safeList{files(), machine(), log};
  std::string path = SafeListPath(machine());
};

TEST_F(SafeListTest, TickedTracesAreMovedOnceAndReadBack) {
  AddFile("C:\\1", "A");
  AddFile("C:\\1", "A");
  TreeView& tree = resultsPage.vbatvwResults;
  EXPECT_FALSE(safeList.AddTickedTraces(path, resultsPage));
  for (const TreeNodeRef& node : tree.InOrder()) tree.SetChecked(*node, true);
  EXPECT_TRUE(safeList.AddTickedTraces(path, resultsPage));
  EXPECT_EQ(Read(path), "C:\\1^A^A\r\n");
  EXPECT_THAT(TreeLines(), ElementsAre("A", "  [Ignored] - C:\\1", "  [Ignored] - C:\\1"));
  EXPECT_TRUE(results.IsSpywareIgnored("c:\\1", "", ""));
  EXPECT_FALSE(results.IsSpywareIgnored("C:\\\xC3\xA4", "", ""));
  resultsPage.lvwIgnoredSpywares.Add({.text = "C:\\\xC3\x84"});
  EXPECT_TRUE(results.IsSpywareIgnored("C:\\\xC3\xA4", "", "")) << "letters beyond ASCII";
  resultsPage.lvwIgnoredSpywares.Clear();
  safeList.AddIgnoredSpywaresTolvw(path, "", "", "", false, resultsPage.lvwIgnoredSpywares);
  ASSERT_EQ(resultsPage.lvwIgnoredSpywares.Count(), 1U);
  EXPECT_EQ(resultsPage.lvwIgnoredSpywares.At(0).SubItem(2), "A");
}

TEST_F(SafeListTest, LoadTakesThreeFieldsAndEndsAtAShortLine) {
  WriteWholeFile(files(), path, "a^b^c^d\r\n\xFF^y^z\nshort^line\r\nnever^read^on\r\n");
  safeList.AddIgnoredSpywaresTolvw(path, "", "", "", false, resultsPage.lvwIgnoredSpywares);
  EXPECT_THAT(Texts(resultsPage.lvwIgnoredSpywares), ElementsAre("a", "\xFF"));
  EXPECT_THAT(LogText(), HasSubstr("Subscript out of range"));
  // What cannot be read is not thrown away for want of rows.
  files().Delete(path);
  files().CreateFolder(path);
  resultsPage.lvwIgnoredSpywares.Clear();
  EXPECT_THROW(safeList.Rewrite(path, resultsPage.lvwIgnoredSpywares), RuntimeError);
  files().DeleteFolder(path);
}

}  // namespace
}  // namespace quarnel
