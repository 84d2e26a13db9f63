#pragma once

#include <map>
#include <string>

#include "platform/machine.h"
#include "platform/machine_folder.h"
#include "platform/posix/machine/machine_layout.h"

namespace quarnel {

// A machine folder as its machine.ini describes it. It holds drive_c and further drive_X folders,
// registry.db and machine.ini:
//
//   [machine]
//   user=NAME
//   sid=S-1-5-21-...
//   family=nt            (or 9x)
//   [drives]
//   D=cdrom              (removable, fixed, remote, cdrom, ramdisk; fixed when not named)
struct MachineFolder {
  std::string path;  // absolute host path without a slash at the end
  std::string userName;
  std::string sid;
  SystemFamily family = SystemFamily::kWindowsNt;
  std::map<char, DriveType> driveTypes;  // by upper-case letter

  MachineLayout Layout() const { return {path, userName}; }
  std::string RegistryFile() const { return path + "/registry.db"; }
};

// Reads a machine folder. Raises kPathNotFound when there is none, and kInvalidCall with file and
// line when its machine.ini cannot be understood.
MachineFolder ReadMachineFolder(const std::string& path);

// The folder that OpenPlatform takes for this argument: see platform.h.
std::string MachineFolderFor(const std::string& argument);

}  // namespace quarnel
