#pragma once

#include "signatures/cipher_kernels.h"

// The deciphering loops for vectors of any width. All is local to the file that includes it.
//
// `V` is a vector of V::kSize bytes: V::Decrypt(from, key, to) subtracts the key from the bytes at
// `from` and stores them mirrored at `to`; V::Find64(from, c) has a bit set for each of the 64
// bytes at `from` that is `c`.
namespace quarnel {
// NOLINTBEGIN(cert-dcl59-cpp, misc-definitions-in-headers): each file needs its own copy.
namespace {

// One text of at least V::kSize bytes.
template <typename V>
inline void DecryptBlocks(const char* cipher, size_t size, char* plain) {
  for (size_t position = 0; position + V::kSize <= size; position += V::kSize) {
    V::Decrypt(cipher + position, kKeyStream, plain + (size - V::kSize - position));
  }
  // The rest goes as a whole block that overlaps the one before.
  const size_t last = size - V::kSize;
  if (size % V::kSize != 0) V::Decrypt(cipher + last, kKeyStream + last % 8, plain);
}

// One line somewhere in the middle of others: from its end to its begin, in whole blocks. What the
// last block takes too much from the line before lands behind the line, where the next one will
// stand.
template <typename V>
inline void DecryptInside(const char* cipher, size_t size, char* plain) {
  const char* key = kKeyStream + size % 8;
  const char* from = cipher + size;
  for (size_t done = 0; done < size; done += V::kSize) {
    from -= V::kSize;
    V::Decrypt(from, key, plain + done);
  }
}

// The lines at the front of `bytes`, as DecryptLines has it. The last ones are left to the caller.
template <typename V>
inline size_t DecryptLineBlocks(const char* bytes, size_t size, char* text) {
  size_t begin = 0;  // of the line
  if (size == 0 || bytes[0] == '\n') return 0;
  for (size_t block = 0; block + 64 + V::kSize <= size; block += 64) {
    uint64_t returns = V::Find64(bytes + block, '\r');
    // A CR without its LF, or an LF without its CR: such lines are rare, and the caller's.
    if (returns != V::Find64(bytes + block + 1, '\n')) break;
    for (; returns != 0; returns &= returns - 1) {
      const size_t end = block + static_cast<size_t>(__builtin_ctzll(returns));
      const size_t length = end - begin;
      if (length > kLongestCipherLine) return begin;
      if (begin >= V::kSize) {
        DecryptInside<V>(bytes + begin, length, text + begin);
      } else {
        DecryptPortable(bytes + begin, length, text + begin);
      }
      text[end] = '\r';
      text[end + 1] = '\n';
      begin = end + 2;
    }
  }
  return begin;
}

}  // namespace
// NOLINTEND(cert-dcl59-cpp, misc-definitions-in-headers)
}  // namespace quarnel
