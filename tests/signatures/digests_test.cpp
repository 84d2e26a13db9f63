#include <random>

#include "signatures/md5.h"
#include "signatures/md5_batch.h"
#include "signatures/sha256.h"
#include "signatures/signature_folder.h"

namespace quarnel {
namespace {

// RFC 1321, appendix A.5; the examples of the other standard, and a message of many blocks.
TEST(Digests, ReferenceMessages) {
  const std::pair<std::string_view, std::string_view> md5[] = {
      {"", "D41D8CD98F00B204E9800998ECF8427E"},
      {"abc", "900150983CD24FB0D6963F7D28E17F72"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57EDF4A22BE3C955AC49DA2E2107B67A"},
  };
  for (const auto& [message, digest] : md5) EXPECT_EQ(HexText(Md5Of(message)), digest) << message;
  const std::pair<std::string, std::string_view> sha256[] = {
      {"", "E3B0C44298FC1C149AFBF4C8996FB92427AE41E4649B934CA495991B7852B855"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248D6A61D20638B8E5C026930C3E6039A33CE45964FF2167F6ECEDD419DB06C1"},
      {std::string(1000000, 'a'),
       "CDC76E5C9914FB9281A1C7E284D73E67F1809A48A497200E046D39CCC7112CD0"},
  };
  for (const auto& [message, digest] : sha256) EXPECT_EQ(HexText(Sha256Of(message)), digest);
}

template <typename Hash, typename Digest>
void ExpectSameInPieces(Digest (*digestOf)(std::string_view)) {
  std::string message;
  for (size_t length = 0; length < 200; ++length) {
    const Digest whole = digestOf(message);
    for (const size_t piece : {1U, 55U, 63U, 64U, 65U, 130U}) {
      Hash hash;
      for (size_t at = 0; at < message.size(); at += piece) {
        hash.Update(std::string_view(message).substr(at, piece));
        hash.Update({});
      }
      ASSERT_EQ(hash.Finish(), whole) << length << " in pieces of " << piece;
    }
    message += static_cast<char>(length * 7);
  }
}

TEST(Digests, PiecesMakeOneMessage) {
  ExpectSameInPieces<Md5>(Md5Of);
  ExpectSameInPieces<Sha256>(Sha256Of);
}

using HashFileTest = SignatureFolderTest;

TEST_F(HashFileTest, BlanksWhereNothingCanBeRead) {
  EXPECT_EQ(HashFile(files(), Make("empty", "")), "D41D8CD98F00B204E9800998ECF8427E");
  EXPECT_EQ(HashFile(files(), Path("missing")), kNoHash);
  EXPECT_EQ(HashFile(files(), Scratch()), kNoHash);
  EXPECT_EQ(HashFile(files(), ""), kNoHash);
}

TEST_F(HashFileTest, StopsBetweenPieces) {
  const std::string content(3'000'000, 'z');
  const std::string path = Make("large", content);
  EXPECT_EQ(HashFile(files(), path), HexText(Md5Of(content)));
  int asked = 0;
  EXPECT_EQ(HashFile(files(), path, [&] { return ++asked == 3; }), kNoHash);
  EXPECT_EQ(asked, 3);
}

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
