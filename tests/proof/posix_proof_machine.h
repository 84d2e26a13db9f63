#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "recovery/restore.h"
#include "support/posix/syscall_tracer.h"

namespace quarnel {

// Traces by what a report calls them, each with all that it is: a file's bytes, attributes and
// time, but not when it was last read, which any look at it changes; a key with everything below
// it; a value.
using Traces = std::map<std::string, std::string>;

// A folder that is removed at the end.
class ProofFolder {
 public:
  ProofFolder();
  ~ProofFolder();
  ProofFolder(const ProofFolder&) = delete;
  ProofFolder& operator=(const ProofFolder&) = delete;
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// Plants sixty traces that a removal takes away, and the signatures that find them: 20 in the
// registry with every type of value, 30 files on two drives, and 10 cookies.
void PlantProof(const std::string& folder);

// What stands of the planted traces now.
Traces TracesOf(const std::string& folder);

// The names of those that are not as they were.
std::vector<std::string> Changed(const Traces& before, const Traces& now);

// The stems of the restore points of which a manifest stands.
std::vector<std::string> RestorePoints(Platform& platform);

// A strict restore, and what it told of.
RestoreReport RestoreStrictly(Platform& platform, const std::string& stem);

// Files that an operation left under temporary names, but for those in the program's own folder.
std::vector<std::string> Leftovers(const std::string& folder);

// What is wrong with the program's own files; empty when each is whole.
std::string TornStateFiles(Platform& platform);

// The real program: scans, ticks everything and removes it, with a restore point.
int ScanAndRemove(const std::string& folder);

// Lets a program work on copies of one machine, and disturbs it there.
class ProofTest : public ::testing::Test {
 protected:
  using Kind = Intervention::Kind;
  using Program = std::function<int()>;

  void SetUp() override;

  // Runs a program on a fresh copy of the machine; calls count from the first one about `from`.
  TracedRun Run(const Program& program, const Intervention& intervention,
                std::string_view from = {});

  struct Disturbance {
    std::vector<Kind> kinds;
    std::vector<int> errors = {0};
    size_t sample = 0;
    std::string_view from = {};
    bool ofLooks = false;
  };
  // Runs it with every kind of trouble and lets each result be checked. It interferes at all of its
  // writing calls, or looks, when the environment has QUARNEL_PROOF as "all"; otherwise at `sample`
  // of them, spread over the whole by a seed that is printed, and taken from QUARNEL_PROOF_SEED
  // where that is set.
  void Prove(const Program& program, const Disturbance& disturbance,
             const std::function<void(const TracedRun&)>& check);

  ProofFolder original;
  ProofFolder machine;
};

}  // namespace quarnel
