#pragma once

#include <string>

namespace quarnel {

// Lets another process take a .reg file over, on the machine that a TemporaryMachine's folder
// names. False when it did not.
bool ImportByAnotherProcess(const std::string& machineFolder, const std::string& regText);

}  // namespace quarnel
