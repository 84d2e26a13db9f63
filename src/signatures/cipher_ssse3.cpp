#if defined(__x86_64__) || defined(__i386__)
#include <tmmintrin.h>

#include "signatures/cipher_blocks.h"

namespace quarnel {
namespace {

struct Bytes16 {
  static constexpr size_t kSize = 16;

  static __m128i Load(const char* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  }
  static void Decrypt(const char* from, const char* key, char* to) {
    const __m128i mirror = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm_shuffle_epi8(_mm_sub_epi8(Load(from), Load(key)), mirror));
  }
  static uint64_t Find64(const char* from, char c) {
    const __m128i wanted = _mm_set1_epi8(c);
    uint64_t found = 0;
    for (size_t i = 0; i < 64; i += 16) {
      const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(Load(from + i), wanted));
      found |= static_cast<uint64_t>(mask) << i;
    }
    return found;
  }
};

}  // namespace

void DecryptSsse3(const char* cipher, size_t size, char* plain) {
  DecryptBlocks<Bytes16>(cipher, size, plain);
}

size_t DecryptLinesSsse3(const char* bytes, size_t size, char* text) {
  return DecryptLineBlocks<Bytes16>(bytes, size, text);
}

}  // namespace quarnel
#endif
