#include "platform/platform.h"

#include <utility>

#include "base/runtime_error.h"
#include "platform/machine_folder.h"
#include "platform/posix/backends.h"

namespace quarnel {
namespace {

class PosixPlatform : public Platform {
 public:
  explicit PosixPlatform(MachineFolder folder)
      : folder_(std::move(folder)),
        paths_(folder_.Layout()),
        files_(MakeFiles(paths_)),
        registry_(MakeRegistry(folder_, OpenStore(folder_))),
        processes_(MakeProcesses(paths_)),
        versions_(MakeVersionRecords(*files_)),
        machine_(MakeMachine(folder_, paths_)),
        shell_(MakeShell(paths_, *files_)),
        desktop_(MakeDesktop(folder_)),
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
  // In the order of need: each family refers to those above it.
  MachineFolder folder_;
  PathMap paths_;
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
  return std::make_unique<PosixPlatform>(ReadMachineFolder(MachineFolderFor(machineFolder)));
}

std::unique_ptr<Platform> OpenMachine(const std::string& folder) {
  if (folder.empty()) throw RuntimeError(ErrorNumber::kPathNotFound, "no machine folder named");
  return OpenPlatform(folder);
}

std::vector<std::string> CommandLine(int argc, char** argv) { return {argv, argv + argc}; }

}  // namespace quarnel
