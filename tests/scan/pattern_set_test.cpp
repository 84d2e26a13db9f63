#include "scan/pattern_set.h"

#include <gtest/gtest.h>

#include <random>

#include "base/runtime_error.h"
#include "core/like.h"

namespace quarnel {
namespace {

// The plain loop: -1 for no match, -2 where an invalid pattern is met first.
long PlainSearch(const std::vector<std::string>& patterns, std::string_view text) {
  for (size_t i = 0; i < patterns.size(); ++i) {
    bool fits = false;
    if (!IgnoringErrors([&] { fits = Like(text, patterns[i]); })) return -2;
    if (fits) return static_cast<long>(i);
  }
  return -1;
}

long SetSearch(const PatternSet& set, std::string_view text) {
  long result = -2;
  IgnoringErrors([&] {
    const auto match = set.FirstMatch(text);
    result = match ? static_cast<long>(*match) : -1;
  });
  return result;
}

TEST(PatternSetTest, AnswersAsThePlainLoopDoes) {
  std::mt19937 random(7);
  const std::string_view alphabet = "abc.*?#1[]!-";
  const auto make = [&](size_t longest, size_t letters) {
    std::string text;
    for (size_t n = random() % (longest + 1); n > 0; --n) text += alphabet[random() % letters];
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> patterns(12);
    // Most sets stay free of brackets, which are seldom valid when drawn by chance.
    const size_t letters = round % 4 == 0 ? alphabet.size() : 8;
    for (std::string& pattern : patterns) pattern = make(7, letters);
    const PatternSet set(patterns);
    for (int i = 0; i < 40; ++i) {
      const std::string text = make(9, 4);
      ASSERT_EQ(SetSearch(set, text), PlainSearch(patterns, text)) << text << ", round " << round;
    }
  }
}

TEST(PatternSetTest, HostileTextStaysCheap) {
  std::vector<std::string> patterns(2000, "*a*a*a*a*b");
  patterns.emplace_back("*[xyz]");
  const PatternSet set(patterns);
  // Under the time limit of the test only when no pattern is asked that cannot fit.
  EXPECT_EQ(SetSearch(set, std::string(200000, 'a')), -1);
}

}  // namespace
}  // namespace quarnel
