#include "ui/console/removal_summary.h"

#include "recovery/removal_words.h"
#include "ui/console/display_text.h"
#include "ui/console/terminal_style.h"

namespace quarnel {

void PrintRemoval(const RemovalReport& report, std::ostream& out, bool colours) {
  for (const ReportLine& line : ReportLines(report)) {
    const TerminalStyle style = StyleOf(colours && line.alarming);
    out << style.bad << line.fate << style.normal;
    out << Printable(line.text) << '\n';
  }
}

void WriteRemoval(const RemovalReport& report, RecordWriter& records) {
  if (report.backup) {
    for (const BackupFailure& failure : report.backup->failures) {
      records.Write({{"notsaved", failure.what}, {"reason", failure.reason}});
    }
  }
  for (const ReportedTrace& trace : report.traces) {
    records.Write({{"trace", trace.trace},
                   {"kind", std::string(NameOf(trace.kind))},
                   {"threat", trace.threat},
                   {"fate", std::string(NameOf(trace.fate))},
                   {"detail", trace.detail}});
  }
  std::vector<Field> sum{{"removal", report.time}};
  for (const Fate fate : AllFates()) sum.push_back({NameOf(fate), Number(report.Count(fate))});
  sum.push_back({"safelist", Number(report.CountExempt())});
  sum.push_back({"backup", std::string(RestorePointState(report))});
  sum.push_back({"restorepoint", RestorePointPath(report)});
  sum.push_back({"problem", report.problem});
  records.Write(sum);
}

}  // namespace quarnel
