#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>

#include "platform/terminal.h"
#include "ui/console/console_program.h"

namespace quarnel {

// The streams of a console, and the terminal on which they may stand.
struct ConsoleStreams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  Terminal& terminal;
};

// What `quarnel-console` does with its arguments (without the program's own name): runs the script,
// the prompt or the job that they name, and returns the exit code. 0: done, or nothing found by a
// scan; 2: threats found, or left by a removal, or a bad call; 1: an error, told in one line.
int RunConsole(std::span<const std::string> arguments, const ConsoleStreams& streams,
               const MakeProgram& makeProgram);

}  // namespace quarnel
