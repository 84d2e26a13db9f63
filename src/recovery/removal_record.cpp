#include "recovery/removal_record.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"
#include "platform/names.h"
#include "recovery/restore.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

constexpr std::string_view kNotTicked = "not ticked";
constexpr std::string_view kUnseen = "it could not be looked at";

// Whether the registry as a whole did not do its work, and not only a right was missing.
bool IsBroken(RegistryStatus status) {
  return status != RegistryStatus::kSuccess && status != RegistryStatus::kAccessDenied &&
         status != RegistryStatus::kKeyDeleted;
}

void Set(ReportedTrace& trace, Fate fate, std::string_view detail = {}) {
  trace.fate = fate;
  trace.detail = detail;
}

}  // namespace

RemovalRecord::RemovalRecord(const Uses& uses, std::string time) : u_(uses) {
  report_.time = std::move(time);
  for (FoundTrace& trace : FoundTraces(u_.results, u_.files)) {
    const bool existed = LookAt(trace) != Sight::kGone;
    entries_.push_back({.found = std::move(trace), .existed = existed, .outcome = {}});
  }
}

// A path's own row comes before one that differs in letter case.
void RemovalRecord::NoteFile(std::string_view path, FileOutcome outcome) {
  const auto isFile = [](const Entry& entry) { return entry.found.kind == TraceKind::kFile; };
  auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& candidate) {
    return isFile(candidate) && candidate.found.text == path;
  });
  if (entry == entries_.end()) {
    entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& candidate) {
      return isFile(candidate) && EqualNames(candidate.found.text, path);
    });
  }
  // A second row of the same file finds it gone, which tells less than the first.
  if (entry != entries_.end() && !entry->outcome) entry->outcome = std::move(outcome);
}

void RemovalRecord::NoteRefusal(std::string_view trace, RegistryStatus status) {
  for (Entry& entry : entries_) {
    const FoundTrace& found = entry.found;
    if (found.kind == TraceKind::kRegistry && EqualNames(found.text, trace)) entry.refusal = status;
  }
}

RemovalRecord::Sight RemovalRecord::LookAtValue(const FoundTrace& trace) {
  const auto sight = [](RegistryStatus status) {
    if (status == RegistryStatus::kFileNotFound) return Sight::kGone;
    return status == RegistryStatus::kSuccess ? Sight::kThere : Sight::kUnknown;
  };
  std::unique_ptr<RegistryKey> key;
  const Sight ofKey = sight(u_.registry.Open(trace.hive, trace.key, registry_access::kRead, key));
  if (trace.valueName.empty() || ofKey != Sight::kThere) return ofKey;
  RawValue value;
  return sight(key->Query(trace.valueName, value));
}

// That nothing is seen at a path does not say that nothing is there: opening it tells why.
RemovalRecord::Sight RemovalRecord::LookAtFile(const std::string& path) {
  if (const auto present = u_.files.Stat(path)) {
    // Where names may differ in letter case alone, what stands there may be another trace.
    const bool isOther = std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
      const std::string& other = entry.found.text;
      return other != path && EqualNames(other, path) && FileName_Parse(other) == present->name;
    });
    return isOther ? Sight::kGone : Sight::kThere;
  }
  if (!WhyUnsafe(path).empty()) return Sight::kGone;
  try {
    u_.files.Open(path, OpenMode::kRead);
    return Sight::kThere;
  } catch (const RuntimeError& error) {
    switch (error.Number()) {
      case ErrorNumber::kFileNotFound:
      case ErrorNumber::kPathNotFound:
      case ErrorNumber::kBadFileName:
        return Sight::kGone;
      default:
        return Sight::kUnknown;
    }
  }
}

RemovalRecord::Sight RemovalRecord::LookAt(const FoundTrace& trace) {
  return trace.kind == TraceKind::kRegistry ? LookAtValue(trace) : LookAtFile(trace.text);
}

bool RemovalRecord::Runs(std::string_view path) {
  constexpr Milliseconds kMoment{1000};
  return std::any_of(running_.begin(), running_.end(), [&](const ProcessRecord& record) {
    return EqualNames(record.executable, path) && !u_.processes.WaitForEnd(record.id, kMoment);
  });
}

// A row that was handled has left its list: of the cookies each removal passes some over, and a
// node's tick may not have found its row.
std::string_view RemovalRecord::WhyNotReached(const Entry& entry) const {
  const FoundTrace& found = entry.found;
  if (!found.listed) return "not in the lists of this scan, scan again";
  if (found.text.find(kFoundPrefix) != std::string::npos ||
      found.text.find(kIgnoredPrefix) != std::string::npos) {
    return found.ticked ? std::string_view() : "its name holds a mark of the list";
  }
  const ListView& cookies = u_.results.lvwTrackingCookieObjectrecognized;
  const bool waits = found.kind == TraceKind::kFile     ? !entry.outcome
                     : found.kind == TraceKind::kCookie ? cookies.FindText(found.text).has_value()
                                                        : !found.ticked;
  return waits ? "not reached, remove it once more" : std::string_view();
}

void RemovalRecord::Decide(const Entry& entry, ReportedTrace& trace) {
  const FileOutcome outcome = entry.outcome.value_or(FileOutcome());
  if (entry.found.exempt) return Set(trace, Fate::kKept, kOnSafeList);
  if (!entry.found.ticked && !entry.found.nodeTicked) return Set(trace, Fate::kKept, kNotTicked);
  if (outcome.refused) return Set(trace, Fate::kRefused, outcome.obstacle);
  switch (LookAt(entry.found)) {
    case Sight::kGone:
      return DecideGone(entry, trace);
    case Sight::kUnknown:
      return Set(trace, Fate::kFailed, kUnseen);
    case Sight::kThere:
      break;
  }
  std::string why = "still there";
  const std::string_view notReached = WhyNotReached(entry);
  if (!outcome.obstacle.empty()) {
    why += ": " + outcome.obstacle;
  } else if (entry.refusal != RegistryStatus::kSuccess) {
    why += ": " + RefusalText(entry.refusal);
  } else if (!notReached.empty()) {
    why.append(": ").append(notReached);
  }
  Set(trace, Fate::kFailed, why);
}

void RemovalRecord::DecideGone(const Entry& entry, ReportedTrace& trace) {
  if (!entry.existed) return Set(trace, Fate::kGone);
  if (Runs(trace.trace)) return Set(trace, Fate::kFailed, "its program still runs");
  const std::string quarantine = entry.outcome ? entry.outcome->quarantine : std::string();
  if (quarantine.empty()) return Set(trace, Fate::kRemoved);
  if (!u_.files.Stat(quarantine)) {
    return Set(trace, Fate::kFailed, "it is not in the quarantine: " + quarantine);
  }
  Set(trace, Fate::kQuarantined, quarantine);
}

RemovalReport RemovalRecord::Conclude(std::string_view problem) {
  report_.problem = problem;
  report_.traces.clear();
  running_ = u_.processes.Snapshot().value_or(std::vector<ProcessRecord>());
  for (const Entry& entry : entries_) {
    ReportedTrace& trace = report_.traces.emplace_back();
    trace.kind = entry.found.kind;
    trace.trace = entry.found.text;
    trace.threat = entry.found.threat;
    Decide(entry, trace);
    if (trace.fate == Fate::kFailed && IsBroken(entry.refusal) && report_.problem.empty()) {
      report_.problem = "the registry could not be written";
    }
  }
  return report_;
}

}  // namespace quarnel
