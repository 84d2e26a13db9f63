#pragma once

#include <memory>

#include "controls/host.h"
#include "ui/console/console_program.h"

namespace quarnel {

// The application, on the machine that the call names, as the program behind a console: it shows no
// splash.
std::unique_ptr<ConsoleProgram> MakeConsoleApplication(Host& host, const ProgramCall& call);

}  // namespace quarnel
