#include "signatures/hash_places.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <utility>

#include "signatures/md5.h"

namespace quarnel {
namespace {

constexpr std::array<bool, 256> kIsDigit = [] {
  std::array<bool, 256> isDigit{};
  for (const char c : std::string_view("0123456789abcdefABCDEF")) {
    isDigit[static_cast<unsigned char>(c)] = true;
  }
  return isDigit;
}();

bool IsDigit(char c) { return kIsDigit[static_cast<unsigned char>(c)]; }
bool IsBlank(char c) { return c == ' '; }

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
template <typename Fits>
std::pair<size_t, size_t> RowAround(const char* text, size_t position, size_t begin, size_t end,
                                    Fits fits) {
  size_t first = position;
  while (first > begin && fits(text[first - 1])) --first;
  size_t last = position + 1;
  while (last < end && fits(text[last])) ++last;
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

bool SameHash(const char* left, const char* right) {
  for (size_t i = 0; i < kHashDigits; i += 8) {
    if (Folded(left + i) != Folded(right + i)) return false;
  }
  return true;
}

bool IsHash(std::string_view text) {
  return text.size() == kHashDigits && std::all_of(text.begin(), text.end(), IsDigit);
}

// A row of 32 covers one of the positions that are looked at, wherever it begins.
void HashPlaces::Collect(const char* text, size_t begin, size_t end) {
  size_t done = begin;  // no row that was not seen begins before
  for (size_t position = begin + kHashDigits - 1; position < end;) {
    if (IsDigit(text[position])) {
      const auto [first, last] = RowAround(text, position, done, end, IsDigit);
      if (last - first == kHashDigits) {
        hashes.push_back({static_cast<uint32_t>(first), HashValue(text + first)});
      } else if (last - first > kHashDigits) {
        longRows.push_back({first, last - first});
      }
      done = last;
    } else if (IsBlank(text[position]) && !blanks) {
      const auto [first, last] = RowAround(text, position, done, end, IsBlank);
      if (last - first >= kNoHash.size()) blanks = first;
    }
    position = std::max(position + kHashDigits, done + kHashDigits - 1);
  }
}

}  // namespace quarnel
