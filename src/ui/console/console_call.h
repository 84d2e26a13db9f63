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
    "usage: quarnel-console [--json] [--machine DIR] [SCRIPT | - | scan | remove | report]";

// Raises CommandError with the reason for a call that makes no sense.
ConsoleCall ParseConsoleCall(std::span<const std::string> arguments);

}  // namespace quarnel
