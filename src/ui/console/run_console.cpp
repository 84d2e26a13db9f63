#include "ui/console/run_console.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/host_files.h"
#include "base/runtime_error.h"
#include "recovery/removal_words.h"
#include "ui/console/command_error.h"
#include "ui/console/console_call.h"
#include "ui/console/display_text.h"
#include "ui/console/interpreter.h"

namespace quarnel {
namespace {

using Kind = ConsoleCall::Kind;

constexpr int kDone = 0;
constexpr int kError = 1;
constexpr int kThreatsFound = 2;

bool IsJob(Kind kind) {
  return kind == Kind::kScan || kind == Kind::kRemove || kind == Kind::kReport;
}

// Without an argument a person is meant when there is one, and otherwise a script on standard
// input.
ConsoleCall Complete(ConsoleCall call, Terminal& terminal) {
  if (call.kind == Kind::kPrompt && !terminal.InputIsTerminal()) call.kind = Kind::kStandardInput;
  return call;
}

bool OpenScript(const std::string& name, std::ifstream& file) {
  const std::filesystem::path path = HostPath(name);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return false;
  file.open(path, std::ios::binary);
  return file.is_open();
}

int CodeOf(const ScanSummary& summary) {
  if (!summary.problem.empty() || !summary.scanned || !summary.whole) return kError;
  return summary.ThreatCount() > 0 ? kThreatsFound : kDone;
}

// Nothing has been scanned yet when the program has just started, so the scan comes first. What a
// scan found goes, also when the scan was not whole.
int ScanAndRemove(Session& session) {
  const ScanSummary summary = command::RunScan(session);
  const int code = CodeOf(summary);
  if (summary.TraceCount() == 0) return code;
  const std::optional<RemovalReport> report = command::RunRemoval(session, Removing::kAllFound);
  if (code == kError || !report || !report->problem.empty()) return kError;
  return report->AllGone() && !RestorePointIsIncomplete(*report) ? kDone : kThreatsFound;
}

// Runs one of the jobs named on the command line.
int RunJob(Kind kind, Session& session) {
  if (kind == Kind::kScan) return CodeOf(command::RunScan(session));
  if (kind == Kind::kRemove) return ScanAndRemove(session);
  return command::RunReport(session) ? kDone : kError;
}

// Starts the program, does what the call asks for, and leaves it. ProcessEnded may come at any
// point from the start on.
int RunProgram(const ConsoleCall& call, Session& session, Interpreter& interpreter) {
  if (!session.program.Start()) {
    session.host.Notice("quarnel-console: another instance is running");
    return kError;
  }
  session.host.Play(interpreter);
  int code = kDone;
  if (IsJob(call.kind)) {
    code = RunJob(call.kind, session);
  } else {
    while (interpreter.RunNext("> ")) continue;
  }
  const ConsoleHost::Job leaving(session.host);
  try {
    session.program.End();
  } catch (const ProcessEnded&) {
    return session.host.HasFailed() ? kError : code;
  }
  return code;
}

int Run(const ConsoleCall& call, std::istream& script, const ConsoleStreams& streams,
        const MakeProgram& makeProgram) {
  const bool job = IsJob(call.kind);
  const bool byPerson = (job || call.kind == Kind::kPrompt) && streams.terminal.InputIsTerminal();
  ConsoleHost host(streams.err, {.person = byPerson ? &streams.terminal : nullptr,
                                 .tellsBoxes = job || byPerson});
  const std::unique_ptr<ConsoleProgram> program =
      makeProgram(host, {.machineFolder = call.machineFolder, .job = job});
  RecordWriter records(streams.out,
                       call.json ? RecordWriter::Format::kJson : RecordWriter::Format::kTabs);
  Session session{host, *program, streams.terminal, records};
  ScriptLines written(script);
  TypedLines typed(streams.terminal, streams.err);
  LineSource& lines = byPerson ? static_cast<LineSource&>(typed) : written;
  Interpreter interpreter(session, lines, byPerson ? OnError::kGoOn : OnError::kEndScript);
  int code = kDone;
  try {
    code = RunProgram(call, session, interpreter);
  } catch (const ProcessEnded&) {
    // A job that did not come to its end has done nothing that could be told.
    code =
        host.HasFailed() || call.kind == Kind::kScan || call.kind == Kind::kRemove ? kError : kDone;
  }
  if (code == kDone && program->RestoreFellShort()) code = kError;
  streams.out.flush();
  return code;
}

}  // namespace

int RunConsole(std::span<const std::string> arguments, const ConsoleStreams& streams,
               const MakeProgram& makeProgram) {
  const auto complain = [&](std::string_view reason) {
    streams.err << "quarnel-console: " << reason << '\n';
    streams.err.flush();
    return kError;
  };
  try {
    const ConsoleCall call = Complete(ParseConsoleCall(arguments), streams.terminal);
    if (call.kind == Kind::kHelp) {
      streams.out << kConsoleUsage << '\n';
      return kDone;
    }
    std::ifstream file;
    if (call.kind == Kind::kScriptFile && !OpenScript(call.scriptFile, file)) {
      return complain("cannot read the script " + Quoted(call.scriptFile));
    }
    std::istringstream nothing;
    std::istream& script = call.kind == Kind::kScriptFile      ? file
                           : call.kind == Kind::kStandardInput ? streams.in
                                                               : nothing;
    return Run(call, script, streams, makeProgram);
  } catch (const CommandError& failure) {
    return complain(failure.text);
  } catch (const RuntimeError& failure) {
    return complain(Printable(failure.Description()));
  } catch (const std::exception& failure) {
    return complain(Printable(failure.what()));
  }
}

}  // namespace quarnel
