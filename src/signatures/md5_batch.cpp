#include "signatures/md5_batch.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "signatures/md5_kernels.h"

namespace quarnel {
namespace {

constexpr size_t kBlock = 64;
constexpr std::array<uint32_t, 4> kInitialState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

// Small enough that all lanes together stay in the processor's cache.
constexpr size_t kBufferSize = size_t{16} * 1024;
// The buffers of two lanes do not lie a power of two apart: they are read at the same pace, and
// would push each other out of the cache.
constexpr size_t kBufferDistance = kBufferSize + 3 * kBlock;

// With fewer messages than this in work, one after the other is faster.
constexpr size_t kWorthwhile = 4;

using Kernel = void (*)(uint32_t* state, const char* const* blocks, size_t count);

struct Implementation {
  Kernel kernel;
  size_t lanes;
};

void OneLane(uint32_t* state, const char* const* blocks, size_t count) {
  Md5BlocksPortable(state, blocks[0], count);
}

Implementation ImplementationOf(Md5Level level) {
  switch (std::min(level, BestMd5Level())) {
#if defined(__x86_64__)
    case Md5Level::kAvx512:
      return {Md5LanesAvx512, kMd5LanesAvx512};
    case Md5Level::kAvx2:
      return {Md5LanesAvx2, kMd5LanesAvx2};
#endif
#if defined(__SSE2__)
    case Md5Level::kSse2:
      return {Md5LanesSse2, kMd5LanesSse2};
#endif
    default:
      return {OneLane, 1};
  }
}

// The part of a lane that only changes from piece to piece.
struct Lane {
  Md5Message* message = nullptr;
  std::string_view rest;  // of the present piece
  uint64_t size = 0;      // bytes that came so far
  size_t held = 0;        // bytes in `tail` that are no whole block yet
  bool padded = false;    // what is being hashed are the message's last blocks
  std::array<char, 2 * kBlock> tail{};
};

}  // namespace

Md5Level BestMd5Level() {
#if defined(__x86_64__)
  static const Md5Level kBest = __builtin_cpu_supports("avx512f") ? Md5Level::kAvx512
                                : __builtin_cpu_supports("avx2")  ? Md5Level::kAvx2
                                                                  : Md5Level::kSse2;
  return kBest;
#elif defined(__SSE2__)
  return Md5Level::kSse2;
#else
  return Md5Level::kPortable;
#endif
}

class Md5Batch::Engine {
 public:
  explicit Engine(Md5Level level) : implementation_(ImplementationOf(level)) {}

  size_t Lanes() const { return implementation_.lanes; }
  void Run(const std::function<Md5Message*()>& next);

 private:
  bool Fill(size_t lane, const std::function<Md5Message*()>& next);
  bool Begin(size_t lane, const std::function<Md5Message*()>& next);
  bool Supply(size_t lane);
  void Hash();
  std::array<uint32_t, 4> StateOf(size_t lane) const;
  void SetState(size_t lane, const std::array<uint32_t, 4>& state);
  std::span<char> BufferOf(size_t lane);

  // What the kernels see: for each lane where it reads, and how many whole blocks are there.
  alignas(64) std::array<uint32_t, 4 * kMostMd5Lanes> states_{};
  std::array<const char*, kMostMd5Lanes> at_{};
  std::array<size_t, kMostMd5Lanes> blocks_{};
  std::array<Lane, kMostMd5Lanes> lanes_;
  std::unique_ptr<char[]> buffers_;
  const Implementation implementation_;
};

std::array<uint32_t, 4> Md5Batch::Engine::StateOf(size_t lane) const {
  std::array<uint32_t, 4> state{};
  for (size_t i = 0; i < 4; ++i) state[i] = states_[i * Lanes() + lane];
  return state;
}

void Md5Batch::Engine::SetState(size_t lane, const std::array<uint32_t, 4>& state) {
  for (size_t i = 0; i < 4; ++i) states_[i * Lanes() + lane] = state[i];
}

std::span<char> Md5Batch::Engine::BufferOf(size_t lane) {
  if (!buffers_) buffers_ = std::make_unique_for_overwrite<char[]>(Lanes() * kBufferDistance);
  return {buffers_.get() + lane * kBufferDistance, kBufferSize};
}

// Puts the next message into a free lane; false when there is none.
bool Md5Batch::Engine::Begin(size_t lane, const std::function<Md5Message*()>& next) {
  Lane& l = lanes_[lane];
  l.message = next();
  if (l.message == nullptr) return false;
  l.rest = {};
  l.size = 0;
  l.held = 0;
  l.padded = false;
  SetState(lane, kInitialState);
  return true;
}

// Finds whole blocks of the lane's message; false when it was given up.
bool Md5Batch::Engine::Supply(size_t lane) {
  Lane& l = lanes_[lane];
  for (;;) {
    if (l.rest.empty()) {
      const auto piece = l.message->Next(BufferOf(lane));
      if (!piece) return false;
      l.rest = *piece;
      l.size += piece->size();
      if (piece->empty()) break;
    }
    if (l.held == 0 && l.rest.size() >= kBlock) {
      at_[lane] = l.rest.data();
      blocks_[lane] = l.rest.size() / kBlock;
      l.rest.remove_prefix(blocks_[lane] * kBlock);
      return true;
    }
    // The bytes that are no whole block wait for the next piece.
    const size_t taken = std::min(kBlock - l.held, l.rest.size());
    std::memcpy(l.tail.data() + l.held, l.rest.data(), taken);
    l.rest.remove_prefix(taken);
    l.held += taken;
    if (l.held == kBlock) {
      l.held = 0;
      at_[lane] = l.tail.data();
      blocks_[lane] = 1;
      return true;
    }
  }
  const size_t size = l.held + PadMd5(l.size, l.tail.data() + l.held);
  l.padded = true;
  at_[lane] = l.tail.data();
  blocks_[lane] = size / kBlock;
  return true;
}

// Sees to it that a lane has blocks to hash; false when no message is left for it.
bool Md5Batch::Engine::Fill(size_t lane, const std::function<Md5Message*()>& next) {
  Lane& l = lanes_[lane];
  if (l.padded) {
    l.padded = false;
    Md5Message* const message = std::exchange(l.message, nullptr);
    message->Done(Md5DigestOf(StateOf(lane)));
  }
  while (l.message != nullptr || Begin(lane, next)) {
    if (Supply(lane)) return true;
    l.message = nullptr;
  }
  return false;
}

// Hashes as many blocks as every lane has.
void Md5Batch::Engine::Hash() {
  size_t active = 0;
  size_t count = SIZE_MAX;
  const char* readable = nullptr;
  for (size_t lane = 0; lane < Lanes(); ++lane) {
    if (blocks_[lane] == 0) continue;
    ++active;
    if (blocks_[lane] < count) {
      count = blocks_[lane];
      readable = at_[lane];
    }
  }
  if (active < std::min(kWorthwhile, Lanes())) {
    for (size_t lane = 0; lane < Lanes(); ++lane) {
      if (blocks_[lane] == 0) continue;
      std::array<uint32_t, 4> state = StateOf(lane);
      Md5BlocksPortable(state.data(), at_[lane], blocks_[lane]);
      SetState(lane, state);
      blocks_[lane] = 0;
    }
    return;
  }
  for (size_t lane = 0; lane < Lanes(); ++lane) {
    // A free lane hashes what another one hashes, and nobody looks at its result.
    if (blocks_[lane] == 0) at_[lane] = readable;
  }
  implementation_.kernel(states_.data(), at_.data(), count);
  for (size_t lane = 0; lane < Lanes(); ++lane) {
    if (blocks_[lane] == 0) continue;
    at_[lane] += count * kBlock;
    blocks_[lane] -= count;
  }
}

void Md5Batch::Engine::Run(const std::function<Md5Message*()>& next) {
  for (;;) {
    // Asked anew in each round: a long message in one lane must not keep the others empty.
    bool more = true;
    bool any = false;
    for (size_t lane = 0; lane < Lanes(); ++lane) {
      if (blocks_[lane] == 0 && (more || lanes_[lane].message != nullptr)) {
        Fill(lane, [&] {
          Md5Message* const message = more ? next() : nullptr;
          more = message != nullptr;
          return message;
        });
      }
      any |= blocks_[lane] != 0;
    }
    if (!any) return;
    Hash();
  }
}

Md5Batch::Md5Batch(Md5Level level) : engine_(std::make_unique<Engine>(level)) {}
Md5Batch::~Md5Batch() = default;

size_t Md5Batch::Lanes() const { return engine_->Lanes(); }

void Md5Batch::Run(const std::function<Md5Message*()>& next) { engine_->Run(next); }

namespace {

// A message that lies in memory as a whole.
struct WholeMessage : Md5Message {
  std::string_view text;
  Md5Digest* digest = nullptr;

  std::optional<std::string_view> Next(std::span<char> /*buffer*/) override {
    return std::exchange(text, {});
  }
  void Done(const Md5Digest& result) override { *digest = result; }
};

}  // namespace

void HashMessages(std::span<const std::string_view> messages, std::span<Md5Digest> digests,
                  Md5Level level) {
  std::vector<WholeMessage> whole(messages.size());
  for (size_t i = 0; i < messages.size(); ++i) {
    whole[i].text = messages[i];
    whole[i].digest = &digests[i];
  }
  size_t next = 0;
  Md5Batch(level).Run([&] { return next < whole.size() ? &whole[next++] : nullptr; });
}

}  // namespace quarnel
