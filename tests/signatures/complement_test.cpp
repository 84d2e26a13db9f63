#include "signatures/complement.h"

#include "core/error_log.h"
#include "signatures/signature_folder.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

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
