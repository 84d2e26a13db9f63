#include "ui/display_text.h"

#include <algorithm>
#include <array>

#include "base/unicode.h"

namespace quarnel {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

struct Range {
  char32_t first;
  char32_t last;
};

// The ranges that matter for names of files and threats, from the Unicode properties
// Grapheme_Extend and East_Asian_Width (https://www.unicode.org/reports/tr11/).
constexpr std::array kZeroWidth{
    Range{0x0300, 0x036F}, Range{0x0483, 0x0489}, Range{0x0591, 0x05BD},   Range{0x0610, 0x061A},
    Range{0x064B, 0x065F}, Range{0x0900, 0x0902}, Range{0x0E31, 0x0E31},   Range{0x0E34, 0x0E3A},
    Range{0x0E47, 0x0E4E}, Range{0x1AB0, 0x1AFF}, Range{0x1DC0, 0x1DFF},   Range{0x200B, 0x200D},
    Range{0x20D0, 0x20FF}, Range{0x302A, 0x302D}, Range{0x3099, 0x309A},   Range{0xFE00, 0xFE0F},
    Range{0xFE20, 0xFE2F}, Range{0xFEFF, 0xFEFF}, Range{0x1F3FB, 0x1F3FF}, Range{0xE0100, 0xE01EF},
};
constexpr std::array kWide{
    Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0x33FF},
    Range{0x3400, 0x4DBF},   Range{0x4E00, 0x9FFF},   Range{0xA000, 0xA4CF},
    Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},
    Range{0xFF00, 0xFF60},   Range{0xFFE0, 0xFFE6},   Range{0x1F300, 0x1F64F},
    Range{0x1F680, 0x1F6FF}, Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD},
};

template <size_t kSize>
bool Contains(const std::array<Range, kSize>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](Range range) { return code >= range.first && code <= range.last; });
}

size_t WidthOf(char32_t code) {
  if (code < 0x300) return 1;
  if (Contains(kZeroWidth, code)) return 0;
  return Contains(kWide, code) ? 2 : 1;
}

// Control characters, line separators, and the marks that turn the direction of writing.
bool MovesTheCursor(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) || unit == 0x200E || unit == 0x200F ||
         (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

std::u16string HexEscape(char16_t unit) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::u16string text = unit < 0x100 ? u"\\x" : u"\\u";
  for (int shift = unit < 0x100 ? 4 : 12; shift >= 0; shift -= 4) {
    text += kDigits[static_cast<size_t>(unit >> shift & 0xF)];
  }
  return text;
}

// Calls `visit` with each character's width and the number of its UTF-16 units; ends when it
// returns false.
template <typename Visit>
void ForEachWidth(std::u16string_view text, Visit visit) {
  for (size_t i = 0; i < text.size();) {
    const bool pair = IsHighSurrogate(text[i]) && i + 1 < text.size();
    const char32_t code = pair ? 0x10000 + ((text[i] - 0xD800U) << 10) + (text[i + 1] - 0xDC00U)
                               : static_cast<char32_t>(text[i]);
    const size_t units = pair ? 2 : 1;
    if (!visit(WidthOf(code), units)) return;
    i += units;
  }
}

}  // namespace

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

std::string Quoted(std::string_view text) {
  constexpr size_t kLongest = 100;
  // Cut first: a hostile line may be long. Four bytes are the most that one column can need here.
  const bool cut = text.size() > 4 * kLongest;
  const std::string printable = Printable(text.substr(0, 4 * kLongest));
  std::string fitting = FitToWidth(printable, kLongest);
  if (cut || fitting.size() < printable.size()) fitting += "...";
  return "\"" + fitting + "\"";
}

size_t DisplayWidth(std::string_view text) {
  size_t width = 0;
  ForEachWidth(WellFormedUtf16(text), [&](size_t columns, size_t) {
    width += columns;
    return true;
  });
  return width;
}

std::string FitToWidth(std::string_view text, size_t columns) {
  const std::u16string whole = WellFormedUtf16(text);
  size_t width = 0;
  size_t length = 0;
  ForEachWidth(whole, [&](size_t next, size_t units) {
    if (width + next > columns) return false;
    width += next;
    length += units;
    return true;
  });
  return ToUtf8(std::u16string_view(whole).substr(0, length));
}

}  // namespace quarnel
