#include "base/hex.h"

namespace quarnel {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

int DigitValue(char digit) {
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  const size_t value = kDigits.find(digit);
  return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

std::string HexText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4];
    text += kDigits[value & 0xF];
  }
  return text;
}

std::optional<std::string> BytesFromHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    const int high = DigitValue(text[i]);
    const int low = DigitValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high << 4 | low);
  }
  return bytes;
}

}  // namespace quarnel
