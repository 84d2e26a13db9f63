#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "platform/files.h"

// MD5 (RFC 1321), one message after the other. md5_batch.h hashes many side by side.
namespace quarnel {

using Md5Digest = std::array<uint8_t, 16>;

// The digest of a message that comes in pieces.
class Md5 {
 public:
  void Update(std::string_view bytes);
  // The digest of all that came; nothing may follow.
  Md5Digest Finish();

 private:
  std::array<uint32_t, 4> state_ = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
  uint64_t size_ = 0;  // bytes so far
  std::array<char, 64> block_{};
};

Md5Digest Md5Of(std::string_view message);

// The last bytes of a message of this size: they make it end at a whole block. Returns their
// number, which is at most 72.
size_t PadMd5(uint64_t messageSize, char* padding);

// The digest that the four words of a finished state stand for.
Md5Digest Md5DigestOf(const std::array<uint32_t, 4>& state);

// 32 hexadecimal digits in upper case.
std::string HexText(const Md5Digest& digest);

// What stands in the place of the hash of a file that cannot be read: 32 blanks.
inline constexpr std::string_view kNoHash = "                                ";

// The MD5 of a file as 32 hexadecimal digits; kNoHash when it cannot be read. Raises nothing.
std::string HashFile(Files& files, std::string_view path);

// The same, asking `stopped` after each piece of some 256 KiB; kNoHash when it says yes. A file
// that grows meanwhile is hashed as far as it went at first, and `grew` is set.
std::string HashFile(Files& files, std::string_view path, const std::function<bool()>& stopped,
                     bool* grew = nullptr);

}  // namespace quarnel
