#include "signatures/hash_places.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <random>
#include <utility>

#include "signatures/md5.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quarnel {
namespace {

// So many characters are told apart at a time.
constexpr size_t kPiece = 16;
constexpr unsigned kWholePiece = 0xFFFF;

// What tells the characters of a row from others. `Mark` has a bit for each character of a piece,
// the lowest one for the first, which is set when it belongs to the row.
template <typename Kind>
struct Row {
  static unsigned Mark(const char* text) {
    unsigned mark = 0;
    for (size_t i = 0; i < kPiece; ++i) mark |= unsigned{Kind::Fits(text[i])} << i;
    return mark;
  }
};

#if defined(__SSE2__)
__m128i PieceAt(const char* text) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}
unsigned MaskOf(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
// Which bytes lie between two characters, both included.
__m128i Between(__m128i bytes, char first, char last) {
  const __m128i distance = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
  const __m128i longest = _mm_set1_epi8(static_cast<char>(last - first));
  return _mm_cmpeq_epi8(_mm_min_epu8(distance, longest), distance);
}
#endif

struct HexDigits : Row<HexDigits> {
  static bool Fits(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  }
#if defined(__SSE2__)
  static unsigned Mark(const char* text) {
    const __m128i bytes = PieceAt(text);
    const __m128i folded = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
    return MaskOf(_mm_or_si128(Between(bytes, '0', '9'), Between(folded, 'a', 'f')));
  }
#endif
};

struct Blanks : Row<Blanks> {
  static bool Fits(char c) { return c == ' '; }
};

// Eight digits with letter case folded: of the digits' codes only those of capitals lack this bit.
uint64_t Folded(const char* digits) {
  uint64_t word;
  std::memcpy(&word, digits, sizeof word);
  return word | 0x2020202020202020U;
}

const std::array<uint64_t, 4> kFactors = [] {
  std::random_device random;
  std::array<uint64_t, 4> factors{};
  for (uint64_t& factor : factors) factor = (uint64_t{random()} << 32 | random()) | 1;
  return factors;
}();

// Both ends of the row of like characters around a position, not beyond `begin` and `end`.
template <typename Kind>
std::pair<size_t, size_t> RowAround(const char* text, size_t position, size_t begin, size_t end) {
  constexpr size_t kLowBits = 8 * sizeof(unsigned) - kPiece;
  size_t first = position + 1;
  while (first - begin >= kPiece) {
    const unsigned others = Kind::Mark(text + first - kPiece) ^ kWholePiece;
    if (others != 0) {
      first -= static_cast<size_t>(std::countl_zero(others << kLowBits));
      break;
    }
    first -= kPiece;
  }
  while (first > begin && Kind::Fits(text[first - 1])) --first;
  size_t last = position + 1;
  while (end - last >= kPiece) {
    const unsigned others = Kind::Mark(text + last) ^ kWholePiece;
    if (others != 0) return {first, last + static_cast<size_t>(std::countr_zero(others))};
    last += kPiece;
  }
  while (last < end && Kind::Fits(text[last])) ++last;
  return {first, last};
}

}  // namespace

uint32_t HashValue(const char* digits) {
  uint64_t value = 0;
  for (size_t i = 0; i < kFactors.size(); ++i) value += Folded(digits + 8 * i) * kFactors[i];
  // The low bits of a sum of products know only the low bits of the words.
  value ^= value >> 32;
  value *= 0x9E3779B97F4A7C15U;
  return static_cast<uint32_t>(value >> 32);
}

size_t TableOf(uint32_t value, size_t tables) {
  return static_cast<size_t>(uint64_t{value} * tables >> 32);
}

bool SameHash(const char* left, const char* right) {
  for (size_t i = 0; i < kHashDigits; i += 8) {
    if (Folded(left + i) != Folded(right + i)) return false;
  }
  return true;
}

bool IsHash(std::string_view text) {
  if (text.size() != kHashDigits) return false;
  const char* const digits = text.data();
  return (HexDigits::Mark(digits) & HexDigits::Mark(digits + kPiece)) == kWholePiece;
}

// A row of 32 covers one of the positions that are looked at, wherever it begins.
void HashPlaces::Collect(const char* text, size_t begin, size_t end) {
  size_t done = begin;  // no row that was not seen begins before
  for (size_t position = begin + kHashDigits - 1; position < end;) {
    if (HexDigits::Fits(text[position])) {
      const auto [first, last] = RowAround<HexDigits>(text, position, done, end);
      if (last - first == kHashDigits) {
        const uint32_t value = HashValue(text + first);
        hashes[TableOf(value, hashes.size())].push_back({static_cast<uint32_t>(first), value});
      } else if (last - first > kHashDigits) {
        longRows.push_back({first, last - first});
      }
      done = last;
    } else if (Blanks::Fits(text[position]) && !blanks) {
      const auto [first, last] = RowAround<Blanks>(text, position, done, end);
      if (last - first >= kNoHash.size()) blanks = first;
    }
    position = std::max(position + kHashDigits, done + kHashDigits - 1);
  }
}

}  // namespace quarnel
