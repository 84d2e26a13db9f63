#pragma once

#include <memory>

#include "platform/platform.h"
#include "platform/posix/files/path_map.h"
#include "platform/posix/machine/machine_folder.h"
#include "platform/posix/registry/registry_store.h"

// What makes each family's backend on a machine folder. References are kept: the platform holds
// what they refer to for as long as the backends live.
namespace quarnel {

// Read-only is a missing owner's right to write. Hidden, system, archive and temporary stand in an
// extended attribute, and are not kept by a file system without those. A name that begins with "."
// is not hidden for that. What changes something never leaves the machine's drives, wherever links
// lead; pipes and devices are shown and deleted, but not opened.
std::unique_ptr<Files> MakeFiles(PathMap& paths);
// The store of a machine folder, and the registry on any store.
std::shared_ptr<RegistryStore> OpenStore(const MachineFolder& folder);
std::unique_ptr<Registry> MakeRegistry(const MachineFolder& folder,
                                       std::shared_ptr<RegistryStore> store);
std::unique_ptr<Machine> MakeMachine(const MachineFolder& folder, PathMap& paths);

// Processes whose executable lies on a drive of the machine: PathMap::ToWindows decides.
std::unique_ptr<Processes> MakeProcesses(PathMap& paths);
std::unique_ptr<VersionRecords> MakeVersionRecords(Files& files);
std::unique_ptr<Shell> MakeShell(PathMap& paths, Files& files);
std::unique_ptr<Desktop> MakeDesktop(const MachineFolder& folder);
std::unique_ptr<Power> MakePower();

}  // namespace quarnel
