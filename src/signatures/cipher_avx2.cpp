#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include "signatures/cipher_kernels.h"

namespace quarnel {
namespace {

// Deciphers the 32 bytes at `position` of a text to their mirrored place.
inline void DecryptBlock(const char* cipher, size_t size, size_t position, char* plain) {
  const __m256i key =
      _mm256_loadu_si256(reinterpret_cast<const __m256i*>(kKeyStream + position % 8));
  const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cipher + position));
  const __m256i mirror = _mm256_broadcastsi128_si256(
      _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  const __m256i halves = _mm256_shuffle_epi8(_mm256_sub_epi8(bytes, key), mirror);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(plain + (size - 32 - position)),
                      _mm256_permute2x128_si256(halves, halves, 1));
}

}  // namespace

void DecryptAvx2(const char* cipher, size_t size, char* plain) {
  for (size_t position = 0; position + 32 <= size; position += 32) {
    DecryptBlock(cipher, size, position, plain);
  }
  // The rest goes as a whole block that overlaps the one before.
  if (size % 32 != 0) DecryptBlock(cipher, size, size - 32, plain);
}

}  // namespace quarnel
#endif
