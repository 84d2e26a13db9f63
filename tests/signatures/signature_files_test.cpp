#include "signatures/signature_files.h"

#include <gtest/gtest.h>
#include <algorithm>

#include "base/text.h"
#include "signatures/cipher.h"
#include "signatures/levels.h"
#include "signatures/signature_folder.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

using SignatureFilesTest = SignatureFolderTest;

// A file in memory that gives at most some bytes at a time.
class MemoryFile : public File {
 public:
  MemoryFile(std::string bytes, size_t most) : bytes_(std::move(bytes)), most_(most) {}
  size_t Read(std::span<char> buffer) override {
    const size_t count = std::min({buffer.size(), most_, bytes_.size() - position_});
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position_), count, buffer.begin());
    position_ += count;
    return count;
  }
  void Write(std::string_view) override {}
  void Seek(uint64_t) override {}
  uint64_t Size() override { return bytes_.size(); }
  void Flush() override {}

 private:
  std::string bytes_;
  size_t most_;
  size_t position_ = 0;
};

TEST(LineFile, LinesDoNotDependOnThePiecesOfReading) {
  const std::string longest(kLongestLine, 'x');
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"", {}},
      {"\n", {""}},
      {"a", {"a"}},
      {"a\r\nb\rc\nd", {"a", "b", "c", "d"}},
      {"a\r\n\r\n\r\rb\r\n", {"a", "", "", "", "b"}},
      {std::string("a\0\x1A\xFF\r", 5), {std::string("a\0\x1A\xFF", 4)}},
      {longest + "\r\n" + longest + "\n" + longest, {longest, longest, longest}},
  };
  for (const auto& [text, expected] : cases) {
    for (const size_t most : {size_t{1}, size_t{2}, size_t{7}, size_t{1} << 20}) {
      LineFile file(std::make_unique<MemoryFile>(text, most));
      std::vector<std::string> lines;
      while (const auto line = file.Next()) lines.emplace_back(*line);
      EXPECT_EQ(lines, expected) << "pieces of " << most;
    }
  }
}

TEST(LineFile, OverlongLineIsAnErrorButCanBeSkipped) {
  const std::string text = std::string(1'000'000, 'x') + "\r\nnext\r\n";
  LineFile read(std::make_unique<MemoryFile>(text, 5000));
  EXPECT_EQ(ErrorOf([&] { read.Next(); }), ErrorNumber::kOverflow);
  LineFile skipped(std::make_unique<MemoryFile>(text, 5000));
  skipped.Skip();
  EXPECT_EQ(skipped.Next(), "next");
  EXPECT_EQ(skipped.Next(), std::nullopt);
  skipped.Skip();
}

TEST_F(SignatureFilesTest, PresenceOfTheWholeSet) {
  const auto present = [&] {
    bool result = true;
    AllSignatureArePresent(files(), machine_, result);
    return result;
  };
  const std::string_view set[] = {"QNLBlkCoo.dll", "QNLFSig.dll", "QNLImmData.dll", "QNLESig.dll",
                                  "QNLRSig.dll",   "QNLList.dll", "QNLCritProc.dll"};
  for (const std::string_view name : set) {
    EXPECT_FALSE(present()) << "before " << name;
    Make(ToUpper(name), "");
  }
  EXPECT_TRUE(present());
  files().Delete(Path("QNLCritProc.dll"));
  files().CreateFolder(Path("QNLCritProc.dll"));
  EXPECT_FALSE(present()) << "a folder is no file";
}

TEST_F(SignatureFilesTest, CountIsTheFirstLinesNumber) {
  const std::pair<std::string_view, int32_t> cases[] = {
      {"", 1},     {"10\r\nx\r\n", 10}, {"7", 7},      {"\r\n5", 0},
      {"text", 0}, {" 1 2 z", 12},      {"-3\nx", -3}, {"99999999999", 2147483647},
  };
  for (const auto& [bytes, count] : cases) {
    Make("QNLRSig.dll", bytes);
    EXPECT_EQ(GetSignatureCount(files(), machine_, signature_file::kRegistry), count) << bytes;
  }
  EXPECT_EQ(ErrorOf([&] { GetSignatureCount(files(), machine_, "missing"); }),
            ErrorNumber::kFileNotFound);
}

TEST_F(SignatureFilesTest, LinesAreReadWhateverTheCountSays) {
  std::string bytes = "10\r\n";
  for (int i = 0; i < 500; ++i) bytes += Encrypt("line " + std::to_string(i)) + "\r\n";
  Make("QNLFSig.dll", bytes);
  SignatureLines lines(files(), machine_, signature_file::kFiles);
  int count = 0;
  for (; const auto line = lines.Next(); ++count) {
    const std::string text = "line " + std::to_string(count);
    ASSERT_EQ(*line, text.size() % 2 == 0 ? text : text + ' ');
  }
  EXPECT_EQ(count, 500);
  Make("QNLFSig.dll", "");
  EXPECT_EQ(SignatureLines(files(), machine_, signature_file::kFiles).Next(), std::nullopt);
}

TEST(SignatureFields, ShortLinesRaiseWhereAFieldIsMissing) {
  const SignatureFields whole("a,b,,3, path ,hash,id,more");
  EXPECT_EQ(whole.size(), 7U);
  EXPECT_EQ(whole[2], "");
  EXPECT_EQ(whole[4], " path ");
  EXPECT_EQ(whole[6], "id");
  const SignatureFields part("a,b");
  EXPECT_EQ(part[1], "b");
  EXPECT_EQ(ErrorOf([&] { (void)part[2]; }), ErrorNumber::kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([] { (void)SignatureFields("")[0]; }), ErrorNumber::kSubscriptOutOfRange);
  EXPECT_EQ(SignatureFields("h^1^name", '^')[2], "name");
}

TEST(Parsing, CookiePatterns) {
  EXPECT_EQ(ParseCookiePatterns("*.a.example,b?\r\n"),
            (std::vector<std::string>{"*.a.example", "b?"}));
}

TEST_F(SignatureFilesTest, ThreatLevels) {
  EXPECT_EQ(GetThreatLevel(files(), machine_, "Any"), 3) << "without the file";
  Make("QNLSigLevel.dll",
       "[Level]\r\nkeypest=5\r\nzero=0\r\nnegative=-4\r\ntext=high\r\nrounded=2.5\r\nhuge="
       "40000\r\n");
  const std::pair<std::string_view, int> cases[] = {
      {"Key Pest", 5}, {" KEY  pest ", 5}, {"zero", 3},    {"negative", 3},
      {"text", 3},     {"missing", 3},     {"rounded", 2}, {"", 3},
  };
  for (const auto& [name, level] : cases) {
    EXPECT_EQ(GetThreatLevel(files(), machine_, name), level) << name;
  }
  EXPECT_EQ(ErrorOf([&] { GetThreatLevel(files(), machine_, "huge"); }), ErrorNumber::kOverflow);
  EXPECT_EQ(GetThreatLevelText(5), "");
}

TEST(Taxonomy, TypeNameByTheNumberInFront) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "Worm"},      {"no number", "Worm"}, {" 13", "Generic Malware"},
      {"53", "Proxy"},   {"54", "Unknown"},     {"30 or so", "explosives"},
      {"-1", "Unknown"}, {"1.5", "Unknown"},    {"5", "Commercial Network Managment Tool"},
  };
  for (const auto& [code, name] : cases) EXPECT_EQ(GetTypeOfSpyWare(code), name) << code;
}

TEST(Taxonomy, HiveHandlesAndNames) {
  EXPECT_EQ(GetMainKeyFromFile("3"), 0x80000003U);
  EXPECT_EQ(GetMainKeyFromFile("5"), 0x80000006U);
  EXPECT_EQ(GetMainKeyFromFile("6"), 0U);
  EXPECT_EQ(HiveName(GetMainKeyFromFile("2")), "HKEY_LOCAL_MACHINE");
  EXPECT_EQ(HiveName(0x80000004), "");
}

}  // namespace
}  // namespace quarnel
