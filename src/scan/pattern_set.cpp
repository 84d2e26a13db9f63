#include "scan/pattern_set.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "core/like.h"

namespace quarnel {
namespace {

// Calls `use` with each run of characters of a pattern that stand for themselves.
template <typename Use>
void ForEachLiteralPiece(std::string_view pattern, Use use) {
  size_t begin = 0;
  for (size_t i = 0; i <= pattern.size(); ++i) {
    const bool ends = i == pattern.size() || pattern[i] == '*' || pattern[i] == '?' ||
                      pattern[i] == '#' || pattern[i] == '[';
    if (!ends) continue;
    if (i > begin) use(pattern.substr(begin, i - begin));
    if (i < pattern.size() && pattern[i] == '[') i = std::min(pattern.find(']', i), pattern.size());
    begin = i + 1;
  }
}

bool IsValid(std::string_view pattern) {
  return IgnoringErrors([&] { (void)Like("", pattern); });
}

}  // namespace

PatternSet::Gram PatternSet::GramOf(std::string_view text) {
  Gram gram = text.size();
  for (const char c : text) gram = gram << 8 | static_cast<unsigned char>(c);
  return gram;
}

template <typename Use>
void PatternSet::ForEachGram(std::string_view pattern, Use use) {
  ForEachLiteralPiece(pattern, [&](std::string_view piece) {
    const size_t length = std::min(piece.size(), kLongestGram);
    for (size_t at = 0; at + length <= piece.size(); ++at) use(GramOf(piece.substr(at, length)));
  });
}

PatternSet::PatternSet(std::vector<std::string> patterns) : patterns_(std::move(patterns)) {
  // Pieces may share a counter: which one is the rarest matters for speed alone.
  std::vector<uint32_t> frequency(size_t{1} << 16);
  const auto counter = [&](Gram gram) -> uint32_t& {
    return frequency[static_cast<size_t>(gram * 0x9E3779B97F4A7C15U >> 48)];
  };
  for (size_t i = 0; i < patterns_.size(); ++i) {
    if (!IsValid(patterns_[i])) {
      firstInvalid_ = i;
      break;
    }
    ForEachGram(patterns_[i], [&](Gram gram) { ++counter(gram); });
  }
  // What stands behind an invalid pattern is never reached.
  const size_t reached = std::min(patterns_.size(), firstInvalid_);
  byGram_.reserve(reached);
  for (size_t i = 0; i < reached; ++i) {
    std::optional<Gram> rarest;
    ForEachGram(patterns_[i], [&](Gram gram) {
      if (!rarest || counter(gram) < counter(*rarest)) rarest = gram;
    });
    (rarest ? byGram_[*rarest] : withoutLiteral_).push_back(static_cast<uint32_t>(i));
  }
}

std::optional<size_t> PatternSet::FirstMatch(std::string_view text) const {
  std::vector<uint32_t> candidates = withoutLiteral_;
  for (size_t at = 0; at < text.size(); ++at) {
    for (size_t length = 1; length <= std::min(kLongestGram, text.size() - at); ++length) {
      const auto found = byGram_.find(GramOf(text.substr(at, length)));
      if (found == byGram_.end()) continue;
      candidates.insert(candidates.end(), found->second.begin(), found->second.end());
    }
    // A long text of few different pieces names the same patterns over and over.
    if (candidates.size() > patterns_.size()) {
      std::sort(candidates.begin(), candidates.end());
      candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    }
  }
  std::sort(candidates.begin(), candidates.end());
  candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
  for (const uint32_t candidate : candidates) {
    if (Like(text, patterns_[candidate])) return candidate;
  }
  if (firstInvalid_ != kNone) {
    throw RuntimeError(ErrorNumber::kInvalidPattern, patterns_[firstInvalid_].substr(0, 60));
  }
  return std::nullopt;
}

}  // namespace quarnel
