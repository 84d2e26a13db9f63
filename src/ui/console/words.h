#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/clock.h"

namespace quarnel {

// The words of one command line, taken one after the other. Words are separated by blanks and tabs;
// one in double quotes may hold anything, with \" and \\ for those two characters (any other
// backslash stands for itself). A # at the start of a word begins a comment.
class Words {
 public:
  // Raises CommandError for a quote that does not end, or does not end its word.
  explicit Words(std::string_view line);

  bool More() const { return next_ < words_.size(); }
  // The next word; UsageError when there is none.
  const std::string& Next();
  // The next word without taking it; nothing when there is none.
  const std::string* Peek() const { return More() ? &words_[next_].text : nullptr; }
  // All that is left as one command line: a single word itself, several as they are written.
  std::string Rest();
  // UsageError when words are left over.
  void End() const;

 private:
  struct Word {
    std::string text;
    size_t begin = 0;
  };
  std::string line_;
  std::vector<Word> words_;
  size_t next_ = 0;
};

// A decimal number of at most nine digits; nothing for any other text.
std::optional<size_t> ParseCount(std::string_view text);

// "500ms", "10s", "2m", "2h", up to a year; CommandError for any other text.
Milliseconds ParseDuration(std::string_view text);

// "2024-03-05T14:30:00"; CommandError for any other text and for days that no calendar has.
DateTime ParseMoment(std::string_view text);

// 0, 1, true or false in any letter case; CommandError for any other text.
bool ParseFlag(std::string_view text);

}  // namespace quarnel
