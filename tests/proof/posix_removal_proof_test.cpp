// The real program is stopped at its writing calls, or its calls fail. Whatever happens, no trace
// may be lost, and nothing may be told that is not so.

#include <algorithm>
#include <cerrno>

#include "platform/machine_folder.h"
#include "proof/posix_proof_machine.h"
#include "recovery/removal_report.h"
#include "recovery/restore_point.h"

namespace quarnel {
namespace {

// The removal begins with its restore point.
constexpr std::string_view kBegin = "Backup";

class RemovalProof : public ProofTest {
 protected:
  void SetUp() override {
    ProofTest::SetUp();
    if (IsSkipped()) return;
    PlantProof(original.Path());
    before = TracesOf(original.Path());
    ASSERT_EQ(before.size(), 60U);
    for (const auto& [name, content] : before) ASSERT_FALSE(content.empty()) << name;
    const TracedRun run = Run(removal, {});
    ASSERT_EQ(run.exitCode, 0) << run.output;
    const auto platform = OpenPlatform(machine.Path());
    const auto report = LoadRemovalReport(platform->files(), platform->machine());
    ASSERT_TRUE(report) << run.output;
    ASSERT_EQ(report->traces.size(), before.size());
    ASSERT_TRUE(report->backup && report->backup->Complete());
    ASSERT_GT(Changed(before, TracesOf(machine.Path())).size(), 40U);
  }

  void CheckNothingIsLost();
  void CheckReport(const TracedRun& run);

  Program removal = [this] { return ScanAndRemove(machine.Path()); };
  Traces before;
};

void RemovalProof::CheckNothingIsLost() {
  const auto platform = OpenPlatform(machine.Path());
  EXPECT_EQ(TornStateFiles(*platform), "");
  for (const std::string& stem : RestorePoints(*platform)) {
    for (const RestoreFailure& failure : RestoreStrictly(*platform, stem).failures) {
      ADD_FAILURE() << failure.what << ": " << failure.reason;
    }
  }
  EXPECT_EQ(Changed(before, TracesOf(machine.Path())), std::vector<std::string>());
}

TEST_F(RemovalProof, LosesNothingWhereverItIsKilled) {
  Prove(removal, {.kinds = {Kind::kKill, Kind::kTear}, .sample = 20, .from = kBegin},
        [this](const TracedRun&) { CheckNothingIsLost(); });
}

// Whether the report names the trace, or the file of the restore point that should have held it.
bool ToldNotSaved(const BackupReport& backup, const std::string& trace) {
  const bool isKey = trace.ends_with("-> Value Name: ");
  const std::string_view place = std::string_view(trace).substr(0, trace.find(" -> "));
  const bool isRegistry = place.size() < trace.size();
  const bool isCookie = trace.find("\\Cookies\\") != std::string::npos;
  return std::any_of(
      backup.failures.begin(), backup.failures.end(), [&](const BackupFailure& failure) {
        const std::string& what = failure.what;
        if (what == trace || what == backup.folder) return true;
        if (isKey && what.starts_with(place)) return true;
        if (what.ends_with(restore_point::kManifest)) return true;
        if (isRegistry) return false;
        return what.ends_with(isCookie ? restore_point::kCookies : restore_point::kFiles);
      });
}

// What the report says against what the machine shows, and what is gone against what can come back.
void RemovalProof::CheckReport(const TracedRun& run) {
  EXPECT_TRUE(run.exitCode == 0 || run.exitCode == 1) << run.exitCode << run.output;
  const auto platform = OpenPlatform(machine.Path());
  EXPECT_EQ(TornStateFiles(*platform), "");
  const Traces now = TracesOf(machine.Path());
  const auto report = LoadRemovalReport(platform->files(), platform->machine());
  for (const ReportedTrace& trace : report ? report->traces : std::vector<ReportedTrace>()) {
    const bool toldGone = trace.fate == Fate::kRemoved || trace.fate == Fate::kQuarantined ||
                          trace.fate == Fate::kGone;
    EXPECT_EQ(now.at(trace.trace).empty(), toldGone)
        << trace.trace << " is " << NameOf(trace.fate) << ": " << trace.detail;
    if (trace.fate == Fate::kQuarantined) {
      EXPECT_TRUE(platform->files().Stat(trace.detail)) << trace.trace;
    }
  }
  for (const std::string& stem : RestorePoints(*platform)) {
    for (const RestoreFailure& failure : RestoreStrictly(*platform, stem).failures) {
      ADD_FAILURE() << "claimed, but not there: " << failure.what << ": " << failure.reason;
    }
  }
  // A removal goes on without a backup, but then it says so.
  for (const std::string& lost : Changed(before, TracesOf(machine.Path()))) {
    ASSERT_TRUE(report && report->backup) << lost;
    EXPECT_TRUE(ToldNotSaved(*report->backup, lost)) << lost;
  }
}

TEST_F(RemovalProof, TellsTheTruthWhateverFails) {
  Prove(removal,
        {.kinds = {Kind::kFail, Kind::kFailFromThen},
         .errors = {ENOSPC, EACCES, EROFS},
         .sample = 8,
         .from = kBegin},
        [this](const TracedRun& run) { CheckReport(run); });
}

}  // namespace
}  // namespace quarnel
