#pragma once

#include <memory>
#include <streambuf>

#include "platform/windows/win32.h"

namespace quarnel {

// Makes standard output and standard error of this process print UTF-8 as it stands, without the C
// library's carriage returns, into files and pipes as on a console. For the rest of the process.
void PrintUtf8();

// A buffer that shows UTF-8 on a console, each character as soon as it is whole.
std::unique_ptr<std::streambuf> MakeConsoleBuffer(HANDLE console);

}  // namespace quarnel
