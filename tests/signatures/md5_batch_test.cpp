#include "signatures/md5_batch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quarnel {
namespace {

constexpr Md5Level kLevels[] = {Md5Level::kPortable, Md5Level::kSse2, Md5Level::kAvx2,
                                Md5Level::kAvx512};

std::vector<std::string> RandomMessages(std::mt19937& random, size_t count) {
  std::vector<std::string> messages(count);
  for (std::string& message : messages) {
    // Mostly around the ends of one and two blocks, where padding differs; some longer than what a
    // lane holds at a time, and a whole number of that.
    size_t size = random() % 4 == 0 ? random() % 40'000 : random() % 140;
    if (random() % 16 == 0) size = 16384 * (random() % 3) + random() % 2;
    message.resize(size);
    for (char& c : message) c = static_cast<char>(random());
  }
  return messages;
}

// A message that comes in pieces of random size.
struct Pieces : Md5Message {
  std::string_view rest;
  std::mt19937* random = nullptr;
  size_t giveUpAfter = SIZE_MAX;
  std::optional<Md5Digest> digest;

  std::optional<size_t> Next(std::span<char> buffer) override {
    if (giveUpAfter-- == 0) return std::nullopt;
    const size_t most = std::min({rest.size(), buffer.size(), size_t{(*random)() % 3000 + 1}});
    rest.copy(buffer.data(), most);
    rest.remove_prefix(most);
    return most;
  }
  void Done(const Md5Digest& result) override {
    EXPECT_FALSE(digest) << "done twice";
    digest = result;
  }
};

TEST(Md5Batch, EveryLevelHashesLikeOneAfterTheOther) {
  std::mt19937 random(11);
  for (const Md5Level level : kLevels) {
    for (const size_t count : {0U, 1U, 3U, 4U, 7U, 12U, 17U, 30U, 300U}) {
      const std::vector<std::string> messages = RandomMessages(random, count);
      const std::vector<std::string_view> views(messages.begin(), messages.end());
      std::vector<Md5Digest> digests(count);
      HashMessages(views, digests, level);
      for (size_t i = 0; i < count; ++i) {
        ASSERT_EQ(HexText(digests[i]), HexText(Md5Of(messages[i])))
            << "level " << int(level) << ", " << messages[i].size() << " bytes";
      }
    }
  }
}

TEST(Md5Batch, PiecesRunsAndMessagesGivenUp) {
  std::mt19937 random(12);
  for (const Md5Level level : kLevels) {
    Md5Batch batch(level);
    for (int run = 0; run < 3; ++run) {
      const std::vector<std::string> texts = RandomMessages(random, 200);
      std::vector<Pieces> messages(texts.size());
      for (size_t i = 0; i < texts.size(); ++i) {
        messages[i].rest = texts[i];
        messages[i].random = &random;
        if (i % 7 == 0) messages[i].giveUpAfter = i % 3;
      }
      size_t next = 0;
      batch.Run([&] { return next < messages.size() ? &messages[next++] : nullptr; });
      for (size_t i = 0; i < texts.size(); ++i) {
        if (!messages[i].digest) {
          ASSERT_EQ(i % 7, 0U) << "level " << int(level);
        } else {
          ASSERT_EQ(*messages[i].digest, Md5Of(texts[i])) << "level " << int(level);
        }
      }
    }
  }
}

}  // namespace
}  // namespace quarnel
