#include "signatures/md5.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/hex.h"
#include "base/runtime_error.h"
#include "signatures/md5_kernels.h"
#include "signatures/steady_reader.h"

namespace quarnel {

void Md5::Update(std::string_view bytes) {
  if (bytes.empty()) return;
  size_t held = static_cast<size_t>(size_ % block_.size());
  size_ += bytes.size();
  if (held > 0) {
    const size_t taken = std::min(bytes.size(), block_.size() - held);
    std::memcpy(block_.data() + held, bytes.data(), taken);
    bytes.remove_prefix(taken);
    held += taken;
    if (held < block_.size()) return;
    Md5BlocksPortable(state_.data(), block_.data(), 1);
  }
  const size_t blocks = bytes.size() / block_.size();
  Md5BlocksPortable(state_.data(), bytes.data(), blocks);
  bytes.remove_prefix(blocks * block_.size());
  if (!bytes.empty()) std::memcpy(block_.data(), bytes.data(), bytes.size());
}

Md5Digest Md5::Finish() {
  std::array<char, 72> padding;
  const size_t size = PadMd5(size_, padding.data());
  Update({padding.data(), size});
  return Md5DigestOf(state_);
}

size_t PadMd5(uint64_t messageSize, char* padding) {
  // One bit, zeros up to 8 bytes before the end of a block, and the length in bits.
  const size_t zeros = static_cast<size_t>((64 + 55 - messageSize % 64) % 64);
  padding[0] = static_cast<char>(0x80);
  std::memset(padding + 1, 0, zeros);
  const uint64_t bits = messageSize * 8;
  for (size_t i = 0; i < 8; ++i) padding[1 + zeros + i] = static_cast<char>(bits >> (8 * i));
  return 1 + zeros + 8;
}

Md5Digest Md5DigestOf(const std::array<uint32_t, 4>& state) {
  Md5Digest digest;
  for (size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<uint8_t>(state[i / 4] >> (8 * (i % 4)));
  }
  return digest;
}

Md5Digest Md5Of(std::string_view message) {
  Md5 md5;
  md5.Update(message);
  return md5.Finish();
}

std::string HexText(const Md5Digest& digest) {
  return HexText(std::string_view(reinterpret_cast<const char*>(digest.data()), digest.size()));
}

std::string HashFile(Files& files, std::string_view path) {
  return HashFile(files, path, [] { return false; });
}

std::string HashFile(Files& files, std::string_view path, const std::function<bool()>& stopped,
                     bool* grew) {
  constexpr size_t kPiece = size_t{256} * 1024;
  std::string text(kNoHash);
  IgnoringErrors([&] {
    const auto file = files.Open(path, OpenMode::kRead);
    const auto piece = std::make_unique_for_overwrite<char[]>(kPiece);
    Md5 md5;
    SteadyReader reader;
    while (const size_t count = reader.Read(*file, {piece.get(), kPiece})) {
      md5.Update({piece.get(), count});
      if (stopped()) return;
    }
    if (grew) *grew = reader.Grew();
    text = HexText(md5.Finish());
  });
  return text;
}

}  // namespace quarnel
