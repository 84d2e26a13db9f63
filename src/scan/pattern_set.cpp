#include "scan/pattern_set.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "core/like.h"

namespace quarnel {
namespace {

// The runs of characters of a pattern that stand for themselves.
std::vector<std::string_view> LiteralPieces(std::string_view pattern) {
  std::vector<std::string_view> pieces;
  size_t begin = 0;
  for (size_t i = 0; i <= pattern.size(); ++i) {
    const bool ends = i == pattern.size() || pattern[i] == '*' || pattern[i] == '?' ||
                      pattern[i] == '#' || pattern[i] == '[';
    if (!ends) continue;
    if (i > begin) pieces.push_back(pattern.substr(begin, i - begin));
    if (i < pattern.size() && pattern[i] == '[') i = std::min(pattern.find(']', i), pattern.size());
    begin = i + 1;
  }
  return pieces;
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

PatternSet::PatternSet(std::vector<std::string> patterns) : patterns_(std::move(patterns)) {
  std::vector<std::vector<Gram>> gramsOf(patterns_.size());
  std::unordered_map<Gram, uint32_t> frequency;
  for (size_t i = 0; i < patterns_.size() && firstInvalid_ == kNone; ++i) {
    if (!IsValid(patterns_[i])) {
      firstInvalid_ = i;
      break;
    }
    for (const std::string_view piece : LiteralPieces(patterns_[i])) {
      const size_t length = std::min(piece.size(), kLongestGram);
      for (size_t at = 0; at + length <= piece.size(); ++at) {
        gramsOf[i].push_back(GramOf(piece.substr(at, length)));
        ++frequency[gramsOf[i].back()];
      }
    }
  }
  // What stands behind an invalid pattern is never reached.
  for (size_t i = 0; i < std::min(patterns_.size(), firstInvalid_); ++i) {
    if (gramsOf[i].empty()) {
      withoutLiteral_.push_back(static_cast<uint32_t>(i));
      continue;
    }
    const Gram rarest =
        *std::min_element(gramsOf[i].begin(), gramsOf[i].end(),
                          [&](Gram a, Gram b) { return frequency.at(a) < frequency.at(b); });
    byGram_[rarest].push_back(static_cast<uint32_t>(i));
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
  if (firstInvalid_ != kNone) throw RuntimeError(ErrorNumber::kInvalidPattern);
  return std::nullopt;
}

}  // namespace quarnel
