#pragma once

#include <string_view>

#include "controls/controls_fwd.h"
#include "platform/machine.h"

namespace quarnel {

// The platform number, 1 or 2. When the system does not tell: 0, after the message "Error Getting
// Version Information".
int GetOSVersionInfo(Machine& machine, Host& host, std::string_view title);

}  // namespace quarnel
