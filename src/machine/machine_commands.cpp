#include "machine/machine_commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string_view>
#include <utility>

#include "base/host_files.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "machine/reg_file.h"
#include "machine/registry_transfer.h"
#include "machine/sample.h"
#include "platform/machine_folder.h"

namespace quarnel {
namespace {

// A call that the program cannot make sense of.
struct BadCall {
  std::string reason;
};

using Arguments = std::span<const std::string>;

struct Streams {
  std::ostream& out;
  std::ostream& errors;
};

int Fail(const Streams& streams, std::string_view reason) {
  streams.errors << "quarnel-machine: " << reason << '\n';
  return 1;
}

KeyPath KeyArgument(const std::string& text) {
  auto key = ParseKeyPath(text);
  if (!key) throw BadCall{"no registry key: " + text};
  return std::move(*key);
}

int Create(Arguments arguments, const Streams& /*streams*/) {
  MachineOptions options;
  for (size_t i = 1; i < arguments.size(); i += 2) {
    const std::string& option = arguments[i];
    if (i + 1 == arguments.size()) throw BadCall{"no value for " + option};
    const std::string& value = arguments[i + 1];
    if (option == "--user") {
      options.userName = value;
    } else if (option == "--sid") {
      options.sid = value;
    } else if (option == "--family" && (value == "nt" || value == "9x")) {
      options.family = value == "nt" ? SystemFamily::kWindowsNt : SystemFamily::kWindows9x;
    } else {
      throw BadCall{Join({"no such option:", option, value}, " ")};
    }
  }
  CreateMachine(arguments[0], options);
  return 0;
}

int Path(Arguments arguments, const Streams& streams) {
  streams.out << HostPathOf(arguments[0], arguments[1]) << '\n';
  return 0;
}

int Import(Arguments arguments, const Streams& streams) {
  std::optional<KeyPath> below;
  if (arguments.size() > 2) below = KeyArgument(arguments[2]);
  const std::string& fileName = arguments[1];
  const RegFile file = ParseRegFile(ReadHostFile(fileName));
  auto error = file.error;
  if (!error) {
    const std::unique_ptr<Platform> platform = OpenMachine(arguments[0]);
    error = ApplySteps(platform->registry(), file.steps, below);
  }
  if (!error) return 0;
  return Fail(streams, fileName + ":" + std::to_string(error->line) + ": " + error->reason);
}

int Export(Arguments arguments, const Streams& streams) {
  std::vector<KeyPath> keys = {{hive::kLocalMachine, {}}, {hive::kUsers, {}}};
  if (arguments.size() > 2) keys = {KeyArgument(arguments[2])};
  const std::unique_ptr<Platform> platform = OpenMachine(arguments[0]);
  std::vector<RegStep> steps;
  for (const KeyPath& key : keys) {
    const RegistryStatus status = CollectSteps(platform->registry(), key, steps);
    if (status == RegistryStatus::kSuccess) continue;
    return Fail(streams, KeyPathText(key) + ": " + StatusText(status));
  }
  WriteHostFile(arguments[1], PrintRegFile(steps));
  return 0;
}

// The data of one value, for a script to read.
std::string DataText(const RawValue& raw) {
  RawValue text = raw;
  if (text.type == ValueType::kExpandString) text.type = ValueType::kString;
  if (const auto value = ValueFromRaw(text)) {
    const auto* number = std::get_if<uint32_t>(&*value);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(*value);
  }
  return Replace(ValueLine("", raw).substr(2), "\\\r\n  ", "");
}

int Query(Arguments arguments, const Streams& streams) {
  const KeyPath path = KeyArgument(arguments[1]);
  const std::unique_ptr<Platform> platform = OpenMachine(arguments[0]);
  std::unique_ptr<RegistryKey> key;
  RegistryStatus status =
      platform->registry().Open(path.root, path.path, registry_access::kRead, key);
  RawValue value;
  const bool wantsValue = arguments.size() > 2;
  if (status == RegistryStatus::kSuccess && wantsValue) status = key->Query(arguments[2], value);
  if (status != RegistryStatus::kSuccess) {
    return Fail(streams, arguments[1] + ": " + StatusText(status));
  }
  if (wantsValue) {
    streams.out << DataText(value) << '\n';
    return 0;
  }
  std::string name;
  for (uint32_t i = 0; key->EnumValue(i, name) == RegistryStatus::kSuccess; ++i) {
    if (key->Query(name, value) != RegistryStatus::kSuccess) continue;
    streams.out << Replace(ValueLine(name, value), "\\\r\n  ", "") << '\n';
  }
  for (uint32_t i = 0; key->EnumKey(i, name) == RegistryStatus::kSuccess; ++i) {
    const std::string below = path.path.empty() ? name : path.path + "\\" + name;
    streams.out << '[' << KeyPathText({path.root, below}) << "]\n";
  }
  return 0;
}

int Sample(Arguments arguments, const Streams& streams) {
  const auto platform = arguments.empty() ? OpenPlatform("") : OpenMachine(arguments[0]);
  const PlantedSample sample = PlantSample(*platform);
  for (const PlantedTrace& trace : sample.traces) {
    streams.out << PlantedKindName(trace.kind) << '\t' << trace.threat << '\t' << trace.trace
                << '\n';
  }
  return 0;
}

struct Command {
  std::string_view words;  // with which it begins
  size_t least;            // arguments behind them
  size_t most;
  int (*run)(Arguments arguments, const Streams& streams);
  std::string_view usage;
  std::string_view purpose;
};

constexpr Command kCommands[] = {
    {"create", 1, 7, Create, "create DIR [--user NAME] [--sid SID] [--family nt|9x]",
     "makes a machine folder"},
    {"path", 2, 2, Path, "path DIR 'C:\\...'", "shows where a file of the machine lies"},
    {"reg import", 2, 3, Import, "reg import DIR FILE [KEY]", "takes a .reg file over"},
    {"reg export", 2, 3, Export, "reg export DIR FILE [KEY]", "writes a .reg file"},
    {"reg query", 2, 3, Query, "reg query DIR KEY [VALUE]", "shows a key or a value"},
    {"sample", 0, 1, Sample, "sample [DIR]",
     "plants harmless threats and their signatures; without DIR on the machine that quarnel works "
     "on"},
};

std::string Usage() {
  std::string text = "usage:";
  for (const Command& command : kCommands) {
    text.append("\n  quarnel-machine ").append(command.usage);
    text.append("\n      ").append(command.purpose);
  }
  return text;
}

int Run(Arguments arguments, const Streams& streams) {
  if (arguments.size() == 1 && arguments[0] == "--help") {
    streams.out << Usage() << '\n';
    return 0;
  }
  for (const Command& command : kCommands) {
    const size_t words = Split(command.words, " ").size();
    if (arguments.size() < words) continue;
    const Arguments front = arguments.first(words);
    if (Join({front.begin(), front.end()}, " ") != command.words) continue;
    const Arguments rest = arguments.subspan(words);
    if (rest.size() < command.least || rest.size() > command.most ||
        (!rest.empty() && rest[0].empty())) {
      throw BadCall{"usage: quarnel-machine " + std::string(command.usage)};
    }
    return command.run(rest, streams);
  }
  throw BadCall{"usage: quarnel-machine COMMAND DIR ...; --help lists the commands"};
}

}  // namespace

int RunMachineTool(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& errors) {
  const Streams streams{out, errors};
  try {
    return Run(arguments, streams);
  } catch (const BadCall& call) {
    errors << call.reason << '\n';
    return 1;
  } catch (const RuntimeError& error) {
    return Fail(streams, error.Description());
  }
}

}  // namespace quarnel
