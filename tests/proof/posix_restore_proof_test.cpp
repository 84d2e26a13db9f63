// A strict restore is stopped at its writing calls, or its calls fail. It can be repeated, and what
// it could not bring back it names.

#include <algorithm>
#include <cerrno>
#include <iostream>

#include "base/text.h"
#include "proof/posix_proof_machine.h"
#include "recovery/restore_note.h"

namespace quarnel {
namespace {

class RestoreProof : public ProofTest {
 protected:
  void SetUp() override {
    ProofTest::SetUp();
    if (IsSkipped()) return;
    PlantProof(original.Path());
    before = TracesOf(original.Path());
    const TracedRun run = RunTraced([this] { return ScanAndRemove(original.Path()); }, {}, "none");
    ASSERT_EQ(run.exitCode, 0) << run.output;
    const auto stems = RestorePoints(*OpenPlatform(original.Path()));
    ASSERT_EQ(stems.size(), 1U);
    stem = stems.front();
    ASSERT_GT(Changed(before, TracesOf(original.Path())).size(), 40U);
    Run(restore, {});
    ASSERT_EQ(Lost(), std::vector<std::string>());
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

  // A restore of everything; its output is what it names as not restored.
  Program restore = [this] {
    for (const RestoreFailure& failure :
         RestoreStrictly(*OpenPlatform(machine.Path()), stem).failures) {
      std::cout << failure.what << '\n';
    }
    std::cout.flush();
    return 0;
  };
  Traces before;
  std::string stem;
};

TEST_F(RestoreProof, CanBeRepeatedWhereverItIsKilled) {
  Prove(restore, {.kinds = {Kind::kKill, Kind::kTear}, .sample = 15},
        [this](const TracedRun&) { CheckItCanBeRepeated(); });
}

TEST_F(RestoreProof, NamesWhatItCouldNotBringBackWhateverFails) {
  const auto check = [this](const TracedRun& run) {
    // A machine that could not be opened was not restored, and its user knows.
    if (run.output.starts_with("uncaught: ")) return;
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
  };
  Prove(
      restore,
      {.kinds = {Kind::kFail, Kind::kFailFromThen}, .errors = {ENOSPC, EACCES, EROFS}, .sample = 8},
      check);
}

}  // namespace
}  // namespace quarnel
