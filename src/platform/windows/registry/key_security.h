#pragma once

#include <cstdint>
#include <string>

#include "platform/windows/win32.h"

namespace quarnel {

// Puts an entry that allows `access` to `account` in front of a key's rights. A key that grants
// everything to everybody is left so, and an entry that stands in front already is not repeated.
// The result is the name of the step that failed, as Registry::SetKeySecurity gives it; a null root
// fails as one that cannot be opened.
std::string AllowInFront(HKEY root, const std::wstring& path, const std::wstring& account,
                         uint32_t access);

}  // namespace quarnel
