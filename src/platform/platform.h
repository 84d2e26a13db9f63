#pragma once

#include <memory>
#include <string>

#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/power.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/version_info.h"

namespace quarnel {

// The families of system operations together. A subsystem takes those that it uses, not this.
class Platform {
 public:
  virtual ~Platform() = default;
  virtual Files& files() = 0;
  virtual Registry& registry() = 0;
  virtual Processes& processes() = 0;
  virtual VersionRecords& versions() = 0;
  virtual Machine& machine() = 0;
  virtual Shell& shell() = 0;
  virtual Desktop& desktop() = 0;
  virtual Power& power() = 0;
};

// The machine that the program works on. On Windows this is the running system and `machineFolder`
// must be empty. Elsewhere it is a machine folder: the one named, else the one that the variable
// QUARNEL_MACHINE names, else the user's own below $XDG_DATA_HOME/quarnel/machine, which is made
// when it does not exist. Raises RuntimeError with a readable reason when it cannot be opened.
std::unique_ptr<Platform> OpenPlatform(const std::string& machineFolder);

// The command line as UTF-8, and the standard streams switched to UTF-8 with plain line feeds: what
// a main() does first.
std::vector<std::string> CommandLine(int argc, char** argv);

}  // namespace quarnel
