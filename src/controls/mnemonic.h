#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

// A caption as a user reads it, and where in it stands the letter that reaches its control by
// keyboard. An "&" before a letter or digit marks it, "&&" is one "&", and any other "&" is itself.
struct CaptionText {
  static constexpr size_t kNone = std::string::npos;
  std::string text;
  size_t mnemonic = kNone;  // position in the text, from 0
};

CaptionText ReadCaption(std::string_view caption);

// The captions that are on the screen together, each with a letter of its own where one is left. A
// caption keeps the letter that it marks unless one before it marks the same; then those without
// choose, first among the beginnings of their words.
std::vector<CaptionText> ShareMnemonics(const std::vector<std::string>& captions);

}  // namespace quarnel
