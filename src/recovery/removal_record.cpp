#include "recovery/removal_record.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "scan/cookie_scan.h"

namespace quarnel {
namespace {

constexpr std::string_view kNotTicked = "not ticked";
constexpr std::string_view kOnSafeList = "on the safe list";

std::string PlaceOf(TraceKind kind, std::string_view trace) {
  return std::string(NameOf(kind)).append(1, '\t').append(ToUpper(trace));
}

}  // namespace

RemovalRecord::RemovalRecord(const Uses& uses, std::string time) : u_(uses) {
  report_.time = std::move(time);
  for (const ListRow& row : u_.results.lvwFilesToBeDeleted.Rows()) {
    Take({.trace = {.kind = TraceKind::kFile,
                    .trace = row.text,
                    .threat = std::string(row.SubItem(2))}},
         row.checked);
  }
  for (const ListRow& row : u_.results.lvwRegistryEntriesFound.Rows()) {
    Entry entry{.trace = {.kind = TraceKind::kRegistry,
                          .trace = std::string(row.SubItem(6)),
                          .threat = std::string(row.SubItem(1))},
                .key = std::string(row.SubItem(4)),
                .valueName = std::string(row.SubItem(5))};
    IgnoringErrors([&] { entry.hive = static_cast<uint32_t>(ToLong(row.SubItem(3))); });
    Take(std::move(entry), row.checked);
  }
  for (const ListRow& row : u_.results.lvwTrackingCookieObjectrecognized.Rows()) {
    Take({.trace = {.kind = TraceKind::kCookie,
                    .trace = row.text,
                    .threat = std::string(kTrackingObject)}},
         row.checked);
  }
  TakeIgnoredNodes();
}

void RemovalRecord::Take(Entry entry, bool ticked) {
  const auto [place, isNew] =
      places_.try_emplace(PlaceOf(entry.trace.kind, entry.trace.trace), entries_.size());
  if (!isNew) {
    entries_[place->second].ticked |= ticked;
    return;
  }
  entry.ticked = ticked;
  entry.exempt = !u_.results.lvwIgnoredSpywares.Empty() &&
                 u_.results.lvwIgnoredSpywares.FindText(entry.trace.trace).has_value();
  entry.existed = Exists(entry);
  entries_.push_back(std::move(entry));
}

// An exempt file stands in the tree alone.
void RemovalRecord::TakeIgnoredNodes() {
  for (const TreeNodeRef& node : u_.results.vbatvwResults.InOrder()) {
    if (!node->parent || !node->text.starts_with(kIgnoredPrefix)) continue;
    const std::string trace = WithoutPrefixes(node->text);
    const auto isTaken = [&](TraceKind kind) { return places_.contains(PlaceOf(kind, trace)); };
    if (isTaken(TraceKind::kRegistry) || isTaken(TraceKind::kCookie)) continue;
    Take({.trace = {.kind = TraceKind::kFile, .trace = trace, .threat = node->parent->text}},
         node->checked);
  }
}

void RemovalRecord::NoteFile(std::string_view path, FileOutcome outcome) {
  const auto place = places_.find(PlaceOf(TraceKind::kFile, path));
  if (place != places_.end()) entries_[place->second].outcome = std::move(outcome);
}

bool RemovalRecord::ValueExists(const Entry& entry) {
  std::unique_ptr<RegistryKey> key;
  const RegistryStatus status =
      u_.registry.Open(entry.hive, entry.key, registry_access::kRead, key);
  if (entry.valueName.empty() || status != RegistryStatus::kSuccess) {
    // What may not be looked at is there.
    return status != RegistryStatus::kFileNotFound;
  }
  RawValue value;
  return key->Query(entry.valueName, value) != RegistryStatus::kFileNotFound;
}

bool RemovalRecord::Exists(const Entry& entry) {
  return entry.trace.kind == TraceKind::kRegistry ? ValueExists(entry)
                                                  : u_.files.Stat(entry.trace.trace).has_value();
}

bool RemovalRecord::Runs(std::string_view path) {
  constexpr Milliseconds kMoment{1000};
  return std::any_of(running_.begin(), running_.end(), [&](const ProcessRecord& record) {
    return EqualText(record.executable, path) && !u_.processes.WaitForEnd(record.id, kMoment);
  });
}

// A row that was handled has left its list: of the cookies each removal passes some over.
bool RemovalRecord::WasReached(const Entry& entry) const {
  const TraceKind kind = entry.trace.kind;
  if (kind == TraceKind::kFile) return entry.outcome.has_value();
  return kind != TraceKind::kCookie ||
         !u_.results.lvwTrackingCookieObjectrecognized.FindText(entry.trace.trace);
}

void RemovalRecord::Decide(Entry& entry) {
  ReportedTrace& trace = entry.trace;
  const auto decide = [&trace](Fate fate, std::string_view detail = {}) {
    trace.fate = fate;
    trace.detail = detail;
  };
  const FileOutcome outcome = entry.outcome.value_or(FileOutcome());
  if (entry.exempt) return decide(Fate::kKept, kOnSafeList);
  if (!entry.ticked) return decide(Fate::kKept, kNotTicked);
  if (outcome.refused) return decide(Fate::kRefused, outcome.obstacle);
  if (Exists(entry)) {
    if (!outcome.obstacle.empty()) return decide(Fate::kFailed, "still there: " + outcome.obstacle);
    return decide(Fate::kFailed, WasReached(entry)
                                     ? "still there"
                                     : "still there: not reached, remove it once more");
  }
  if (!entry.existed) return decide(Fate::kGone);
  if (Runs(trace.trace)) return decide(Fate::kFailed, "its program still runs");
  if (outcome.quarantine.empty()) return decide(Fate::kRemoved);
  if (!u_.files.Stat(outcome.quarantine)) {
    return decide(Fate::kFailed, "it is not in the quarantine: " + outcome.quarantine);
  }
  decide(Fate::kQuarantined, outcome.quarantine);
}

RemovalReport RemovalRecord::Conclude(std::string_view problem) {
  report_.problem = problem;
  report_.traces.clear();
  running_ = u_.processes.Snapshot().value_or(std::vector<ProcessRecord>());
  for (Entry& entry : entries_) {
    Decide(entry);
    report_.traces.push_back(entry.trace);
  }
  return report_;
}

}  // namespace quarnel
