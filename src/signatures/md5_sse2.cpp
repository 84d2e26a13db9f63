#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>

#include "signatures/md5_lanes.h"

namespace quarnel {
namespace {

struct Words4 {
  using Word = __m128i;
  static constexpr size_t kLanes = 4;

  static Word Load(const uint32_t* from) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(from));
  }
  static void Store(uint32_t* to, Word word) {
    _mm_store_si128(reinterpret_cast<__m128i*>(to), word);
  }
  static Word Set(uint32_t value) { return _mm_set1_epi32(static_cast<int>(value)); }
  static Word Add(Word left, Word right) { return _mm_add_epi32(left, right); }
  template <int kCount>
  static Word RotateLeft(Word word) {
    return _mm_or_si128(_mm_slli_epi32(word, kCount), _mm_srli_epi32(word, 32 - kCount));
  }
  static Word AddF(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm_xor_si128(_mm_and_si128(_mm_xor_si128(c, d), b), d));
  }
  static Word AddG(Word sum, Word b, Word c, Word d) {
    return Add(Add(sum, _mm_andnot_si128(d, c)), _mm_and_si128(b, d));
  }
  static Word AddH(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm_xor_si128(b, _mm_xor_si128(c, d)));
  }
  static Word AddI(Word sum, Word b, Word c, Word d) {
    const Word notD = _mm_xor_si128(d, _mm_set1_epi32(-1));
    return Add(sum, _mm_xor_si128(c, _mm_or_si128(b, notD)));
  }

  static void LoadBlock(const char* const* lanes, size_t offset, Word (&words)[16]) {
    const auto row = [&](size_t lane, size_t quarter) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(lanes[lane] + offset + 16 * quarter));
    };
    for (size_t quarter = 0; quarter < 4; ++quarter) {
      const Word row0 = row(0, quarter), row1 = row(1, quarter);
      const Word row2 = row(2, quarter), row3 = row(3, quarter);
      const Word low01 = _mm_unpacklo_epi32(row0, row1), high01 = _mm_unpackhi_epi32(row0, row1);
      const Word low23 = _mm_unpacklo_epi32(row2, row3), high23 = _mm_unpackhi_epi32(row2, row3);
      words[4 * quarter] = _mm_unpacklo_epi64(low01, low23);
      words[4 * quarter + 1] = _mm_unpackhi_epi64(low01, low23);
      words[4 * quarter + 2] = _mm_unpacklo_epi64(high01, high23);
      words[4 * quarter + 3] = _mm_unpackhi_epi64(high01, high23);
    }
  }
};

}  // namespace

void Md5LanesSse2(uint32_t* state, const char* const* blocks, size_t count, size_t lanes) {
  Md5SomeLanes<Words4, kMd5LanesSse2 / Words4::kLanes>(state, blocks, count, lanes);
}

}  // namespace quarnel
#endif
