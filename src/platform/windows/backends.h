#pragma once

#include <functional>
#include <memory>

#include "platform/platform.h"

// What makes each family's backend on the running system.
namespace quarnel {

std::unique_ptr<Files> MakeFiles();
std::unique_ptr<Registry> MakeRegistry();
std::unique_ptr<Machine> MakeMachine();
std::unique_ptr<Processes> MakeProcesses();
std::unique_ptr<VersionRecords> MakeVersionRecords();
std::unique_ptr<Shell> MakeShell(Files& files);
std::unique_ptr<Desktop> MakeDesktop();
std::unique_ptr<Power> MakePower();

// The name of the user's account; empty when the system does not tell.
std::string AccountOfUser();

// The call that restarts the system, ExitWindowsEx at first, with its two arguments. It is
// replaced where a restart must not happen, such as in tests.
using RestartCall = std::function<bool(uint32_t flags, uint32_t reason)>;
void ReplaceRestartCall(RestartCall call);

}  // namespace quarnel
