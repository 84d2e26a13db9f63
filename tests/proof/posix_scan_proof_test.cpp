// Each look that a scan takes at the machine fails in turn: an open, a read, a listing, a stat. The
// scan finds what it finds without the failure, or it tells of the loss and ends as not whole.

#include <algorithm>
#include <cerrno>
#include <iostream>

#include "base/text.h"
#include "machine/sample.h"
#include "platform/machine_folder.h"
#include "proof/posix_proof_machine.h"

namespace quarnel {
namespace {

constexpr int kClean = 0;
constexpr int kError = 1;
constexpr int kFound = 2;

class ScanProof : public ProofTest {
 protected:
  void SetUp() override {
    ProofTest::SetUp();
    if (IsSkipped()) return;
    CreateMachine(original.Path(), {});
    const auto platform = OpenPlatform(original.Path());
    PlantSample(*platform);
    // The deep scan of a link's target, and of names in another letter case.
    WriteWholeFile(platform->files(), "C:\\another.exe", "x");
  }

  Program scan = [this] {
    return BecomeProgram({QUARNEL_CONSOLE, "--json", "--machine", machine.Path(), "scan"}, "");
  };

  // The traces of the output, each as the console writes it.
  static std::vector<std::string> Traces(const std::string& output) {
    std::vector<std::string> traces;
    for (const std::string& line : Split(output, "\n")) {
      const size_t begin = line.find("\"traces\":[");
      if (!line.starts_with("{\"threat\"") || begin == std::string::npos) continue;
      const size_t end = line.find("],\"ignored\"");
      for (std::string& trace : Split(line.substr(begin + 10, end - begin - 10), "\",\"")) {
        traces.push_back(Replace(Replace(trace, "[", ""), "\"", ""));
      }
    }
    std::sort(traces.begin(), traces.end());
    return traces;
  }

  static size_t Told(const std::string& output) {
    size_t told = 0;
    for (const std::string& line : Split(output, "\n")) {
      told += line.starts_with("{\"unread\"") || line.starts_with("{\"notrun\"");
    }
    return told;
  }
};

TEST_F(ScanProof, NoLossIsSilent) {
  const TracedRun whole = Run(scan, {});
  ASSERT_EQ(whole.exitCode, kFound) << whole.output;
  const std::vector<std::string> all = Traces(whole.output);
  ASSERT_GT(all.size(), 10U) << whole.output;
  size_t runs = 0;
  size_t losses = 0;
  size_t errors = 0;
  const auto check = [&](const TracedRun& run) {
    ++runs;
    const std::vector<std::string> found = Traces(run.output);
    const bool lost = !std::includes(found.begin(), found.end(), all.begin(), all.end());
    losses += lost;
    errors += run.exitCode == kError;
    if (!lost) {
      EXPECT_TRUE(run.exitCode == kFound || run.exitCode == kError) << run.output;
    } else if (run.exitCode != kError) {
      // Files and folders alone may be missing from a whole scan.
      EXPECT_GT(Told(run.output), Told(whole.output)) << run.output;
      EXPECT_EQ(run.exitCode, found.empty() ? kClean : kFound);
    }
  };
  Prove(scan,
        {.kinds = {Kind::kFail},
         .errors = {EIO, EACCES},
         .sample = 25,
         .from = machine.Path(),
         .ofLooks = true},
        check);
  std::cout << runs << " runs: " << losses << " lost finds and told so, " << errors
            << " ended as not whole\n";
}

}  // namespace
}  // namespace quarnel
