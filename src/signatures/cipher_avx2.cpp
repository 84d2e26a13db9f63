#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include "signatures/cipher_blocks.h"

namespace quarnel {
namespace {

struct Bytes32 {
  static constexpr size_t kSize = 32;

  static __m256i Load(const char* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
  }
  static void Decrypt(const char* from, const char* key, char* to) {
    const __m256i mirror = _mm256_broadcastsi128_si256(
        _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
    const __m256i halves = _mm256_shuffle_epi8(_mm256_sub_epi8(Load(from), Load(key)), mirror);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                        _mm256_permute2x128_si256(halves, halves, 1));
  }
  static uint64_t Find64(const char* from, char c) {
    const __m256i wanted = _mm256_set1_epi8(c);
    const auto mask = [&](const char* half) {
      return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(Load(half), wanted)));
    };
    return mask(from) | static_cast<uint64_t>(mask(from + 32)) << 32;
  }
};

}  // namespace

void DecryptAvx2(const char* cipher, size_t size, char* plain) {
  DecryptBlocks<Bytes32>(cipher, size, plain);
}

size_t DecryptLinesAvx2(const char* bytes, size_t size, char* text) {
  return DecryptLineBlocks<Bytes32>(bytes, size, text);
}

}  // namespace quarnel
#endif
