#include "controls/mnemonic.h"

#include <bitset>

namespace quarnel {
namespace {

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsLetterOrDigit(char c) { return (c >= '0' && c <= '9') || IsLetter(c); }

// The letters and digits that are given away; "a" and "A" are one.
class TakenKeys {
 public:
  // False when somebody else has it.
  bool Take(char c) {
    const auto key = static_cast<unsigned char>(IsLetter(c) ? c | 0x20 : c);
    if (taken_[key]) return false;
    taken_.set(key);
    return true;
  }

 private:
  std::bitset<256> taken_;
};

// The position of the letter that the text takes; CaptionText::kNone when all of its are gone.
size_t Choose(std::string_view text, TakenKeys& keys) {
  for (const bool beginnings : {true, false}) {
    for (size_t i = 0; i < text.size(); ++i) {
      if (!IsLetter(text[i]) || (beginnings && i > 0 && IsLetter(text[i - 1]))) continue;
      if (keys.Take(text[i])) return i;
    }
  }
  return CaptionText::kNone;
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

std::vector<CaptionText> ShareMnemonics(const std::vector<std::string>& captions) {
  TakenKeys keys;
  std::vector<CaptionText> shared;
  shared.reserve(captions.size());
  for (const std::string& caption : captions) {
    CaptionText& read = shared.emplace_back(ReadCaption(caption));
    const bool marked = read.mnemonic != CaptionText::kNone;
    if (marked && !keys.Take(read.text[read.mnemonic])) read.mnemonic = CaptionText::kNone;
  }
  for (CaptionText& caption : shared) {
    if (caption.mnemonic == CaptionText::kNone) caption.mnemonic = Choose(caption.text, keys);
  }
  return shared;
}

}  // namespace quarnel
