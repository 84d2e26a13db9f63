#include "recovery/removal_words.h"

#include "core/paths.h"

namespace quarnel {
namespace {

constexpr std::string_view kIncomplete = "incomplete";

ReportLine LineOf(const ReportedTrace& trace) {
  constexpr size_t kWidest = 11;  // "quarantined"
  const std::string_view fate = NameOf(trace.fate);
  return {.text = std::string(kWidest + 2 - fate.size(), ' ') + trace.trace,
          .fate = fate,
          .alarming = IsAlarming(trace.fate)};
}

}  // namespace

std::string_view RestorePointState(const RemovalReport& report) {
  if (!report.backup) return "none";
  return report.backup->Complete() ? "complete" : kIncomplete;
}

bool RestorePointIsIncomplete(const RemovalReport& report) {
  return RestorePointState(report) == kIncomplete;
}

std::string RestorePointPath(const RemovalReport& report) {
  if (!report.backup || report.backup->stem.empty()) return {};
  return GetPathWithSlash(report.backup->folder) + report.backup->stem;
}

std::string CountsText(const RemovalReport& report) {
  std::string text;
  for (const Fate fate : AllFates()) {
    const size_t count = report.Count(fate);
    if (count == 0 && fate != Fate::kRemoved && fate != Fate::kFailed) continue;
    if (!text.empty()) text += ", ";
    text += std::to_string(count) + " " + std::string(NameOf(fate));
    if (fate != Fate::kKept || report.CountExempt() == 0) continue;
    text += " (" + std::to_string(report.CountExempt()) + " " + std::string(kOnSafeList) + ")";
  }
  return text + ".";
}

std::vector<ReportLine> ReportLines(const RemovalReport& report) {
  std::vector<ReportLine> lines;
  const bool incomplete = RestorePointIsIncomplete(report);
  if (incomplete) {
    lines.push_back({.text = "The restore point is incomplete. It does not hold:"});
    for (const BackupFailure& failure : report.backup->failures) {
      lines.push_back(
          {.text = std::string(kUnsavedOutcome) + ": " + failure.what + ": " + failure.reason});
    }
    lines.push_back({});
  }
  for (const ReportedTrace& trace : report.traces) {
    lines.push_back(LineOf(trace));
    if (!trace.detail.empty()) lines.push_back({.text = std::string(15, ' ') + trace.detail});
  }
  if (!report.traces.empty()) lines.push_back({});
  const std::string point = RestorePointPath(report);
  lines.push_back({.text = "Restore point: " + (point.empty() ? "none" : point) +
                           (incomplete ? " (incomplete)" : "")});
  lines.push_back({.text = "Removal of " + report.time + ": " + CountsText(report)});
  return lines;
}

std::string ReportText(const RemovalReport& report) {
  std::string text;
  for (const ReportLine& line : ReportLines(report)) {
    text.append(line.fate).append(line.text).append("\r\n");
  }
  return text;
}

}  // namespace quarnel
