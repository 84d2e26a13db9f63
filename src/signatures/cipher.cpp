#include "signatures/cipher.h"

#include <algorithm>
#include <cstring>

#include "signatures/cipher_kernels.h"
#include "signatures/line_end.h"

// The reorder step of the algorithm takes two characters at a time from the front, turns the pair
// and puts it in front of what it has. For every length that is the mirror image of the text.
namespace quarnel {
namespace {

static_assert(kLongestLine == kLongestCipherLine);

uint64_t Load64(const char* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

uint64_t MirrorBytes(uint64_t word) {
  word = ((word >> 8) & 0x00FF00FF00FF00FFU) | ((word & 0x00FF00FF00FF00FFU) << 8);
  word = ((word >> 16) & 0x0000FFFF0000FFFFU) | ((word & 0x0000FFFF0000FFFFU) << 16);
  return (word >> 32) | (word << 32);
}

// Subtracts byte by byte: the top bit of each byte is held back so that no borrow crosses over.
uint64_t SubtractBytes(uint64_t left, uint64_t right) {
  constexpr uint64_t kTop = 0x8080808080808080U;
  return ((left | kTop) - (right & ~kTop)) ^ ((left ^ ~right) & kTop);
}

void DecryptWord(const char* cipher, size_t size, size_t position, char* plain) {
  const uint64_t word =
      MirrorBytes(SubtractBytes(Load64(cipher + position), Load64(kKeyStream + position % 8)));
  std::memcpy(plain + (size - 8 - position), &word, sizeof word);
}

}  // namespace

void DecryptPortable(const char* cipher, size_t size, char* plain) {
  if (size < 8) {
    for (size_t i = 0; i < size; ++i) {
      plain[size - 1 - i] = static_cast<char>(cipher[i] - kKeyStream[i]);
    }
    return;
  }
  for (size_t position = 0; position + 8 <= size; position += 8) {
    DecryptWord(cipher, size, position, plain);
  }
  // The rest goes as a whole word that overlaps the one before.
  if (size % 8 != 0) DecryptWord(cipher, size, size - 8, plain);
}

CipherLevel BestCipherLevel() {
#if defined(__x86_64__) || defined(__i386__)
  static const CipherLevel kBest = __builtin_cpu_supports("avx2")    ? CipherLevel::kAvx2
                                   : __builtin_cpu_supports("ssse3") ? CipherLevel::kSsse3
                                                                     : CipherLevel::kPortable;
  return kBest;
#else
  return CipherLevel::kPortable;
#endif
}

void DecryptTo(std::string_view cipher, char* plain, [[maybe_unused]] CipherLevel level) {
#if defined(__x86_64__) || defined(__i386__)
  level = std::min(level, BestCipherLevel());
  if (level == CipherLevel::kAvx2 && cipher.size() >= 32) {
    return DecryptAvx2(cipher.data(), cipher.size(), plain);
  }
  if (level >= CipherLevel::kSsse3 && cipher.size() >= 16) {
    return DecryptSsse3(cipher.data(), cipher.size(), plain);
  }
#endif
  DecryptPortable(cipher.data(), cipher.size(), plain);
}

size_t DecryptLines(std::string_view bytes, char* text, [[maybe_unused]] CipherLevel level) {
  size_t begin = 0;
#if defined(__x86_64__) || defined(__i386__)
  level = std::min(level, BestCipherLevel());
  if (level == CipherLevel::kAvx2) {
    begin = DecryptLinesAvx2(bytes.data(), bytes.size(), text);
  } else if (level == CipherLevel::kSsse3) {
    begin = DecryptLinesSsse3(bytes.data(), bytes.size(), text);
  }
#endif
  for (;;) {
    const size_t end = FindLineEnd(bytes, begin);
    if (bytes.substr(end, 2) != "\r\n" || end - begin > kLongestLine) return begin;
    DecryptPortable(bytes.data() + begin, end - begin, text + begin);
    text[end] = '\r';
    text[end + 1] = '\n';
    begin = end + 2;
  }
}

void DecryptInto(std::string_view cipher, std::string& plain) {
  plain.resize(cipher.size());
  DecryptTo(cipher, plain.data());
}

std::string Decrypt(std::string_view cipher) {
  std::string plain;
  DecryptInto(cipher, plain);
  return plain;
}

std::string Encrypt(std::string_view plain) {
  std::string cipher(plain);
  if (cipher.size() % 2 != 0) cipher += ' ';
  std::reverse(cipher.begin(), cipher.end());
  for (size_t i = 0; i < cipher.size(); ++i) {
    cipher[i] = static_cast<char>(cipher[i] + kCipherKey[i % kCipherKey.size()]);
  }
  return cipher;
}

}  // namespace quarnel
