#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

// The 64 steps of MD5 (RFC 1321, section 3.4), written once for a single message and for many side
// by side. All is local to the file that includes it, since each file is compiled for other
// processors.
namespace quarnel {
// NOLINTBEGIN(cert-dcl59-cpp, misc-definitions-in-headers): each file needs its own copy.
namespace {

constexpr uint32_t kMd5Sines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};

constexpr int kMd5Shifts[4][4] = {
    {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The word of the block that a step adds.
constexpr size_t Md5WordOf(size_t step) {
  constexpr size_t kFactor[4] = {1, 5, 3, 7};
  constexpr size_t kOffset[4] = {0, 1, 5, 0};
  return (kFactor[step / 16] * step + kOffset[step / 16]) % 16;
}

// One step on `state`, whose four words change their parts from step to step. `V` is the vector of
// one word from each message; it has Set, Add, RotateLeft and the four functions of the rounds.
// Each function takes the sum so far and adds itself to it, so that it can add what is ready early
// first: `b` is the result of the step before, and the chain of these results is what takes time.
template <typename V, size_t kStep>
[[gnu::always_inline]] inline void Md5Step(typename V::Word (&state)[4],
                                           const typename V::Word* words) {
  typename V::Word& a = state[(64 - kStep) % 4];
  const typename V::Word b = state[(65 - kStep) % 4];
  const typename V::Word c = state[(66 - kStep) % 4];
  const typename V::Word d = state[(67 - kStep) % 4];
  typename V::Word sum = V::Add(a, V::Add(words[Md5WordOf(kStep)], V::Set(kMd5Sines[kStep])));
  if constexpr (kStep < 16) {
    sum = V::AddF(sum, b, c, d);
  } else if constexpr (kStep < 32) {
    sum = V::AddG(sum, b, c, d);
  } else if constexpr (kStep < 48) {
    sum = V::AddH(sum, b, c, d);
  } else {
    sum = V::AddI(sum, b, c, d);
  }
  a = V::Add(b, V::template RotateLeft<kMd5Shifts[kStep / 16][kStep % 4]>(sum));
}

// One block through `kGroups` independent states, step by step in turn, so that the processor has
// other work while a chain waits.
template <typename V, size_t kGroups, size_t... kSteps>
[[gnu::always_inline]] inline void Md5Steps(typename V::Word (&states)[kGroups][4],
                                            const typename V::Word (&words)[kGroups][16],
                                            std::index_sequence<kSteps...> /*steps*/) {
  const auto all = [&]<size_t kStep>(std::integral_constant<size_t, kStep>)
      __attribute__((always_inline)) {
    for (size_t group = 0; group < kGroups; ++group) {
      Md5Step<V, kStep>(states[group], words[group]);
    }
  };
  (all(std::integral_constant<size_t, kSteps>{}), ...);
}

template <typename V, size_t kGroups>
[[gnu::always_inline]] inline void Md5Block(typename V::Word (&states)[kGroups][4],
                                            const typename V::Word (&words)[kGroups][16]) {
  typename V::Word work[kGroups][4];
  for (size_t group = 0; group < kGroups; ++group) {
    for (size_t i = 0; i < 4; ++i) work[group][i] = states[group][i];
  }
  Md5Steps<V, kGroups>(work, words, std::make_index_sequence<64>{});
  for (size_t group = 0; group < kGroups; ++group) {
    for (size_t i = 0; i < 4; ++i) states[group][i] = V::Add(states[group][i], work[group][i]);
  }
}

}  // namespace
// NOLINTEND(cert-dcl59-cpp, misc-definitions-in-headers)
}  // namespace quarnel
