#pragma once

#include <cstdint>

namespace quarnel {

// A colour as 0xRRGGBB. A text in black is shown in the colour that texts have.
enum class Colour : uint32_t {
  kBlack = 0x000000,
  kRed = 0xFF0000,
  kGreen = 0x00C000,
  kDarkGreen = 0x008000,
  kHighlight = 0x316AC5
};

// How a row or a node stands out: its text, and the number of its picture in the set of its list
// (0 is none).
struct Look {
  Colour colour = Colour::kBlack;
  bool bold = false;
  int picture = 0;
  bool operator==(const Look&) const = default;
};

}  // namespace quarnel
