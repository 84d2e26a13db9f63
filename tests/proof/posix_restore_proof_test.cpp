// A strict restore is stopped at its writing calls, or its calls fail. It can be repeated, and what
// it could not bring back it names.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <iostream>

#include "base/text.h"
#include "proof/posix_proof_machine.h"
#include "recovery/restore_note.h"

namespace quarnel {
namespace {

using Kind = Intervention::Kind;

class RestoreProof : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string reason = WhyNoTracing(); !reason.empty()) GTEST_SKIP() << reason;
    PlantProof(removed.Path());
    before = TracesOf(removed.Path());
    const TracedRun run = RunTraced([this] { return ScanAndRemove(removed.Path()); }, {}, "none");
    ASSERT_EQ(run.exitCode, 0) << run.output;
    const auto stems = RestorePoints(*OpenPlatform(removed.Path()));
    ASSERT_EQ(stems.size(), 1U);
    stem = stems.front();
    gone = Changed(before, TracesOf(removed.Path()));
    ASSERT_GT(gone.size(), 40U);
    calls = Run({}).calls;
    ASSERT_EQ(Lost(), std::vector<std::string>());
  }

  // A restore of everything in a child; its output is what it names as not restored.
  TracedRun Run(const Intervention& intervention) {
    machine.BecomeCopyOf(removed);
    return RunTraced(
        [this] {
          for (const RestoreFailure& failure :
               RestoreStrictly(*OpenPlatform(machine.Path()), stem).failures) {
            std::cout << failure.what << '\n';
          }
          std::cout.flush();
          return 0;
        },
        intervention);
  }

  std::vector<std::string> Lost() { return Changed(before, TracesOf(machine.Path())); }

  void CheckItCanBeRepeated() {
    const auto platform = OpenPlatform(machine.Path());
    EXPECT_EQ(TornStateFiles(*platform), "");
    ClearLeftovers(platform->files(), platform->machine());
    EXPECT_EQ(Leftovers(machine.Path()), std::vector<std::string>());
    for (const RestoreFailure& failure : RestoreStrictly(*platform, stem).failures) {
      ADD_FAILURE() << failure.what << ": " << failure.reason;
    }
    EXPECT_EQ(Lost(), std::vector<std::string>());
    EXPECT_EQ(Leftovers(machine.Path()), std::vector<std::string>());
  }

  ProofFolder removed;
  ProofFolder machine;
  Traces before;
  std::vector<std::string> gone;
  std::string stem;
  size_t calls = 0;
};

TEST_F(RestoreProof, CanBeRepeatedWhereverItIsKilled) {
  for (const Kind kind : {Kind::kKill, Kind::kTear}) {
    for (const Intervention& intervention : Interventions(kind, 0, calls, 15)) {
      const TracedRun run = Run(intervention);
      SCOPED_TRACE(Describe(intervention, run));
      EXPECT_TRUE(run.Crashed());
      CheckItCanBeRepeated();
    }
  }
}

TEST_F(RestoreProof, NamesWhatItCouldNotBringBackWhateverFails) {
  for (const int error : {ENOSPC, EACCES, EROFS}) {
    for (const Kind kind : {Kind::kFail, Kind::kFailFromThen}) {
      for (const Intervention& intervention : Interventions(kind, error, calls, 8)) {
        const TracedRun run = Run(intervention);
        SCOPED_TRACE(Describe(intervention, run));
        EXPECT_FALSE(run.Crashed()) << run.signal << run.output;
        // A machine that could not be opened was not restored, and its user knows.
        if (run.output.starts_with("uncaught: ")) continue;
        EXPECT_EQ(run.exitCode, 0) << run.output;
        const std::vector<std::string> told = Split(run.output, "\n");
        for (const std::string& trace : Lost()) {
          // Of a key each key and value of it is an item.
          const std::string_view whole = std::string_view(trace).substr(0, trace.find(" -> "));
          const bool isKey = trace.ends_with("-> Value Name: ");
          const bool named = std::any_of(told.begin(), told.end(), [&](const std::string& item) {
            return isKey ? item.starts_with(whole) : item == trace;
          });
          EXPECT_TRUE(named) << trace << " is not as it was, and not among:\n" << run.output;
        }
        CheckItCanBeRepeated();
      }
    }
  }
}

}  // namespace
}  // namespace quarnel
