#include <iostream>

#include "machine/machine_commands.h"
#include "platform/platform.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments = quarnel::CommandLine(argc, argv);
  if (!arguments.empty()) arguments.erase(arguments.begin());
  return quarnel::RunMachineTool(arguments, std::cout, std::cerr);
}
