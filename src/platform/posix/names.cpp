#include "platform/names.h"

#include <utf8proc.h>

#include <array>

#include "base/text.h"

namespace quarnel {
namespace {

constexpr utf8proc_int32_t kBeyondUnits = 0x10000;

utf8proc_int32_t UpperCase(utf8proc_int32_t code) {
  constexpr utf8proc_int32_t kAscii = 0x80;
  constexpr utf8proc_int32_t kCapitalSharpS = 0x1E9E;  // not the simple upper case of "ß"
  // The system folds unit by unit: what takes two units is left alone.
  if (code >= kBeyondUnits) return code;
  const utf8proc_int32_t upper = utf8proc_toupper(code);
  const bool leaves =
      (upper < kAscii && code >= kAscii) || upper >= kBeyondUnits || upper == kCapitalSharpS;
  return leaves ? code : upper;
}

}  // namespace

std::string FoldName(std::string_view name) {
  if (IsAscii(name)) return ToUpper(name);
  std::string folded;
  folded.reserve(name.size());
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(name.data());
  for (size_t i = 0; i < name.size();) {
    utf8proc_int32_t code = 0;
    const utf8proc_ssize_t length =
        utf8proc_iterate(bytes + i, static_cast<utf8proc_ssize_t>(name.size() - i), &code);
    if (length <= 0) {
      folded += name[i++];
      continue;
    }
    std::array<utf8proc_uint8_t, 4> upper{};
    const utf8proc_ssize_t size = utf8proc_encode_char(UpperCase(code), upper.data());
    folded.append(reinterpret_cast<const char*>(upper.data()), static_cast<size_t>(size));
    i += static_cast<size_t>(length);
  }
  return folded;
}

}  // namespace quarnel
