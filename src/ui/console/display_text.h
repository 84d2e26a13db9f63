#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/unicode.h"

// How text looks on a terminal. File names and signatures come from strangers, so nothing of them
// may reach a terminal that would move its cursor or turn its writing round.
namespace quarnel {

// Printable, and cut to a length that fits into a message: what an error line quotes.
std::string Quoted(std::string_view text);

// The columns that a printable text takes: 2 for a wide character, 0 for a combining one.
size_t DisplayWidth(std::string_view text);

// The longest front part that takes at most `columns`.
std::string FitToWidth(std::string_view text, size_t columns);

}  // namespace quarnel
