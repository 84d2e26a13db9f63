#pragma once

#include <string>
#include <string_view>

namespace quarnel {

// UTF-8 to UTF-16 and back. Lone surrogates are kept in their generalised three-byte form (WTF-8,
// https://simonsapin.github.io/wtf-8/), so that every name of the system, also an ill-formed one,
// survives the way there and back. A byte that is no UTF-8 becomes the lone surrogate
// 0xDC00 + byte, which ToUtf8 turns back into that byte.
std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);

// UTF-16 without lone surrogates: U+FFFD stands for each byte that is no UTF-8.
std::u16string WellFormedUtf16(std::string_view text);

// The text as it may reach a terminal or a line of a window: control characters and those that
// change the direction of writing as "\x1B" or "\u202E", and U+FFFD for each byte that is no UTF-8.
std::string Printable(std::string_view text);

}  // namespace quarnel
