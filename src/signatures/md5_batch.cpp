#include "signatures/md5_batch.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include "signatures/md5_kernels.h"

namespace quarnel {
namespace {

constexpr size_t kBlock = 64;
constexpr std::array<uint32_t, 4> kInitialState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

// Large enough that reading takes few calls, and small enough that all lanes together stay near the
// processor and take little of the memory of a scan.
constexpr size_t kBufferSize = size_t{32} * 1024;
static_assert(kBufferSize % kBlock == 0);
// Behind a message there is room for its padding. The buffers of two lanes do not lie a power of
// two apart: they are read at the same pace, and would push each other out of the cache.
constexpr size_t kBufferDistance = kBufferSize + 3 * kBlock;

using Kernel = void (*)(uint32_t* state, const char* const* blocks, size_t count, size_t lanes);

// A kernel for so many messages.
struct Shape {
  Md5Level level;
  size_t lanes;
  Kernel kernel;
};

void OneLane(uint32_t* state, const char* const* blocks, size_t count, size_t /*lanes*/) {
  Md5BlocksPortable(state, blocks[0], count);
}

// The first one that the level allows and that has enough lanes is the fastest: narrow vectors turn
// their blocks sooner, and wide ones hash more.
constexpr Shape kShapes[] = {
    {Md5Level::kPortable, 1, OneLane},
#if defined(__SSE2__)
    {Md5Level::kSse2, kMd5WidthSse2, Md5LanesSse2},
#endif
#if defined(__x86_64__)
    {Md5Level::kAvx2, kMd5WidthAvx2, Md5LanesAvx2},
    {Md5Level::kAvx512, kMd5WidthAvx512, Md5LanesAvx512},
    {Md5Level::kAvx512, 2 * kMd5WidthAvx512, Md5LanesAvx512},
    {Md5Level::kAvx512, kMd5LanesAvx512, Md5LanesAvx512},
    {Md5Level::kAvx2, 2 * kMd5WidthAvx2, Md5LanesAvx2},
    {Md5Level::kAvx2, 3 * kMd5WidthAvx2, Md5LanesAvx2},
    {Md5Level::kAvx2, kMd5LanesAvx2, Md5LanesAvx2},
#endif
#if defined(__SSE2__)
    {Md5Level::kSse2, 2 * kMd5WidthSse2, Md5LanesSse2},
#endif
#if defined(__x86_64__)
    {Md5Level::kSse2, 3 * kMd5WidthSse2, Md5LanesSse2},
    {Md5Level::kSse2, kMd5LanesSse2, Md5LanesSse2},
#endif
};

size_t MostLanes(Md5Level level) {
  size_t most = 0;
  for (const Shape& shape : kShapes) {
    if (shape.level <= level) most = std::max(most, shape.lanes);
  }
  return most;
}

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
  explicit Engine(Md5Level level)
      : level_(std::min(level, BestMd5Level())), mostLanes_(MostLanes(level_)) {}

  size_t Lanes() const { return mostLanes_; }
  void Run(const std::function<Md5Message*()>& next);

 private:
  // The part of a lane that only changes from piece to piece.
  struct Lane {
    Md5Message* message = nullptr;
    uint64_t size = 0;    // bytes that came so far
    bool padded = false;  // what is being hashed are the message's last blocks
  };

  bool Fill(size_t lane, const std::function<Md5Message*()>& next);
  bool Begin(size_t lane, const std::function<Md5Message*()>& next);
  bool Supply(size_t lane);
  void Hash();
  const Shape& ShapeFor(size_t lanes) const;
  void HashAll(const Shape& shape, std::span<const size_t> busy, size_t shortest);
  void HashSome(const Shape& shape, std::span<const size_t> busy, size_t shortest);
  std::array<uint32_t, 4> StateOf(size_t lane) const;
  void SetState(size_t lane, const std::array<uint32_t, 4>& state);
  char* BufferOf(size_t lane);

  // What the kernels see: for each lane where it reads, and how many whole blocks are there.
  alignas(64) std::array<uint32_t, 4 * kMostMd5Lanes> states_{};
  std::array<const char*, kMostMd5Lanes> at_{};
  std::array<size_t, kMostMd5Lanes> blocks_{};
  std::array<Lane, kMostMd5Lanes> lanes_;
  std::unique_ptr<char[]> buffers_;
  const Md5Level level_;
  const size_t mostLanes_;
};

std::array<uint32_t, 4> Md5Batch::Engine::StateOf(size_t lane) const {
  std::array<uint32_t, 4> state{};
  for (size_t i = 0; i < 4; ++i) state[i] = states_[i * Lanes() + lane];
  return state;
}

void Md5Batch::Engine::SetState(size_t lane, const std::array<uint32_t, 4>& state) {
  for (size_t i = 0; i < 4; ++i) states_[i * Lanes() + lane] = state[i];
}

char* Md5Batch::Engine::BufferOf(size_t lane) {
  if (!buffers_) buffers_ = std::make_unique_for_overwrite<char[]>(Lanes() * kBufferDistance);
  return buffers_.get() + lane * kBufferDistance;
}

// Puts the next message into a free lane; false when there is none.
bool Md5Batch::Engine::Begin(size_t lane, const std::function<Md5Message*()>& next) {
  Lane& l = lanes_[lane];
  l.message = next();
  if (l.message == nullptr) return false;
  l.size = 0;
  l.padded = false;
  SetState(lane, kInitialState);
  return true;
}

// Fills the lane's buffer with its message, and with the padding where that ends: most files go
// through in one piece. False when the message was given up.
bool Md5Batch::Engine::Supply(size_t lane) {
  Lane& l = lanes_[lane];
  char* const buffer = BufferOf(lane);
  size_t filled = 0;
  while (filled < kBufferSize) {
    const auto count = l.message->Next({buffer + filled, kBufferSize - filled});
    if (!count) return false;
    filled += *count;
    l.size += *count;
    if (*count == 0) {
      filled += PadMd5(l.size, buffer + filled);
      l.padded = true;
      break;
    }
  }
  at_[lane] = buffer;
  blocks_[lane] = filled / kBlock;
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

const Shape& Md5Batch::Engine::ShapeFor(size_t lanes) const {
  const Shape* shape = std::begin(kShapes);
  while (shape->level > level_ || shape->lanes < lanes) ++shape;
  return *shape;
}

// Hashes as many blocks as every lane has.
void Md5Batch::Engine::Hash() {
  std::array<size_t, kMostMd5Lanes> lanes{};
  size_t count = 0;
  size_t shortest = 0;
  for (size_t lane = 0; lane < Lanes(); ++lane) {
    if (blocks_[lane] == 0) continue;
    if (count == 0 || blocks_[lane] < blocks_[shortest]) shortest = lane;
    lanes[count++] = lane;
  }
  const std::span<const size_t> busy(lanes.data(), count);
  const size_t blocks = blocks_[shortest];
  const Shape& shape = ShapeFor(count);
  if (shape.lanes == Lanes()) {
    HashAll(shape, busy, shortest);
  } else {
    HashSome(shape, busy, shortest);
  }
  for (const size_t lane : busy) {
    at_[lane] += blocks * kBlock;
    blocks_[lane] -= blocks;
  }
}

void Md5Batch::Engine::HashAll(const Shape& shape, std::span<const size_t> busy, size_t shortest) {
  if (busy.size() < Lanes()) {
    // A free lane hashes what another one hashes, and nobody looks at its result.
    for (size_t lane = 0; lane < Lanes(); ++lane) {
      if (blocks_[lane] == 0) at_[lane] = at_[shortest];
    }
  }
  shape.kernel(states_.data(), at_.data(), blocks_[shortest], Lanes());
}

// The last messages of a run are often long ones, and few: the fewer lanes go at a time, the sooner
// they end.
void Md5Batch::Engine::HashSome(const Shape& shape, std::span<const size_t> busy, size_t shortest) {
  const size_t lanes = shape.lanes;
  alignas(64) std::array<uint32_t, 4 * kMostMd5Lanes> states{};
  std::array<const char*, kMostMd5Lanes> at{};
  for (size_t i = 0; i < lanes; ++i) {
    const size_t lane = i < busy.size() ? busy[i] : shortest;
    for (size_t word = 0; word < 4; ++word) {
      states[word * lanes + i] = states_[word * Lanes() + lane];
    }
    at[i] = at_[lane];
  }
  shape.kernel(states.data(), at.data(), blocks_[shortest], lanes);
  for (size_t i = 0; i < busy.size(); ++i) {
    for (size_t word = 0; word < 4; ++word) {
      states_[word * Lanes() + busy[i]] = states[word * lanes + i];
    }
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

  std::optional<size_t> Next(std::span<char> buffer) override {
    const size_t count = text.copy(buffer.data(), buffer.size());
    text.remove_prefix(count);
    return count;
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
