#include <optional>

#include "ui/console/commands.h"
#include "ui/console/display_text.h"
#include "ui/console/removal_summary.h"

// The everyday jobs, and the end.
namespace quarnel::command {
namespace {

// A control of the running program, whatever form it is on; nothing when there is none.
const Control* Shown(const Host& host, std::string_view name) {
  const std::optional<Target> target = FindTarget(host, name);
  return target ? target->control : nullptr;
}

void Print(Session& session, const ScanSummary& summary) {
  if (session.records.IsJson()) {
    WriteSummary(summary, session.records);
  } else {
    PrintSummary(summary, session.records.out(), session.terminal.ShowsColours());
  }
  if (!summary.problem.empty()) session.host.Notice(Printable(summary.problem));
}

void Print(Session& session, const RemovalReport& report) {
  if (session.records.IsJson()) {
    WriteRemoval(report, session.records);
  } else {
    PrintRemoval(report, session.records.out(), session.terminal.ShowsColours());
  }
  if (!report.problem.empty()) {
    session.host.Notice("removal: " + Printable(report.problem));
  }
}

}  // namespace

ScanSummary RunScan(Session& session) {
  ScanSummary summary;
  {
    const ConsoleHost::Job job(session.host);
    std::optional<ConsoleHost::Progress> progress;
    if (session.terminal.OutputIsTerminal() && !session.records.IsJson()) {
      progress.emplace(
          session.host, session.records.out(), session.terminal,
          ProgressControls{dynamic_cast<const ProgressBar*>(Shown(session.host, "pbgMain")),
                           Shown(session.host, "lblPercentageCompleted"),
                           Shown(session.host, "lblStatus")});
    }
    summary = session.program.Scan();
  }
  Print(session, summary);
  return summary;
}

std::optional<RemovalReport> RunRemoval(Session& session, Removing what) {
  std::optional<RemovalReport> report;
  {
    const ConsoleHost::Job job(session.host, ConsoleHost::Job::Forms::kClosed);
    report = session.program.Remove(what);
  }
  if (report) Print(session, *report);
  return report;
}

bool RunReport(Session& session) {
  const ConsoleHost::Job job(session.host);
  const ScanSummary summary = session.program.Report();
  Print(session, summary);
  if (const auto removal = session.program.LastRemoval()) Print(session, *removal);
  return summary.problem.empty();
}

void Scan(Session& session, Words& words) {
  words.End();
  RunScan(session);
}

void Remove(Session& session, Words& words) {
  words.End();
  RunRemoval(session, Removing::kTicked);
}

void Report(Session& session, Words& words) {
  words.End();
  RunReport(session);
}

void Wizard(Session& session, Words& words) {
  words.End();
  session.program.Wizard();
}

void Quit(Session& session, Words& words) {
  words.End();
  if (session.program.Quit()) session.host.EndProcess();
}

}  // namespace quarnel::command
