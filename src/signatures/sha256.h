#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// SHA-256 (FIPS 180-4).
namespace quarnel {

// The 32 bytes of a digest.
using Sha256Digest = std::array<char, 32>;

// The digest of a message that comes in pieces.
class Sha256 {
 public:
  void Update(std::string_view bytes);
  // The digest of all that came; nothing may follow.
  Sha256Digest Finish();

 private:
  std::array<uint32_t, 8> state_ = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                    0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
  uint64_t size_ = 0;  // bytes so far
  std::array<char, 64> block_{};
};

Sha256Digest Sha256Of(std::string_view message);

// 64 hexadecimal digits in upper case.
std::string HexText(const Sha256Digest& digest);

}  // namespace quarnel
