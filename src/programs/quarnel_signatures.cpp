#include <iostream>

#include "platform/platform.h"
#include "signatures/signature_tool.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments = quarnel::CommandLine(argc, argv);
  if (!arguments.empty()) arguments.erase(arguments.begin());
  return quarnel::RunSignatureTool(arguments, std::cout, std::cerr);
}
