#if defined(__x86_64__) || defined(__i386__)
#include <tmmintrin.h>

#include "signatures/cipher_kernels.h"

namespace quarnel {
namespace {

// Deciphers the 16 bytes at `position` of a text to their mirrored place.
inline void DecryptBlock(const char* cipher, size_t size, size_t position, char* plain) {
  const __m128i key = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kKeyStream + position % 8));
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cipher + position));
  const __m128i mirror = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(plain + (size - 16 - position)),
                   _mm_shuffle_epi8(_mm_sub_epi8(bytes, key), mirror));
}

}  // namespace

void DecryptSsse3(const char* cipher, size_t size, char* plain) {
  for (size_t position = 0; position + 16 <= size; position += 16) {
    DecryptBlock(cipher, size, position, plain);
  }
  // The rest goes as a whole block that overlaps the one before.
  if (size % 16 != 0) DecryptBlock(cipher, size, size - 16, plain);
}

}  // namespace quarnel
#endif
