// Each look that a scan takes at the machine fails in turn: an open, a read, a listing, a stat. The
// scan finds what it finds without the failure, or it tells of the loss and ends as not whole.

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
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
    const TracedRun whole = Run(scan, {});
    ASSERT_EQ(whole.exitCode, kFound) << whole.output;
    all = Traces(whole.output);
    told = Told(whole.output);
    ASSERT_GT(all.size(), 10U) << whole.output;
  }

  // The same finds, or the loss is told and the exit code right.
  void Check(const TracedRun& run) {
    const std::vector<std::string> found = Traces(run.output);
    const bool lost = !std::includes(found.begin(), found.end(), all.begin(), all.end());
    losses += lost;
    errors += run.exitCode == kError;
    if (!lost) {
      EXPECT_TRUE(run.exitCode == kFound || run.exitCode == kError) << run.output;
    } else if (run.exitCode != kError) {
      // Files and folders alone may be missing from a whole scan.
      EXPECT_GT(Told(run.output), told) << run.output;
      EXPECT_EQ(run.exitCode, found.empty() ? kClean : kFound);
    }
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
    size_t count = 0;
    for (const std::string& line : Split(output, "\n")) {
      count += line.starts_with("{\"unread\"") || line.starts_with("{\"notrun\"");
    }
    return count;
  }

  std::vector<std::string> all;  // what a scan finds that nothing disturbs, ...
  size_t told = 0;               // ... and of how much it tells
  size_t losses = 0;
  size_t errors = 0;
};

TEST_F(ScanProof, NoLossIsSilent) {
  size_t runs = 0;
  const auto check = [&](const TracedRun& run) {
    ++runs;
    Check(run);
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

TEST_F(ScanProof, ADamagedRegistryIsTold) {
  const std::string store = machine.Path() + "/registry.db";
  constexpr std::streamoff kPage = 4096;
  const auto pages = static_cast<std::streamoff>(
      std::filesystem::file_size(original.Path() + "/registry.db") / kPage);
  for (std::streamoff page = 1; page < pages; ++page) {
    const Program damaged = [&] {
      std::fstream file(store, std::ios::in | std::ios::out | std::ios::binary);
      file.seekp(page * kPage) << std::string(kPage, '\x5A') << std::flush;
      return scan();
    };
    SCOPED_TRACE(page);
    Check(Run(damaged, {}));
  }
  EXPECT_GT(errors, 0U);
}

// A user who may look at the machine and change nothing.
TEST_F(ScanProof, ARegistryThatMayOnlyBeReadIsTold) {
  namespace fs = std::filesystem;
  const auto allow = [this](fs::perms writing, fs::perm_options how) {
    for (const char* name : {"", "/registry.db"}) {
      fs::permissions(machine.Path() + name, writing, how);
    }
  };
  const fs::perms writing = fs::perms::owner_write | fs::perms::group_write;
  const Program locked = [&] {
    allow(writing, fs::perm_options::remove);
    HeedPermissions();
    return scan();
  };
  const TracedRun run = Run(locked, {});
  allow(fs::perms::owner_write, fs::perm_options::add);
  EXPECT_EQ(run.exitCode, kError) << run.output;
  EXPECT_EQ(Traces(run.output), all);
}

}  // namespace
}  // namespace quarnel
