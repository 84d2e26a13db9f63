#if defined(__x86_64__)
#include <immintrin.h>

#include "signatures/md5_lanes.h"

namespace quarnel {
namespace {

// The functions of the rounds as truth tables of three inputs: bit 4b + 2c + d.
constexpr int kTableF = 0xCA;  // b ? c : d
constexpr int kTableG = 0xE4;  // d ? b : c
constexpr int kTableH = 0x96;  // b ^ c ^ d
constexpr int kTableI = 0x39;  // c ^ (b | ~d)

struct Words16 {
  using Word = __m512i;
  static constexpr size_t kLanes = 16;

  static Word Load(const uint32_t* from) { return _mm512_load_si512(from); }
  static void Store(uint32_t* to, Word word) { _mm512_store_si512(to, word); }
  static Word Set(uint32_t value) { return _mm512_set1_epi32(static_cast<int>(value)); }
  static Word Add(Word left, Word right) { return _mm512_add_epi32(left, right); }
  template <int kCount>
  static Word RotateLeft(Word word) {
    return _mm512_rol_epi32(word, kCount);
  }
  static Word AddF(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm512_ternarylogic_epi32(b, c, d, kTableF));
  }
  static Word AddG(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm512_ternarylogic_epi32(b, c, d, kTableG));
  }
  static Word AddH(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm512_ternarylogic_epi32(b, c, d, kTableH));
  }
  static Word AddI(Word sum, Word b, Word c, Word d) {
    return Add(sum, _mm512_ternarylogic_epi32(b, c, d, kTableI));
  }

  // Four rows of 16 bytes from lanes `lane`, `lane` + 4, + 8 and + 12 in one vector.
  static Word Row(const char* const* lanes, size_t lane, size_t offset) {
    const auto part = [&](size_t i) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(lanes[lane + 4 * i] + offset));
    };
    Word row = _mm512_castsi128_si512(part(0));
    row = _mm512_inserti32x4(row, part(1), 1);
    row = _mm512_inserti32x4(row, part(2), 2);
    return _mm512_inserti32x4(row, part(3), 3);
  }

  static void LoadBlock(const char* const* lanes, size_t offset, Word (&words)[16]) {
    for (size_t quarter = 0; quarter < 4; ++quarter) {
      const size_t at = offset + 16 * quarter;
      const Word row0 = Row(lanes, 0, at), row1 = Row(lanes, 1, at);
      const Word row2 = Row(lanes, 2, at), row3 = Row(lanes, 3, at);
      const Word low01 = _mm512_unpacklo_epi32(row0, row1);
      const Word high01 = _mm512_unpackhi_epi32(row0, row1);
      const Word low23 = _mm512_unpacklo_epi32(row2, row3);
      const Word high23 = _mm512_unpackhi_epi32(row2, row3);
      words[4 * quarter] = _mm512_unpacklo_epi64(low01, low23);
      words[4 * quarter + 1] = _mm512_unpackhi_epi64(low01, low23);
      words[4 * quarter + 2] = _mm512_unpacklo_epi64(high01, high23);
      words[4 * quarter + 3] = _mm512_unpackhi_epi64(high01, high23);
    }
  }
};

}  // namespace

void Md5LanesAvx512(uint32_t* state, const char* const* blocks, size_t count, size_t lanes) {
  Md5SomeLanes<Words16, kMd5LanesAvx512 / Words16::kLanes>(state, blocks, count, lanes);
}

}  // namespace quarnel
#endif
