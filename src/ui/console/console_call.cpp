#include "ui/console/console_call.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "ui/console/command_error.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

using Kind = ConsoleCall::Kind;

constexpr std::array<std::pair<std::string_view, Kind>, 4> kWords{{
    {"-", Kind::kStandardInput},
    {"scan", Kind::kScan},
    {"remove", Kind::kRemove},
    {"report", Kind::kReport},
}};

}  // namespace

ConsoleCall ParseConsoleCall(std::span<const std::string> arguments) {
  ConsoleCall call;
  bool named = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--json") {
      call.json = true;
    } else if (argument == "--help") {
      call.kind = Kind::kHelp;
      return call;
    } else if (argument == "--machine") {
      if (++i == arguments.size() || arguments[i].empty()) {
        throw CommandError{"--machine needs a folder"};
      }
      call.machineFolder = arguments[i];
    } else if (argument.empty() || (argument[0] == '-' && argument != "-")) {
      throw CommandError{"unknown option " + Quoted(argument)};
    } else if (named) {
      throw CommandError{"one argument too many: " + Quoted(argument)};
    } else {
      named = true;
      const auto* word = std::find_if(kWords.begin(), kWords.end(),
                                      [&](const auto& entry) { return entry.first == argument; });
      call.kind = word == kWords.end() ? Kind::kScriptFile : word->second;
      if (call.kind == Kind::kScriptFile) call.scriptFile = argument;
    }
  }
  return call;
}

}  // namespace quarnel
