#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "recovery/backup.h"
#include "scan/found_traces.h"

namespace quarnel {

// What became of a trace of the results. A trace that was to go and still exists is kRefused or
// kFailed, whatever the calls that should have removed it said.
enum class Fate {
  kRemoved,
  kQuarantined,  // detail: its path there
  kGone,         // it had vanished before the removal
  kKept,         // detail: why it was not to go
  kRefused,      // its path may lead elsewhere; detail: how
  kFailed,       // detail: why
};

struct ReportedTrace {
  TraceKind kind = TraceKind::kFile;
  std::string trace;  // as the results name it
  std::string threat;
  Fate fate = Fate::kFailed;
  std::string detail;

  bool operator==(const ReportedTrace&) const = default;
};

// What a removal did, as the machine showed it afterwards.
struct RemovalReport {
  std::string time;                    // local, "YYYY-MM-DD HH:MM:SS"
  std::optional<BackupReport> backup;  // nothing when none was asked for
  std::string problem;                 // why it is not whole, as when it ended part way
  std::vector<ReportedTrace> traces;

  size_t Count(Fate fate) const;
  // Of those that were kept, how many are on the safe list.
  size_t CountExempt() const;
  // Everything that was found is gone, but for what is on the safe list.
  bool AllGone() const;
};

// Why a trace was kept.
inline constexpr std::string_view kOnSafeList = "on the safe list";

// In the order in which reports count them.
std::span<const Fate> AllFates();
// What was to go is not gone.
bool IsAlarming(Fate fate);

// One word each, as reports print them: "file", "registry", "cookie"; "removed", "quarantined",
// "gone", "kept", "refused", "failed".
std::string_view NameOf(TraceKind kind);
std::string_view NameOf(Fate fate);

// The report as a file of records, and back; nothing for a text that is none or is not whole.
std::string RemovalReportText(const RemovalReport& report);
std::optional<RemovalReport> ReadRemovalReport(std::string_view text);

// The last removal's report, in the program's folder. Saving replaces it in one step and raises as
// that does; loading gives nothing when there is no whole one.
std::string RemovalReportPath(Machine& machine);
void SaveRemovalReport(Files& files, Machine& machine, const RemovalReport& report);
std::optional<RemovalReport> LoadRemovalReport(Files& files, Machine& machine);

}  // namespace quarnel
