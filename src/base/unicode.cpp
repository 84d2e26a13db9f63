#include "base/unicode.h"

#include <cstddef>
#include <cstdint>

#include "base/hex.h"

namespace quarnel {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

// Control characters, line separators, and the marks that turn the direction of writing.
bool MovesTheCursor(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) || unit == 0x200E || unit == 0x200F ||
         (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

std::u16string HexEscape(char16_t unit) {
  return ToUtf16(unit < 0x100 ? "\\x" + HexNumber(unit, 2) : "\\u" + HexNumber(unit, 4));
}

constexpr bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr bool IsEscapedByte(char32_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

struct Decoded {
  char32_t code = 0;
  size_t length = 0;  // 0: the byte is no UTF-8
};

Decoded DecodeAt(std::string_view text, size_t position) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[position + i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return {first, 1};
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || position + length > text.size()) return {};
  char32_t code = first & (0xFFU >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {};
    code = code << 6 | (byte(i) & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  if (overlong || code > 0x10FFFF) return {};
  return {code, length};
}

void AppendUtf8(char32_t code, std::string& text) {
  const auto put = [&](char32_t value) { text += static_cast<char>(value); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6), put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12), put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18), put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
  }
}

std::string Encode(std::u16string_view utf16, bool unescapeBytes) {
  std::string text;
  text.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    const char32_t unit = utf16[i];
    if (IsHighSurrogate(unit) && i + 1 < utf16.size() && IsLowSurrogate(utf16[i + 1])) {
      AppendUtf8(0x10000 + ((unit - 0xD800) << 10) + (utf16[i + 1] - 0xDC00U), text);
      ++i;
    } else if (unescapeBytes && IsEscapedByte(unit)) {
      text += static_cast<char>(unit - 0xDC00);
    } else {
      AppendUtf8(unit, text);
    }
  }
  return text;
}

}  // namespace

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string result;
  result.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) {
    const Decoded decoded = DecodeAt(utf8, i);
    if (decoded.length == 0) {
      result += static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(utf8[i]));
      ++i;
      continue;
    }
    if (decoded.code < 0x10000) {
      result += static_cast<char16_t>(decoded.code);
    } else {
      result += static_cast<char16_t>(0xD800 + ((decoded.code - 0x10000) >> 10));
      result += static_cast<char16_t>(0xDC00 + ((decoded.code - 0x10000) & 0x3FF));
    }
    i += decoded.length;
  }
  return result;
}

std::string ToUtf8(std::u16string_view utf16) {
  // Escaped bytes go back to themselves unless their run would then read as other text.
  std::string text = Encode(utf16, true);
  if (ToUtf16(text) != utf16) text = Encode(utf16, false);
  return text;
}

std::u16string WellFormedUtf16(std::string_view text) {
  std::u16string units = ToUtf16(text);
  for (size_t i = 0; i < units.size(); ++i) {
    if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
      ++i;
    } else if (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i])) {
      units[i] = kReplacement;
    }
  }
  return units;
}

std::string Printable(std::string_view text) {
  std::u16string result;
  for (const char16_t unit : WellFormedUtf16(text)) {
    if (MovesTheCursor(unit)) {
      result += HexEscape(unit);
    } else {
      result += unit;
    }
  }
  return ToUtf8(result);
}

}  // namespace quarnel
