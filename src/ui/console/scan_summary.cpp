#include "ui/console/scan_summary.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>

#include "base/text.h"
#include "ui/console/display_text.h"
#include "ui/console/terminal_style.h"

namespace quarnel {
namespace {

constexpr size_t kColumns = 4;
using Line = std::array<std::string, kColumns>;
using Widths = std::array<size_t, kColumns>;

Line LineOf(const ScanThreat& threat) {
  return {Printable(threat.name), Printable(threat.type), Printable(threat.level),
          std::to_string(threat.traces.size())};
}

// One overlong name pushes its own line out of the columns, not the whole table.
Widths WidthsOf(const std::vector<Line>& lines) {
  constexpr size_t kWidest = 48;
  Widths widths{};
  for (const Line& line : lines) {
    for (size_t i = 0; i < kColumns; ++i) {
      const size_t width = DisplayWidth(line[i]);
      if (width <= kWidest) widths[i] = std::max(widths[i], width);
    }
  }
  return widths;
}

void PrintLine(const Line& line, const Widths& widths, std::string_view style,
               const TerminalStyle& all, std::ostream& out) {
  constexpr std::string_view kGap = "  ";
  for (size_t i = 0; i < kColumns; ++i) {
    const size_t width = DisplayWidth(line[i]);
    const std::string padding(width < widths[i] ? widths[i] - width : 0, ' ');
    const bool number = i == kColumns - 1;
    if (i > 0) out << kGap;
    if (number) out << padding;
    // The first cell alone carries the style of a threat.
    if (i == 0 || style == all.header) {
      out << style << line[i] << all.normal;
    } else {
      out << line[i];
    }
    if (!number) out << padding;
  }
  out << '\n';
}

std::string Counted(size_t count, std::string_view one) {
  return std::to_string(count) + " " + std::string(one) + (count == 1 ? "" : "s");
}

std::string SummaryLine(const ScanSummary& summary) {
  if (!summary.scanned) return "No scan is on record.";
  // What was not scanned is not called clean.
  std::string line =
      summary.ThreatCount() == 0
          ? summary.whole ? "No threats found" : "Nothing found, and not all was scanned"
          : Counted(summary.ThreatCount(), "threat") + " with " +
                Counted(summary.TraceCount(), "trace") + " found";
  if (summary.IgnoredCount() > 0) {
    line += ", " + Counted(summary.IgnoredCount(), "trace") + " ignored";
  }
  line += '.';
  if (!summary.status.empty()) line += ' ' + Printable(summary.status);
  return line;
}

}  // namespace

size_t ScanSummary::ThreatCount() const {
  return static_cast<size_t>(std::count_if(
      threats.begin(), threats.end(), [](const ScanThreat& threat) { return threat.Counts(); }));
}

size_t ScanSummary::TraceCount() const {
  return std::accumulate(
      threats.begin(), threats.end(), size_t{0},
      [](size_t sum, const ScanThreat& threat) { return sum + threat.traces.size(); });
}

size_t ScanSummary::IgnoredCount() const {
  return std::accumulate(
      threats.begin(), threats.end(), size_t{0},
      [](size_t sum, const ScanThreat& threat) { return sum + threat.ignored.size(); });
}

std::vector<ScanThreat> ThreatsOf(const ResultsPage& results, const std::vector<FoundTrace>& traces,
                                  const std::function<int(std::string_view name)>& levelOf) {
  std::vector<ScanThreat> threats;
  std::map<std::string, size_t, LessText> places;
  const auto threatOf = [&](const std::string& name, const std::string& type) -> ScanThreat& {
    const auto [place, isNew] = places.try_emplace(name, threats.size());
    if (isNew) {
      threats.push_back({.name = name, .type = type, .level = std::to_string(levelOf(name))});
    }
    return threats[place->second];
  };
  for (const TreeNodeRef& root : results.vbatvwResults.Roots()) {
    threatOf(root->text, root->columns.empty() ? std::string() : root->columns.front());
  }
  for (const FoundTrace& trace : traces) {
    ScanThreat& threat = threatOf(trace.threat, trace.typeName);
    (trace.exempt ? threat.ignored : threat.traces).push_back(trace.text);
  }
  // Of a threat that was removed the root alone may be left.
  std::erase_if(threats, [](const ScanThreat& threat) {
    return threat.traces.empty() && threat.ignored.empty();
  });
  return threats;
}

void PrintSummary(const ScanSummary& summary, std::ostream& out, bool colours) {
  const TerminalStyle style = StyleOf(colours);
  for (const std::string& phase : summary.notRun) {
    out << style.bad << "not run: " << Printable(phase) << style.normal << '\n';
  }
  for (const std::string& record : summary.notSaved) {
    out << style.bad << "not saved: " << Printable(record) << style.normal << '\n';
  }
  if (!summary.threats.empty()) {
    std::vector<Line> lines{{"Threat", "Type", "Level", "Traces"}};
    for (const ScanThreat& threat : summary.threats) lines.push_back(LineOf(threat));
    const Widths widths = WidthsOf(lines);
    PrintLine(lines.front(), widths, style.header, style, out);
    for (size_t i = 0; i < summary.threats.size(); ++i) {
      const ScanThreat& threat = summary.threats[i];
      PrintLine(lines[i + 1], widths, threat.Counts() ? style.bad : style.faint, style, out);
      for (const std::string& trace : threat.traces) out << "    " << Printable(trace) << '\n';
      for (const std::string& trace : threat.ignored) {
        out << style.faint << "    " << Printable(trace) << " (ignored)" << style.normal << '\n';
      }
    }
    out << '\n';
  }
  for (const std::string& item : summary.unread) {
    out << style.faint << "not read: " << Printable(item) << style.normal << '\n';
  }
  if (summary.unreadCount > summary.unread.size()) {
    out << style.faint
        << "not read: " << Counted(summary.unreadCount - summary.unread.size(), "further item")
        << style.normal << '\n';
  }
  out << SummaryLine(summary) << '\n';
}

void WriteSummary(const ScanSummary& summary, RecordWriter& records) {
  for (const ScanThreat& threat : summary.threats) {
    records.Write({{"threat", threat.name},
                   {"type", threat.type},
                   {"level", threat.level},
                   {"traces", threat.traces},
                   {"ignored", threat.ignored}});
  }
  for (const std::string& phase : summary.notRun) records.Write({{"notrun", phase}});
  for (const std::string& record : summary.notSaved) records.Write({{"notsaved", record}});
  for (const std::string& item : summary.unread) records.Write({{"unread", item}});
  records.Write({{"threats", Number(summary.ThreatCount())},
                 {"traces", Number(summary.TraceCount())},
                 {"ignored", Number(summary.IgnoredCount())},
                 {"notread", Number(summary.unreadCount)},
                 {"whole", summary.whole},
                 {"status", summary.status}});
}

}  // namespace quarnel
