#pragma once

#include <string_view>

#include "base/runtime_error.h"

namespace quarnel {

// The error number that a code of GetLastError stands for.
ErrorNumber NumberOfSystemError(unsigned long code);

// Raises for a code of GetLastError, with what the failure was about.
[[noreturn]] void RaiseSystemError(unsigned long code, std::string_view about);

}  // namespace quarnel
