#include "signatures/md5_kernels.h"
#include "signatures/md5_steps.h"

namespace quarnel {
namespace {

// One message by itself.
struct Single {
  using Word = uint32_t;

  static Word Set(uint32_t value) { return value; }
  static Word Add(Word left, Word right) { return left + right; }
  template <int kCount>
  static Word RotateLeft(Word word) {
    return (word << kCount) | (word >> (32 - kCount));
  }
  static Word AddF(Word sum, Word b, Word c, Word d) { return sum + (((c ^ d) & b) ^ d); }
  // The two halves have no bit in common, so one can be added before `b` is known.
  static Word AddG(Word sum, Word b, Word c, Word d) { return sum + (c & ~d) + (b & d); }
  static Word AddH(Word sum, Word b, Word c, Word d) { return sum + (b ^ (c ^ d)); }
  static Word AddI(Word sum, Word b, Word c, Word d) { return sum + (c ^ (b | ~d)); }
};

uint32_t Load32(const char* bytes) {
  const auto byte = [bytes](int i) { return uint32_t{static_cast<unsigned char>(bytes[i])}; };
  return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
}

}  // namespace

void Md5BlocksPortable(uint32_t* state, const char* blocks, size_t count) {
  uint32_t states[1][4] = {{state[0], state[1], state[2], state[3]}};
  for (; count > 0; --count, blocks += 64) {
    uint32_t words[1][16];
    for (size_t i = 0; i < 16; ++i) words[0][i] = Load32(blocks + 4 * i);
    Md5Block<Single, 1>(states, words);
  }
  for (size_t i = 0; i < 4; ++i) state[i] = states[0][i];
}

}  // namespace quarnel
