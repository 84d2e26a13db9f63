#pragma once

#include <span>
#include <string>

namespace quarnel {

// What a command line asks for.
struct ConsoleCall {
  enum class Kind { kPrompt, kStandardInput, kScriptFile, kScan, kRemove, kReport, kHelp };
  Kind kind = Kind::kPrompt;
  std::string scriptFile;
  std::string machineFolder;  // empty: the usual one
  bool json = false;
};

inline constexpr const char* kConsoleUsage =
    "usage: quarnel-console [--json] [--machine DIR] [SCRIPT | - | scan | remove | report]\n"
    "  scan      looks for threats: exit code 0 for none, 2 for some, 1 for an error\n"
    "  remove    scans and removes what it found: 0 when all is gone, 2 when something is left\n"
    "  report    tells what became of the last scan and of the last removal\n"
    "  SCRIPT    runs the commands of a file, one a line; - reads them from standard input\n"
    "  Without any of these a terminal gets a prompt, where help lists the commands.\n"
    "  An error gives exit code 1, whatever was asked for: a call that makes no sense, too.";

// Raises CommandError with the reason for a call that makes no sense.
ConsoleCall ParseConsoleCall(std::span<const std::string> arguments);

}  // namespace quarnel
