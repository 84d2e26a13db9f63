#include "signatures/hash_index.h"

#include <random>

#include "base/text.h"
#include "signatures/cipher.h"
#include "signatures/md5.h"
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

}  // namespace
}  // namespace quarnel
