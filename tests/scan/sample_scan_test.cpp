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
  CookieScan cookieScan{{.page = page,
                         .resultsPage = resultsPage,
                         .flags = flags,
                         .results = results,
                         .files = files(),
                         .machine = machine(),
                         .host = host,
                         .log = log,
                         .title = "Quarnel"}};
  MemoryScan memoryScan{{.page = page,
                         .flags = flags,
                         .unread = unread,
                         .results = results,
                         .processes = platform().processes(),
                         .files = files(),
                         .machine = machine(),
                         .host = host,
                         .log = log,
                         .raiseAlert = {}}};
  RegistryScan registryScan{{.page = page,
                             .resultsPage = resultsPage,
                             .flags = flags,
                             .unread = unread,
                             .results = results,
                             .registry = registry(),
                             .files = files(),
                             .machine = machine(),
                             .host = host,
                             .log = log}};
  FileScan fileScan{{.page = page,
                     .flags = flags,
                     .unread = unread,
                     .results = results,
                     .files = files(),
                     .machine = machine(),
                     .host = host,
                     .log = log}};

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

  static std::vector<std::string> Expected(const PlantedSample& sample, bool runs) {
    std::vector<std::string> expected;
    for (const PlantedTrace& trace : sample.traces) {
      if (trace.kind == PlantedKind::kProgram && !runs) continue;
      expected.push_back(trace.threat + ": " + std::string(kFoundPrefix) + trace.trace);
    }
    std::sort(expected.begin(), expected.end());
    return expected;
  }
};

TEST_F(SampleScanTest, FindsWhatWasPlantedAndNothingElse) {
  const PlantedSample sample = PlantSample(platform());
  EXPECT_EQ(Scan(), Expected(sample, false));
  EXPECT_EQ(LogText(), "");
}

TEST_F(SampleScanTest, FindsTheProgramWhileItRuns) {
  const PlantedSample sample = PlantSample(platform());
  ASSERT_TRUE(platform().shell().Run(sample.programPath, "60"));
  const auto running = [&] { return RunningCopies(platform().processes(), sample.programPath); };
  ASSERT_TRUE(Eventually([&] { return !running().empty(); }));
  EXPECT_EQ(Scan(), Expected(sample, true));
  EXPECT_EQ(page.lblMemoryInfected.Caption(), "1");
  for (const uint32_t id : running()) {
    EXPECT_TRUE(platform().processes().Terminate(id, 0));
    EXPECT_TRUE(platform().processes().WaitForEnd(id, std::chrono::seconds(10)));
  }
}

}  // namespace
}  // namespace quarnel
