#include "platform/machine_folder.h"

#include "base/runtime_error.h"

namespace quarnel {
namespace {

[[noreturn]] void Refuse(const std::string& folder) {
  throw RuntimeError(ErrorNumber::kInvalidCall,
                     "the machine is this system itself, not the folder " + folder);
}

}  // namespace

void CreateMachine(const std::string& folder, const MachineOptions& /*options*/) { Refuse(folder); }

std::unique_ptr<Platform> OpenMachine(const std::string& folder) {
  return OpenPlatform(folder == "." ? std::string() : folder);
}

std::string HostPathOf(const std::string& folder, std::string_view /*windowsPath*/) {
  Refuse(folder);
}

}  // namespace quarnel
