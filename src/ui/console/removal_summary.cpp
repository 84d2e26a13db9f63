#include "ui/console/removal_summary.h"

#include <algorithm>
#include <array>

#include "core/paths.h"
#include "ui/display_text.h"

namespace quarnel {
namespace {

constexpr std::array kFates = {Fate::kRemoved, Fate::kQuarantined, Fate::kGone,
                               Fate::kKept,    Fate::kRefused,     Fate::kFailed};

std::string_view StateOf(const RemovalReport& report) {
  if (!report.backup) return "none";
  return report.backup->Complete() ? "complete" : "incomplete";
}

std::string RestorePointOf(const RemovalReport& report) {
  if (!report.backup || report.backup->stem.empty()) return {};
  return GetPathWithSlash(report.backup->folder) + report.backup->stem;
}

void PrintTrace(const ReportedTrace& trace, std::ostream& out, bool colours) {
  constexpr size_t kWidest = 11;  // "quarantined"
  const bool bad = trace.fate == Fate::kFailed || trace.fate == Fate::kRefused;
  const std::string_view fate = NameOf(trace.fate);
  if (colours && bad) out << "\033[1;31m";
  out << fate;
  if (colours && bad) out << "\033[0m";
  out << std::string(kWidest + 2 - fate.size(), ' ') << Printable(trace.trace) << '\n';
  if (!trace.detail.empty())
    out << std::string(kWidest + 4, ' ') << Printable(trace.detail) << '\n';
}

std::string CountsOf(const RemovalReport& report) {
  std::string line;
  for (const Fate fate : kFates) {
    const size_t count = report.Count(fate);
    if (count == 0 && fate != Fate::kRemoved && fate != Fate::kFailed) continue;
    if (!line.empty()) line += ", ";
    line += std::to_string(count) + " " + std::string(NameOf(fate));
  }
  return line + ".";
}

}  // namespace

void PrintRemoval(const RemovalReport& report, std::ostream& out, bool colours) {
  for (const ReportedTrace& trace : report.traces) PrintTrace(trace, out, colours);
  if (!report.traces.empty()) out << '\n';
  if (report.backup) {
    for (const BackupFailure& failure : report.backup->failures) {
      out << "not saved: " << Printable(failure.what) << ": " << Printable(failure.reason) << '\n';
    }
  }
  const std::string point = RestorePointOf(report);
  out << "Restore point: " << (point.empty() ? "none" : Printable(point))
      << (report.backup && !report.backup->Complete() ? " (incomplete)" : "") << '\n';
  out << "Removal of " << Printable(report.time) << ": " << CountsOf(report) << '\n';
}

void WriteRemoval(const RemovalReport& report, RecordWriter& records) {
  for (const ReportedTrace& trace : report.traces) {
    records.Write({{"trace", trace.trace},
                   {"kind", std::string(NameOf(trace.kind))},
                   {"threat", trace.threat},
                   {"fate", std::string(NameOf(trace.fate))},
                   {"detail", trace.detail}});
  }
  if (report.backup) {
    for (const BackupFailure& failure : report.backup->failures) {
      records.Write({{"notsaved", failure.what}, {"reason", failure.reason}});
    }
  }
  std::vector<Field> sum{{"removal", report.time}};
  for (const Fate fate : kFates) sum.push_back({NameOf(fate), Number(report.Count(fate))});
  sum.push_back({"backup", std::string(StateOf(report))});
  sum.push_back({"restorepoint", RestorePointOf(report)});
  sum.push_back({"problem", report.problem});
  records.Write(sum);
}

}  // namespace quarnel
