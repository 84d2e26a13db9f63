#include "scan/memory_scan.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "scan/progress.h"
#include "scan/scan_fixture.h"
#include "signatures/md5.h"
#include "support/listed_processes.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MemoryScanTest : public ScanTest {
 protected:
  ListedProcesses processes;
  std::vector<MemoryAlert> alerts;
  MemoryScan memoryScan{context, processes,
                        [this](const MemoryAlert& alert) { alerts.push_back(alert); }};

  std::string Run(std::string_view name, std::string_view content) {
    const std::string path = Make(name, content);
    processes.records.push_back({static_cast<uint32_t>(processes.records.size()), 1, path});
    return ToUpper(path);
  }
  void Sign(std::string_view content) {
    Install({.programs = HexText(Md5Of(content)) + "^11^Runner\n"});
  }
};

TEST_F(MemoryScanTest, RunningThreatEntersTheResultsOfAScan) {
  Run("idle", "");
  const std::string path = Run("bad.exe", "bad");
  Run("good.exe", "good");
  Run("second copy.exe", "bad");
  Sign("bad");
  memoryScan.MemoryItemsInspection(page.pbgMain);
  // The second copy is counted and not entered.
  EXPECT_THAT(TreeLines(), ElementsAre("Runner", "  [Found] - " + path));
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_EQ(resultsPage.vbatvwResults.At(1)->columns.front(), "Trojan");
  EXPECT_EQ(page.lblMemoryInfected.Caption(), "2");
  EXPECT_EQ(page.lblMemoryInspected.Caption(), "3");
  // The number of processes is that of the last time, so nothing is inspected.
  memoryScan.MemoryItemsInspection(page.pbgMain);
  EXPECT_EQ(page.lblMemoryInfected.Caption(), "2");
}

TEST_F(MemoryScanTest, OutsideAScanAHitRaisesTheAlert) {
  page.ImgStopScanMouseMove.SetEnabled(false);
  Run("idle", "");
  const std::string path = Run("bad.exe", "bad");
  Sign("bad");
  memoryScan.MemoryItemsInspection(page.pbgMain);
  EXPECT_THAT(TreeLines(), IsEmpty());
  ASSERT_EQ(alerts.size(), 1U);
  EXPECT_EQ(alerts[0].Question(),
            path +
                " is running in the memory and has been detected as Trojan.\r\n\r\n Do you "
                "wish to terminate this application?");
  resultsPage.lvwIgnoredSpywares.Add({.text = path});
  flags.lastProcessCount = 0;
  memoryScan.MemoryItemsInspection(page.pbgMain);
  EXPECT_EQ(alerts.size(), 1U);
}

TEST_F(MemoryScanTest, SnapshotVariantWalksEachTimeAndEndsAtAHundred) {
  page.pbgMain.SetMax(100);
  Run("bad.exe", "bad");
  Sign("bad");
  memoryScan.CountProcessIn95();
  EXPECT_EQ(resultsPage.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_EQ(page.lblPercentageCompleted.Caption(), "Scanning Memory : 100% completed.");
  page.pbgMain.SetValue(98);
  IncrementProgressBar(page.pbgMain);
  EXPECT_EQ(page.pbgMain.Value(), 0);
}

TEST_F(MemoryScanTest, ModulePathsBelowSystem32AreMadePlain) {
  EXPECT_EQ(memoryScan.ActuallProcessName("\\SystemRoot\\System32\\smss.exe"),
            GetWindowsSystemFolder(machine()) + "\\smss.exe");
  EXPECT_EQ(memoryScan.ActuallProcessName("C:\\Program Files\\x.exe"), "C:\\Program Files\\x.exe");
}

}  // namespace
}  // namespace quarnel
