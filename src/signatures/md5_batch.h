#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "signatures/md5.h"

// MD5 of many messages side by side: one instruction works on a word of each of them. A single MD5
// is a chain in which every step waits for the one before, so this is where the speed is.
namespace quarnel {

// The instructions that hashing may use. One that the processor lacks is replaced by the best that
// it has; tests and measurements choose.
enum class Md5Level { kPortable, kSse2, kAvx2, kAvx512 };
Md5Level BestMd5Level();

// A message that comes in pieces. Its functions raise nothing.
class Md5Message {
 public:
  virtual ~Md5Message() = default;
  // Puts what comes next into `buffer` and returns how many bytes that are; 0 at the end, and
  // nothing to give the message up.
  virtual std::optional<size_t> Next(std::span<char> buffer) = 0;
  // Called once, after the end of a message that was not given up. The message may destroy itself.
  virtual void Done(const Md5Digest& digest) = 0;
};

// Hashes streams of messages, as many at a time as there are lanes. One object belongs to one
// thread; its buffers are kept from run to run.
class Md5Batch {
 public:
  explicit Md5Batch(Md5Level level = BestMd5Level());
  ~Md5Batch();
  Md5Batch(const Md5Batch&) = delete;
  Md5Batch& operator=(const Md5Batch&) = delete;

  // The number of messages that are in work at a time.
  size_t Lanes() const;

  // Hashes every message that `next` hands out, until it gives null and all are done. `next` is
  // asked whenever a lane is free, and after a null again with the next pieces of the messages in
  // work; it gets no message back but by Done. Messages end in any order.
  void Run(const std::function<Md5Message*()>& next);

 private:
  class Engine;
  std::unique_ptr<Engine> engine_;
};

// The digests of messages that are in memory, in their order.
void HashMessages(std::span<const std::string_view> messages, std::span<Md5Digest> digests,
                  Md5Level level = BestMd5Level());

}  // namespace quarnel
