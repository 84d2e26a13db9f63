#include "recovery/removal_report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "core/fields.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {
namespace {

constexpr std::string_view kReportFile = "LastRemoval.txt";

constexpr std::array<std::pair<TraceKind, std::string_view>, 3> kKinds = {
    {{TraceKind::kFile, "file"},
     {TraceKind::kRegistry, "registry"},
     {TraceKind::kCookie, "cookie"}}};
constexpr std::array<std::pair<Fate, std::string_view>, 6> kFates = {
    {{Fate::kRemoved, "removed"},
     {Fate::kQuarantined, "quarantined"},
     {Fate::kGone, "gone"},
     {Fate::kKept, "kept"},
     {Fate::kRefused, "refused"},
     {Fate::kFailed, "failed"}}};

template <typename Table, typename Value>
std::string_view NameIn(const Table& table, Value value) {
  const auto* entry = std::find_if(table.begin(), table.end(),
                                   [value](const auto& known) { return known.first == value; });
  return entry == table.end() ? std::string_view() : entry->second;
}

template <typename Table, typename Value>
bool ValueIn(const Table& table, std::string_view name, Value& value) {
  const auto* entry = std::find_if(table.begin(), table.end(),
                                   [name](const auto& known) { return known.second == name; });
  if (entry == table.end()) return false;
  value = entry->first;
  return true;
}

bool ReadCount(const std::string& text, size_t& count) {
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, count);
  return error == std::errc() && last == end;
}

// The records of the file, each by the word in its first field.
constexpr std::string_view kTime = "removal";
constexpr std::string_view kBackup = "backup";
constexpr std::string_view kNotSaved = "notsaved";
constexpr std::string_view kProblem = "problem";
constexpr std::string_view kTrace = "trace";
// The last one, with the number of traces.
constexpr std::string_view kEnd = "end";

bool TakeRecord(const std::vector<std::string>& fields, RemovalReport& report) {
  const std::string& word = fields[0];
  if (word == kTime && fields.size() == 2) {
    report.time = fields[1];
  } else if (word == kProblem && fields.size() == 2) {
    report.problem = fields[1];
  } else if (word == kBackup && fields.size() == 6) {
    report.backup = BackupReport{.stem = fields[1], .folder = fields[2]};
    return ReadCount(fields[3], report.backup->registryTraces) &&
           ReadCount(fields[4], report.backup->files) &&
           ReadCount(fields[5], report.backup->cookies);
  } else if (word == kNotSaved && fields.size() == 3 && report.backup) {
    report.backup->failures.push_back({fields[1], fields[2]});
  } else if (word == kTrace && fields.size() == 6) {
    ReportedTrace trace{.trace = fields[3], .threat = fields[4], .detail = fields[5]};
    if (!ValueIn(kKinds, fields[1], trace.kind) || !ValueIn(kFates, fields[2], trace.fate)) {
      return false;
    }
    report.traces.push_back(std::move(trace));
  } else {
    return false;
  }
  return true;
}

}  // namespace

size_t RemovalReport::Count(Fate fate) const {
  return static_cast<size_t>(
      std::count_if(traces.begin(), traces.end(),
                    [fate](const ReportedTrace& trace) { return trace.fate == fate; }));
}

size_t RemovalReport::CountExempt() const {
  return static_cast<size_t>(
      std::count_if(traces.begin(), traces.end(), [](const ReportedTrace& trace) {
        return trace.fate == Fate::kKept && trace.detail == kOnSafeList;
      }));
}

bool RemovalReport::AllGone() const {
  return Count(Fate::kFailed) + Count(Fate::kRefused) + Count(Fate::kKept) == CountExempt();
}

std::span<const Fate> AllFates() {
  static constexpr std::array kAll = {Fate::kRemoved, Fate::kQuarantined, Fate::kGone,
                                      Fate::kKept,    Fate::kRefused,     Fate::kFailed};
  return kAll;
}

bool IsAlarming(Fate fate) { return fate == Fate::kFailed || fate == Fate::kRefused; }

std::string_view NameOf(TraceKind kind) { return NameIn(kKinds, kind); }

std::string_view NameOf(Fate fate) { return NameIn(kFates, fate); }

std::string RemovalReportText(const RemovalReport& report) {
  std::string text = RecordLine({std::string(kTime), report.time});
  if (!report.problem.empty()) text += RecordLine({std::string(kProblem), report.problem});
  if (const auto& backup = report.backup) {
    text += RecordLine({std::string(kBackup), backup->stem, backup->folder,
                        std::to_string(backup->registryTraces), std::to_string(backup->files),
                        std::to_string(backup->cookies)});
    for (const BackupFailure& failure : backup->failures) {
      text += RecordLine({std::string(kNotSaved), failure.what, failure.reason});
    }
  }
  for (const ReportedTrace& trace : report.traces) {
    text += RecordLine({std::string(kTrace), std::string(NameOf(trace.kind)),
                        std::string(NameOf(trace.fate)), trace.trace, trace.threat, trace.detail});
  }
  return text + RecordLine({std::string(kEnd), std::to_string(report.traces.size())});
}

std::optional<RemovalReport> ReadRemovalReport(std::string_view text) {
  RemovalReport report;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const auto fields = FieldsOf(text.substr(0, end));
    if (!fields || end == std::string_view::npos) return std::nullopt;
    text.remove_prefix(end + 1);
    if (*fields ==
        std::vector<std::string>{std::string(kEnd), std::to_string(report.traces.size())}) {
      return text.empty() ? std::optional(std::move(report)) : std::nullopt;
    }
    if (!TakeRecord(*fields, report)) return std::nullopt;
  }
  return std::nullopt;
}

std::string RemovalReportPath(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + std::string(kReportFile);
}

void SaveRemovalReport(Files& files, Machine& machine, const RemovalReport& report) {
  ReplaceOwnFile(files, machine, RemovalReportPath(machine), RemovalReportText(report));
}

std::optional<RemovalReport> LoadRemovalReport(Files& files, Machine& machine) {
  std::optional<RemovalReport> report;
  IgnoringErrors([&] {
    const std::string path = OwnFileToRead(files, machine, RemovalReportPath(machine));
    report = ReadRemovalReport(ReadWholeFile(files, path));
  });
  return report;
}

}  // namespace quarnel
