#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// Two hexadecimal digits in upper case for each byte, nothing between them.
std::string HexText(std::string_view bytes);

// The bytes that such a text stands for, in either letter case; nothing for any other text.
std::optional<std::string> BytesFromHex(std::string_view text);

}  // namespace quarnel
