#if defined(__x86_64__)
#include <immintrin.h>

#include "signatures/md5_lanes.h"

namespace quarnel {
namespace {

struct Words8 {
  using Word = __m256i;
  static constexpr size_t kLanes = 8;

  static Word Load(const uint32_t* from) {
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(from));
  }
  static void Store(uint32_t* to, Word word) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(to), word);
  }
  static Word Set(uint32_t value) { return _mm256_set1_epi32(static_cast<int>(value)); }
  static Word Add(Word left, Word right) { return _mm256_add_epi32(left, right); }
  template <int kCount>
  static Word RotateLeft(Word word) {
    return _mm256_or_si256(_mm256_slli_epi32(word, kCount), _mm256_srli_epi32(word, 32 - kCount));
  }
  static Word AddF(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm256_xor_si256(_mm256_and_si256(_mm256_xor_si256(c, d), b), d));
  }
  static Word AddG(Word sum, Word b, Word c, Word d) {
    return Add(Add(sum, _mm256_andnot_si256(d, c)), _mm256_and_si256(b, d));
  }
  static Word AddH(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm256_xor_si256(b, _mm256_xor_si256(c, d)));
  }
  static Word AddI(Word sum, Word b, Word c, Word d) {
    const Word notD = _mm256_xor_si256(d, _mm256_set1_epi32(-1));
    return Add(sum, _mm256_xor_si256(c, _mm256_or_si256(b, notD)));
  }

  static void LoadBlock(const char* const* lanes, size_t offset, Word (&words)[16]) {
    for (size_t half = 0; half < 2; ++half) {
      // Rows of lanes 0 to 3 in the low halves of the vectors and 4 to 7 in the high ones, so that
      // what remains is the exchange of four rows in each half.
      const auto row = [&](size_t lane, size_t quarter) {
        const char* low = lanes[lane] + offset + 32 * half + 16 * quarter;
        const char* high = lanes[lane + 4] + offset + 32 * half + 16 * quarter;
        return _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
      };
      for (size_t quarter = 0; quarter < 2; ++quarter) {
        const Word row0 = row(0, quarter), row1 = row(1, quarter);
        const Word row2 = row(2, quarter), row3 = row(3, quarter);
        const Word low01 = _mm256_unpacklo_epi32(row0, row1);
        const Word high01 = _mm256_unpackhi_epi32(row0, row1);
        const Word low23 = _mm256_unpacklo_epi32(row2, row3);
        const Word high23 = _mm256_unpackhi_epi32(row2, row3);
        Word* to = words + 8 * half + 4 * quarter;
        to[0] = _mm256_unpacklo_epi64(low01, low23);
        to[1] = _mm256_unpackhi_epi64(low01, low23);
        to[2] = _mm256_unpacklo_epi64(high01, high23);
        to[3] = _mm256_unpackhi_epi64(high01, high23);
      }
    }
  }
};

}  // namespace

void Md5LanesAvx2(uint32_t* state, const char* const* blocks, size_t count, size_t lanes) {
  Md5SomeLanes<Words8, kMd5LanesAvx2 / Words8::kLanes>(state, blocks, count, lanes);
}

}  // namespace quarnel
#endif
