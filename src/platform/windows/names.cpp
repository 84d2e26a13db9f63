#include "platform/names.h"

#include "base/text.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace quarnel {

std::string FoldName(std::string_view name) {
  if (IsAscii(name)) return ToUpper(name);
  const std::wstring wide = Wide(name);
  std::wstring upper = wide;
  CharUpperBuffW(upper.data(), static_cast<DWORD>(upper.size()));
  for (size_t i = 0; i < upper.size(); ++i) {
    // One unit to one unit, as the names of files go: a letter of two units is itself.
    constexpr wchar_t kAscii = 0x80;
    const bool half = wide[i] >= 0xD800 && wide[i] <= 0xDFFF;
    if (half || (upper[i] < kAscii && wide[i] >= kAscii)) upper[i] = wide[i];
  }
  return Narrow(upper);
}

}  // namespace quarnel
