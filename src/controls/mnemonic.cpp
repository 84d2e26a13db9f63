#include "controls/mnemonic.h"

namespace quarnel {
namespace {

bool IsLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

CaptionText ReadCaption(std::string_view caption) {
  CaptionText result;
  for (size_t i = 0; i < caption.size(); ++i) {
    const char next = i + 1 < caption.size() ? caption[i + 1] : ' ';
    if (caption[i] == '&' && IsLetterOrDigit(next) && result.mnemonic == CaptionText::kNone) {
      result.mnemonic = result.text.size();
      continue;
    }
    if (caption[i] == '&' && next == '&') ++i;
    result.text += caption[i];
  }
  return result;
}

}  // namespace quarnel
