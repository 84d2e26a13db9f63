#pragma once

#include <string>
#include <string_view>

namespace quarnel {

// Text as the system's wide functions take it, and back; every name survives both ways, as
// base/unicode.h says.
std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view wide);

}  // namespace quarnel
