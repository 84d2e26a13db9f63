#include "platform/windows/wide_text.h"

#include <algorithm>

#include "base/unicode.h"

namespace quarnel {

std::wstring Wide(std::string_view utf8) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  // Most names need no decoding.
  if (std::all_of(utf8.begin(), utf8.end(), isAscii)) return {utf8.begin(), utf8.end()};
  const std::u16string units = ToUtf16(utf8);
  return {units.begin(), units.end()};
}

std::string Narrow(std::wstring_view wide) {
  if (std::all_of(wide.begin(), wide.end(), [](wchar_t c) { return c < 0x80; })) {
    std::string text(wide.size(), '\0');
    std::transform(wide.begin(), wide.end(), text.begin(),
                   [](wchar_t c) { return static_cast<char>(c); });
    return text;
  }
  return ToUtf8(std::u16string(wide.begin(), wide.end()));
}

}  // namespace quarnel
