#pragma once

#include <string>

#include "core/settings.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/machine.h"

// What happens before the first window, and the captions by which instances know each other.
namespace quarnel {

// The version that runs: an installed update may overrule the version record by a setting.
std::string RunningVersion(const Settings& settings);
// The same for the signature set.
std::string SignatureVersion(const Settings& settings);

// The caption of the main window, and of the set-up wizard's pages.
std::string MainCaption(const Settings& settings);
std::string WizardCaption(const Settings& settings);

// Whether another instance shows its wizard or its main window; its window is brought forward.
bool IsPrevInstanceRunning(Desktop& desktop, const Settings& settings);

// Deletes the executable that an update has left behind under the name "Old...". Errors are
// ignored.
void DeleteOldExe(Files& files, Machine& machine);

}  // namespace quarnel
