#pragma once

#include <cstddef>
#include <string_view>

namespace quarnel {

// The position of the first CR or LF from `from` on; the text's size when there is none. It looks
// at sixteen bytes at a time where the processor's basic set allows it: every line of a signature
// file passes here, and may hold any other byte.
size_t FindLineEnd(std::string_view text, size_t from = 0);

}  // namespace quarnel
