#pragma once

#include <string_view>

#include "base/runtime_error.h"

namespace quarnel {

// The error number that a code of errno stands for. ENOENT is kFileNotFound; a caller that knows
// that the folder is missing says kPathNotFound itself.
ErrorNumber NumberOfErrno(int code);

// Raises for a code of errno, with what the failure was about.
[[noreturn]] void RaiseErrno(int code, std::string_view about);

}  // namespace quarnel
