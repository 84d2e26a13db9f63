#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// Where in a text a search for a hash can find something: what the index is made of.
namespace quarnel {

inline constexpr size_t kHashDigits = 32;

// A value of the 32 digits at `digits`, the same in either letter case. It differs from run to run,
// so that nobody can make a file whose hashes all have the same one.
uint32_t HashValue(const char* digits);

// The number of the table, of so many, that a value belongs to. It goes by the high bits, which
// leaves the low ones for the place in the table.
size_t TableOf(uint32_t value, size_t tables);

// Whether the 32 digits at both places are the same, letter case folded.
bool SameHash(const char* left, const char* right);

bool IsHash(std::string_view text);

// The places of one part of a text.
struct HashPlaces {
  struct Place {
    uint32_t position;
    uint32_t value;  // of the hash there
  };
  // A row of more than 32 digits, in which 32 of them begin at more than one place. No line of the
  // usual form has one.
  struct LongRow {
    size_t begin;
    size_t size;
  };

  // Sorts the hashes for so many tables.
  explicit HashPlaces(size_t tables) : hashes(tables) {}

  // Rows of exactly 32 digits, for each table in ascending order.
  std::vector<std::vector<Place>> hashes;
  std::vector<LongRow> longRows;
  std::optional<size_t> blanks;  // the first row of 32 blanks

  // Notes what the whole lines in text[begin, end) hold. Parts are taken in ascending order.
  void Collect(const char* text, size_t begin, size_t end);
};

}  // namespace quarnel
