#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Numbers of little-endian file formats.
namespace quarnel {

// The number of `size` bytes at an offset. 0 when the bytes end before it does, so a reader of
// damaged input has to test nothing but what it reads.
inline uint32_t LittleEndianAt(std::string_view bytes, uint64_t offset, size_t size) {
  if (offset > bytes.size() || bytes.size() - offset < size) return 0;
  uint32_t value = 0;
  for (size_t i = size; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes[static_cast<size_t>(offset) + i]);
  }
  return value;
}
inline uint16_t U16At(std::string_view bytes, uint64_t offset) {
  return static_cast<uint16_t>(LittleEndianAt(bytes, offset, 2));
}
inline uint32_t U32At(std::string_view bytes, uint64_t offset) {
  return LittleEndianAt(bytes, offset, 4);
}

inline void PutU16(std::string& bytes, uint32_t value) {
  bytes += static_cast<char>(value & 0xFF);
  bytes += static_cast<char>(value >> 8 & 0xFF);
}
inline void PutU32(std::string& bytes, uint32_t value) {
  PutU16(bytes, value & 0xFFFF);
  PutU16(bytes, value >> 16);
}
// Writes over what stands at the offset.
inline void SetU16(std::string& bytes, size_t offset, uint32_t value) {
  std::string word;
  PutU16(word, value);
  bytes.replace(offset, word.size(), word);
}
inline void SetU32(std::string& bytes, size_t offset, uint32_t value) {
  std::string word;
  PutU32(word, value);
  bytes.replace(offset, word.size(), word);
}
// UTF-16 code units in order, without a terminator.
inline void PutWide(std::string& bytes, std::u16string_view text) {
  for (const char16_t unit : text) PutU16(bytes, unit);
}

// Code units from an offset up to the first NUL, or to the end of the bytes.
inline std::u16string WideTextAt(std::string_view bytes, uint64_t offset) {
  std::u16string text;
  for (; offset + 2 <= bytes.size(); offset += 2) {
    const uint16_t unit = U16At(bytes, offset);
    if (unit == 0) break;
    text += static_cast<char16_t>(unit);
  }
  return text;
}

}  // namespace quarnel
