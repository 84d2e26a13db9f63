#pragma once

#include <string_view>

#include "controls/controls_fwd.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/shell.h"

namespace quarnel {

// Opens an address in the program that shows files of this extension (without a point). Failures
// are shown to the user.
void OpenInBrowser(Shell& shell, Machine& machine, Files& files, Host& host,
                   std::string_view address, std::string_view extension, std::string_view title);

}  // namespace quarnel
