#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarnel {

// Many patterns of Like, asked together: the answer is that of asking them one after the other.
// Each pattern is filed under a short piece of its literal text, the rarest that it has; a text
// then asks only the patterns whose piece it holds.
class PatternSet {
 public:
  explicit PatternSet(std::vector<std::string> patterns);

  size_t Count() const { return patterns_.size(); }

  // The first pattern that fits the whole text, from 0; nothing when none does. Raises
  // kInvalidPattern where an invalid pattern comes before one that fits.
  std::optional<size_t> FirstMatch(std::string_view text) const;

 private:
  // Up to four bytes of text and how many they are, as one number.
  using Gram = uint64_t;
  static constexpr size_t kLongestGram = 4;
  static constexpr size_t kNone = std::numeric_limits<size_t>::max();
  static Gram GramOf(std::string_view text);
  // Calls `use` with each piece of the pattern's literal text that any text it fits must hold.
  template <typename Use>
  static void ForEachGram(std::string_view pattern, Use use);

  std::vector<std::string> patterns_;
  std::unordered_map<Gram, std::vector<uint32_t>> byGram_;
  std::vector<uint32_t> withoutLiteral_;  // these are always asked
  size_t firstInvalid_ = kNone;
};

}  // namespace quarnel
