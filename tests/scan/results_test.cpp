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
    results.AddFileTrace({.path = std::string(path),
                          .company = "Examplesoft",
                          .threatName = std::string(threat),
                          .typeName = "Adware",
                          .spywareId = "id-1"},
                         root_);
  }
  void Ignore(std::string_view trace) {
    resultsPage.lvwIgnoredSpywares.Add({.text = std::string(trace)});
  }
  void AddProgram(std::string_view path, std::string_view threat) {
    results.current = {.type = "Trojan", .name = std::string(threat), .path = std::string(path)};
    results.AddSpaywareToResults(path);
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

TEST_F(ResultsTest, TicksReachTheRowOfExactlyThatTrace) {
  AddFile("C:\\x", "A");
  AddFile("C:\\[Found] - y", "A");
  resultsPage.lvwRegistryEntriesFound.Add(
      {.text = "c", .subItems = {"n", "t", "0", "K", "V", "HKEY_USERS\\K -> Value Name: V"}});
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
  SafeList safeList{files(), log};
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
}

}  // namespace
}  // namespace quarnel
