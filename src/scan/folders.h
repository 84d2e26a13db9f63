#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/machine.h"
#include "platform/registry.h"

namespace quarnel {

// The folder of a file signature's code, 1 to 43, with a backslash at its end. One element, which
// is empty for an unknown code and for a folder that the machine does not have.
std::vector<std::string> GetFolder(Machine& machine, int code);

// The folders of a word in a registry value name, such as "WINDOWS" or "SYSTEM_DIRECTORY" (which
// has two); one empty text for an unknown word. Words are compared exactly.
std::vector<std::string> GetRegistryFolder(Machine& machine, Registry& registry,
                                           std::string_view token);

// The logged-on user's name, which "[[USER]]" in a signature stands for.
std::string GetCurrentUser(Machine& machine);
inline constexpr std::string_view kUserToken = "[[USER]]";

}  // namespace quarnel
