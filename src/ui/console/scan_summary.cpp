#include "ui/console/scan_summary.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "base/text.h"
#include "scan/results.h"
#include "ui/display_text.h"

namespace quarnel {
namespace {

constexpr size_t kColumns = 4;
using Line = std::array<std::string, kColumns>;
using Widths = std::array<size_t, kColumns>;

// The sequences of a terminal; all empty where it shows none.
struct Style {
  std::string_view header;
  std::string_view threat;
  std::string_view faint;
  std::string_view normal;
};
constexpr Style kPlain{};
constexpr Style kColoured{"\033[1m", "\033[1;31m", "\033[2m", "\033[0m"};

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

void PrintLine(const Line& line, const Widths& widths, std::string_view style, const Style& all,
               std::ostream& out) {
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
  if (!summary.scanned) return "Nothing was scanned in this run.";
  std::string line = summary.ThreatCount() == 0
                         ? "No threats found"
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

std::vector<ScanThreat> ThreatsOf(const TreeView& results) {
  std::vector<ScanThreat> threats;
  for (const TreeNodeRef& root : results.Roots()) {
    const auto column = [&](size_t number) {
      return number <= root->columns.size() ? std::string(Trim(root->columns[number - 1]))
                                            : std::string();
    };
    ScanThreat threat{.name = root->text, .type = column(1), .level = column(2)};
    for (const TreeNodeRef& child : root->children) {
      const std::string_view text = child->text;
      if (text.starts_with(kIgnoredPrefix)) {
        threat.ignored.emplace_back(text.substr(kIgnoredPrefix.size()));
      } else {
        threat.traces.emplace_back(
            text.substr(text.starts_with(kFoundPrefix) ? kFoundPrefix.size() : 0));
      }
    }
    threats.push_back(std::move(threat));
  }
  return threats;
}

void PrintSummary(const ScanSummary& summary, std::ostream& out, bool colours) {
  const Style& style = colours ? kColoured : kPlain;
  if (!summary.threats.empty()) {
    std::vector<Line> lines{{"Threat", "Type", "Level", "Traces"}};
    for (const ScanThreat& threat : summary.threats) lines.push_back(LineOf(threat));
    const Widths widths = WidthsOf(lines);
    PrintLine(lines.front(), widths, style.header, style, out);
    for (size_t i = 0; i < summary.threats.size(); ++i) {
      const ScanThreat& threat = summary.threats[i];
      PrintLine(lines[i + 1], widths, threat.Counts() ? style.threat : style.faint, style, out);
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
  for (const std::string& item : summary.unread) records.Write({{"unread", item}});
  records.Write({{"threats", Number(summary.ThreatCount())},
                 {"traces", Number(summary.TraceCount())},
                 {"ignored", Number(summary.IgnoredCount())},
                 {"notread", Number(summary.unreadCount)},
                 {"status", summary.status}});
}

}  // namespace quarnel
