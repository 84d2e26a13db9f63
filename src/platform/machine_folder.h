#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/machine.h"
#include "platform/platform.h"

namespace quarnel {

// What a new machine folder is made for.
struct MachineOptions {
  std::string userName = "user";
  std::string sid = "S-1-5-21-1004336348-1177238915-682003330-1003";
  SystemFamily family = SystemFamily::kWindowsNt;
};

// Makes a machine folder with the folders and registry values that a machine has at first. The
// folder may exist when it is empty; one that holds a machine already is kFileExists. Where the
// machine is the running system itself this raises kInvalidCall.
void CreateMachine(const std::string& folder, const MachineOptions& options);

// Opens the machine in a folder. Where the machine is the running system itself the folder must be
// ".", and anything else is kInvalidCall.
std::unique_ptr<Platform> OpenMachine(const std::string& folder);

// The host path behind a Windows path of a machine folder, whether or not something stands there.
// Where the machine is the running system itself this raises kInvalidCall.
std::string HostPathOf(const std::string& folder, std::string_view windowsPath);

}  // namespace quarnel
