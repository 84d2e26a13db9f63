#include "platform/platform.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "platform/windows/backends.h"
#include "platform/windows/desktop/standard_streams.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace quarnel {
namespace {

class WindowsPlatform : public Platform {
 public:
  WindowsPlatform()
      : files_(MakeFiles()),
        registry_(MakeRegistry()),
        processes_(MakeProcesses()),
        versions_(MakeVersionRecords()),
        machine_(MakeMachine()),
        shell_(MakeShell(*files_)),
        desktop_(MakeDesktop()),
        power_(MakePower()) {}

  Files& files() override { return *files_; }
  Registry& registry() override { return *registry_; }
  Processes& processes() override { return *processes_; }
  VersionRecords& versions() override { return *versions_; }
  Machine& machine() override { return *machine_; }
  Shell& shell() override { return *shell_; }
  Desktop& desktop() override { return *desktop_; }
  Power& power() override { return *power_; }

 private:
  std::unique_ptr<Files> files_;
  std::unique_ptr<Registry> registry_;
  std::unique_ptr<Processes> processes_;
  std::unique_ptr<VersionRecords> versions_;
  std::unique_ptr<Machine> machine_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Desktop> desktop_;
  std::unique_ptr<Power> power_;
};

}  // namespace

std::unique_ptr<Platform> OpenPlatform(const std::string& machineFolder) {
  if (!machineFolder.empty()) {
    throw RuntimeError(ErrorNumber::kInvalidCall,
                       "the machine is this system itself, not the folder " + machineFolder);
  }
  // A drive without a disk is an answer, not a question to the user.
  SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  return std::make_unique<WindowsPlatform>();
}

std::vector<std::string> CommandLine(int argc, char** argv) {
  PrintUtf8();
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> arguments(static_cast<size_t>(count));
  std::transform(wide, wide + count, arguments.begin(), Narrow);
  LocalFree(wide);
  return arguments;
}

}  // namespace quarnel
