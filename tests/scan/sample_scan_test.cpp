// The phases of a scan, one after the other, on the sample machine: everything planted is found,
// under its threat and by its text, and nothing else is.

#include "machine/sample.h"
#include "scan/cookie_scan.h"
#include "scan/file_scan.h"
#include "scan/memory_scan.h"
#include "scan/registry_scan.h"
#include "scan/scan_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class SampleScanTest : public ScanTest {
 protected:
  CookieScan cookieScan{context, "Quarnel"};
  MemoryScan memoryScan{context, platform().processes(), {}};
  RegistryScan registryScan{context, registry()};
  FileScan fileScan{context};

  // "threat: trace" of every line below a threat, in order.
  std::vector<std::string> Scan() {
    cookieScan.DeleteSelectedCookies(resultsPage.lvwTrackingCookieObjectrecognized, false);
    memoryScan.MemoryItemsInspection(page.pbgMain);
    registryScan.ScanRegistry();
    fileScan.ScanSignatureFiles();
    std::vector<std::string> found;
    for (const TreeNodeRef& node : resultsPage.vbatvwResults.InOrder()) {
      if (node->parent) found.push_back(node->parent->text + ": " + node->text);
    }
    std::sort(found.begin(), found.end());
    return found;
  }
};

TEST_F(SampleScanTest, FindsWhatWasPlantedAndNothingElse) {
  const PlantedSample sample = PlantSample(platform());
  const Victim victim(platform(), sample.programPath);
  ASSERT_NE(victim.Id(), 0U);
  std::vector<std::string> expected;
  for (const PlantedTrace& trace : sample.traces) {
    expected.push_back(trace.threat + ": " + std::string(kFoundPrefix) + trace.trace);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Scan(), expected);
  EXPECT_EQ(page.lblMemoryInfected.Caption(), "1");
  EXPECT_EQ(LogText(), "");
}

}  // namespace
}  // namespace quarnel
