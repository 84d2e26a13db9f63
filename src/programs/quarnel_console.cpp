#include <iostream>

#include "platform/platform.h"
#include "ui/console/console_application.h"
#include "ui/console/run_console.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments = quarnel::CommandLine(argc, argv);
  if (!arguments.empty()) arguments.erase(arguments.begin());
  const std::unique_ptr<quarnel::Terminal> terminal = quarnel::OpenTerminal();
  return quarnel::RunConsole(arguments, {std::cin, std::cout, std::cerr, *terminal},
                             quarnel::MakeConsoleApplication);
}
