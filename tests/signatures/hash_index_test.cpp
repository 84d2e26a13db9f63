#include "signatures/hash_index.h"

#include <random>

#include "base/text.h"
#include "signatures/cipher.h"
#include "signatures/md5.h"
#include "signatures/md5_batch.h"
#include "signatures/sha256.h"
#include "signatures/signature_files.h"
#include "signatures/signature_folder.h"

namespace quarnel {
namespace {

using HashIndexTest = SignatureFolderTest;

std::string Digits(std::mt19937& random, size_t count) {
  // Often so few different ones that hashes recur and overlap.
  const std::string_view from = random() % 2 == 0 ? "0123456789abcdefABCDEF" : "aA1";
  std::string digits;
  while (digits.size() < count) digits += from[random() % from.size()];
  return digits;
}

// A line as it may stand in a file: most are of the usual form, some are anything.
std::string RandomLine(std::mt19937& random) {
  std::string hash = Digits(random, 32);
  switch (random() % 12) {
    case 0:
      return hash;
    case 1:
      return Digits(random, 20 + random() % 60) + "^1^name";
    case 2:
      return "^1^" + hash;
    case 3:
      return hash + "^1^a name with " + Digits(random, 32 + random() % 3);
    case 4:
      return std::string(random() % 100, ' ') + Digits(random, random() % 40);
    case 5:
      return hash.substr(0, 31) + "^" + hash;
    case 6:
      return "";
    default:
      return hash + "^11^Name " + std::to_string(random() % 1000);
  }
}

void ExpectSearchResults(const HashIndex& index, const std::string& text, std::mt19937& random) {
  ASSERT_EQ(index.Text(), text);
  const std::string upper = ToUpper(text);
  const auto check = [&](const std::string& hash) {
    const size_t position = upper.find(ToUpper(hash));
    const auto expected = position == std::string::npos ? std::nullopt : std::optional(position);
    ASSERT_EQ(index.Find(hash), expected) << '"' << hash << '"';
  };
  check(std::string(kNoHash));
  check("^1^");
  for (int i = 0; i < 50; ++i) check(Digits(random, 32));
  // Whatever 32 characters of the text, digits and others, in another letter case.
  for (size_t i = 0; i + 32 <= text.size(); i += 1 + random() % 7) {
    check(random() % 2 == 0 ? ToLower(text.substr(i, 32)) : ToUpper(text.substr(i, 32)));
  }
}

TEST(HashIndex, FindsWhatASearchFinds) {
  std::mt19937 random(21);
  for (int round = 0; round < 60; ++round) {
    std::string text;
    for (size_t line = random() % 60; line > 0; --line) text += RandomLine(random) + "\r\n";
    ExpectSearchResults(HashIndex(text), text, random);
  }
  EXPECT_EQ(HashIndex().Find(std::string(32, 'a')), std::nullopt);
  EXPECT_EQ(HashIndex().Text(), "");
}

TEST_F(HashIndexTest, LoadsTheTextThatLoadSignaturesGives) {
  std::mt19937 random(22);
  for (int round = 0; round < 8; ++round) {
    // Large enough for several parts in every second round.
    std::string bytes = "1\r\n";
    for (size_t line = round % 2 == 0 ? 40'000 : random() % 30; line > 0; --line) {
      bytes += Encrypt(RandomLine(random)) + "\r\n";
    }
    if (round % 3 == 1) bytes += Encrypt("a last line without its end");
    // A line of another form makes places differ between file and text.
    if (round > 4) bytes += random() % 2 == 0 ? "\nx\r\n" : "x\ry\r\n";
    Make("QNLESig.dll", bytes);
    const std::string text = LoadSignatures(files(), machine_, signature_file::kPrograms);
    for (const size_t workers : {1U, 2U, 5U}) {
      const HashIndex index =
          HashIndex::Load(files(), machine_, signature_file::kPrograms, workers);
      ASSERT_EQ(index.Text(), text);
      for (int i = 0; i < 20; ++i) {
        const std::string hash = text.substr(random() % (text.size() - 32), 32);
        const size_t position = FindText(text, hash);
        ASSERT_EQ(index.Find(hash), position) << '"' << hash << '"';
      }
    }
  }
}

TEST_F(HashIndexTest, StopsWhenItIsTold) {
  std::mt19937 random(23);
  std::string bytes = "1\r\n";
  for (int line = 0; line < 60'000; ++line) bytes += Encrypt(RandomLine(random)) + "\r\n";
  // The second is read line by line, which begins anew.
  for (const std::string_view end : {"", "\nx\r\n"}) {
    Make("QNLESig.dll", bytes + std::string(end));
    for (const size_t workers : {1U, 2U}) {
      const auto askedUntil = [&](size_t last) {
        size_t asked = 0;
        const HashIndex index = HashIndex::Load(files(), machine_, signature_file::kPrograms,
                                                workers, [&] { return ++asked < last; });
        EXPECT_EQ(index.Text().empty(), asked >= last);
        return asked;
      };
      const size_t all = askedUntil(SIZE_MAX);
      ASSERT_GT(all, 4U);
      for (const size_t last : {size_t{1}, size_t{2}, all / 2, all - 1, all}) {
        EXPECT_EQ(askedUntil(last), last) << workers << " workers, of " << all;
      }
    }
  }
}

TEST_F(HashIndexTest, HostileFiles) {
  const auto load = [&] { return HashIndex::Load(files(), machine_, signature_file::kPrograms); };
  EXPECT_EQ(ErrorOf(load), ErrorNumber::kFileNotFound);
  Make("QNLESig.dll", "");
  EXPECT_EQ(load().Text(), "");
  Make("QNLESig.dll", "2\r\n" + std::string(5'000'000, 'x') + "\r\n");
  EXPECT_EQ(ErrorOf(load), ErrorNumber::kOverflow);
  // All the same hash, and a text of nothing but digits.
  std::string same;
  for (int i = 0; i < 100'000; ++i) same += std::string(32, 'a') + "^1^n\r\n";
  EXPECT_EQ(HashIndex(same).Find(std::string(32, 'A')), 0U);
  const std::string digits(1'000'000, '7');
  EXPECT_EQ(HashIndex(digits).Find(std::string(32, '7')), 0U);
  EXPECT_EQ(HashIndex(digits).Find(std::string(32, '8')), std::nullopt);
}

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
