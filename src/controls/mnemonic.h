#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quarnel {

// A caption as a user reads it, and where in it stands the letter that reaches its control by
// keyboard. An "&" before a letter or digit marks it, "&&" is one "&", and any other "&" is itself.
struct CaptionText {
  static constexpr size_t kNone = std::string::npos;
  std::string text;
  size_t mnemonic = kNone;  // position in the text, from 0
};

CaptionText ReadCaption(std::string_view caption);

}  // namespace quarnel
