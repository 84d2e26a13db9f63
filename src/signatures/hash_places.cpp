#include "signatures/hash_places.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <random>
#include <utility>

#include "signatures/md5.h"

namespace quarnel {
namespace {

constexpr size_t kWord = 8;
constexpr uint64_t kEach = 0x0101010101010101U;
constexpr uint64_t kTopBits = kEach * 0x80;

// Eight characters, the first one in the lowest byte.
uint64_t WordAt(const char* text) {
  uint64_t word;
  std::memcpy(&word, text, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

// What tells the characters of a row from others. `Mark` sets the top bits of the bytes of a word
// that belong to the row, and no other bits.
struct HexDigits {
  static bool Fits(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  }
  static uint64_t Mark(uint64_t word) {
    // Without the top bits, sums stay within their bytes.
    const uint64_t low = word & ~kTopBits;
    const uint64_t folded = low | kEach * 0x20;
    const auto atLeast = [](uint64_t bytes, char c) {
      return bytes + kEach * (0x80 - static_cast<uint64_t>(c));
    };
    const uint64_t digits = atLeast(low, '0') & ~atLeast(low, '9' + 1);
    const uint64_t letters = atLeast(folded, 'a') & ~atLeast(folded, 'f' + 1);
    return (digits | letters) & ~word & kTopBits;
  }
};

struct Blanks {
  static bool Fits(char c) { return c == ' '; }
  static uint64_t Mark(uint64_t word) {
    const uint64_t other = word ^ kEach * ' ';
    return ~(((other & ~kTopBits) + ~kTopBits) | other) & kTopBits;
  }
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

// Both ends of the row of like characters around a position, not beyond `begin` and `end`. Words
// are looked at first: most rows are as long as four of them.
template <typename Kind>
std::pair<size_t, size_t> RowAround(const char* text, size_t position, size_t begin, size_t end) {
  size_t first = position + 1;
  while (first - begin >= kWord) {
    const uint64_t others = Kind::Mark(WordAt(text + first - kWord)) ^ kTopBits;
    if (others != 0) {
      first -= static_cast<size_t>(std::countl_zero(others)) / 8;
      break;
    }
    first -= kWord;
  }
  while (first > begin && Kind::Fits(text[first - 1])) --first;
  size_t last = position + 1;
  while (end - last >= kWord) {
    const uint64_t others = Kind::Mark(WordAt(text + last)) ^ kTopBits;
    if (others != 0) return {first, last + static_cast<size_t>(std::countr_zero(others)) / 8};
    last += kWord;
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
  uint64_t digits = kTopBits;
  for (size_t i = 0; i < kHashDigits; i += kWord)
    digits &= HexDigits::Mark(WordAt(text.data() + i));
  return digits == kTopBits;
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
