#include "base/hex.h"

namespace quarnel {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

}  // namespace

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string HexNumber(uint32_t number, size_t digits) {
  std::string text;
  for (; number != 0 || text.size() < digits; number >>= 4) text += kDigits[number & 0xF];
  return {text.rbegin(), text.rend()};
}

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
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high << 4 | low);
  }
  return bytes;
}

}  // namespace quarnel
