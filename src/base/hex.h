#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// The value of a hexadecimal digit in either letter case; -1 for any other character.
int HexDigit(char c);

// A number in upper-case digits, with noughts in front of fewer than `digits`.
std::string HexNumber(uint32_t number, size_t digits = 1);

// Two hexadecimal digits in upper case for each byte, nothing between them.
std::string HexText(std::string_view bytes);

// The bytes that such a text stands for, in either letter case; nothing for any other text.
std::optional<std::string> BytesFromHex(std::string_view text);

}  // namespace quarnel
