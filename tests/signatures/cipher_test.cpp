#include "signatures/cipher.h"

#include <gtest/gtest.h>

#include <random>

#include "core/error_log.h"
#include "signatures/complement.h"
#include "signatures/signature_folder.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

std::string RandomBytes(std::mt19937& random, size_t size) {
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random());
  return bytes;
}

// The two steps of the algorithm as they are defined, one character at a time.
std::string DecryptAsDefined(std::string_view cipher) {
  std::string plain;
  for (size_t i = 0; i < cipher.size(); ++i) {
    int code = static_cast<unsigned char>(cipher[i]) - kCipherKey[i % kCipherKey.size()];
    if (code < 0) code += 256;
    plain += static_cast<char>(code);
  }
  std::string ordered;
  for (size_t i = 0; i < plain.size(); i += 2) {
    const std::string pair = plain.substr(i, 2);
    ordered.insert(ordered.begin(), pair.rbegin(), pair.rend());
  }
  return ordered;
}

TEST(Cipher, KnownTexts) {
  // "AB" is mirrored to "BA"; 'M' and 'E' are added.
  EXPECT_EQ(Encrypt("AB"), std::string("\x8F\x86"));
  EXPECT_EQ(Encrypt("A"), std::string("\x6D\x86"));
  EXPECT_EQ(Decrypt(Encrypt("odd")), "odd ");
}

TEST(Cipher, EveryLevelIsTheDefinition) {
  std::mt19937 random(7);
  for (size_t size = 0; size < 200; ++size) {
    const std::string cipher = RandomBytes(random, size);
    const std::string expected = DecryptAsDefined(cipher);
    for (const CipherLevel level :
         {CipherLevel::kPortable, CipherLevel::kSsse3, CipherLevel::kAvx2}) {
      std::string plain(size + 2, '#');
      DecryptTo(cipher, plain.data() + 1, level);
      ASSERT_EQ(plain, '#' + expected + '#') << size << " characters, level " << int(level);
    }
    std::string padded = size % 2 == 0 ? cipher : cipher + ' ';
    ASSERT_EQ(Decrypt(Encrypt(cipher)), padded);
  }
}

TEST(Cipher, LinesKeepTheirPlaces) {
  std::mt19937 random(8);
  for (size_t round = 0; round < 300; ++round) {
    std::string bytes;
    std::string expected;
    for (size_t line = random() % 20; line > 0; --line) {
      std::string cipher = RandomBytes(random, random() % (round % 3 == 0 ? 300 : 70));
      for (char& c : cipher) c = c == '\r' || c == '\n' ? 'x' : c;
      expected += DecryptAsDefined(cipher) + "\r\n";
      bytes += cipher + "\r\n";
    }
    const std::string_view oddEnd[] = {
        "", "rest", "rest\r", "bare\nnext\r\n", "bare\rnext\r\n", "\n\r\n"};
    bytes += oddEnd[round % std::size(oddEnd)];
    // Room behind the odd line, so that it is met in the middle of the text.
    if (random() % 2 == 0 && oddEnd[round % std::size(oddEnd)].ends_with('\n'))
      bytes.append(200, 'y');
    for (const CipherLevel level :
         {CipherLevel::kPortable, CipherLevel::kSsse3, CipherLevel::kAvx2}) {
      std::string text(bytes.size(), '#');
      const size_t taken = DecryptLines(bytes, text.data(), level);
      ASSERT_EQ(text.substr(0, taken), expected) << round << ", level " << int(level);
    }
  }
  const std::string tooLong = std::string(kLongestLine + 1, 'x') + "\r\n" + std::string(200, 'x');
  std::string text(tooLong.size(), '#');
  EXPECT_EQ(DecryptLines(tooLong, text.data()), 0U);
}

using namespace std::string_view_literals;

class ComplementTest : public SignatureFolderTest {
 protected:
  void Transform(std::string_view source, std::string_view target) {
    ComplementFile({files(), host_, log_, "Product"}, source, target);
  }
  std::string Transformed(std::string_view source, std::string_view before) {
    const std::string target = Make("target", before);
    Transform(Make("source", source), target);
    return Read(target);
  }

  TestHost host_;
  ErrorLog log_{files(), machine_, host_, "Test"};
};

TEST_F(ComplementTest, ZeroBytesAreSkippedAndTheTargetKeepsItsTail) {
  const struct {
    std::string_view source, before, after;
  } cases[] = {
      {"", "", ""},
      {"", "old", "old"},
      {"\x41\x00"sv, "", "\xBE"},
      {"\x41\x00\x42"sv, "", "\xBE\x00\xBD"sv},
      {"\x41\x00\x42"sv, "abcde", "\xBE\x62\xBD\x64\x65"},
      {"\x00\x00"sv, "a", "a"},
      {"\xFF\x00"sv, "", "\x00"sv},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Transformed(c.source, c.before), c.after);
    if (c.before.empty()) {
      EXPECT_EQ(ComplementBytes(c.source), c.after);
    }
  }
}

TEST_F(ComplementTest, PiecesOfALargeFileMeet) {
  std::string source;
  for (size_t i = 0; i < 200'000; ++i) source += static_cast<char>(i % 251);
  // A stretch of zeros over a whole piece, and zeros on both sides of a border.
  for (size_t i = 65'530; i < 140'000; ++i) source[i] = '\0';
  EXPECT_EQ(Transformed(source, ""), ComplementBytes(source));
  const std::string before(180'000, 'o');
  std::string expected = ComplementBytes(source);
  for (size_t i = 0; i < before.size(); ++i) {
    if (source[i] == '\0') expected[i] = 'o';
  }
  EXPECT_EQ(Transformed(source, before), expected);
}

TEST_F(ComplementTest, TellsOfMissingNames) {
  const std::string missing = Path("missing"), target = Path("target");
  Transform("", target);
  Transform(missing, target);
  Transform(Make("source"), "  ");
  ASSERT_EQ(host_.messages.size(), 3U);
  EXPECT_EQ(host_.messages[0].text, "Source file  not found.");
  EXPECT_EQ(host_.messages[1].text, "Source file " + missing + " not found.");
  EXPECT_EQ(host_.messages[2].text, "Specify the name of the target file.");
  EXPECT_EQ(host_.messages[2].icon, MessageIcon::kCritical);
  EXPECT_EQ(host_.messages[2].title, "Product");
  EXPECT_FALSE(Exists(target));
}

TEST_F(ComplementTest, OtherFailuresAreLogged) {
  Transform(Make("source"), Path("no folder\\target"));
  EXPECT_TRUE(host_.messages.empty());
  EXPECT_NE(Read(log_.Path()).find("DecompressFile"), std::string::npos);
}

}  // namespace
}  // namespace quarnel
