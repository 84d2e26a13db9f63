#include "signatures/compiler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/text.h"
#include "signatures/cipher.h"
#include "signatures/complement.h"
#include "signatures/signature_files.h"
#include "signatures/signature_tool.h"

namespace quarnel {
namespace {

constexpr std::string_view kHash = "0123456789abcdefABCDEF0123456789";

SignatureSources Sample() {
  return {
      .registry =
          "# company,name,type,hive,key,value,data\n"
          "unknown,Key Pest,9,2,Software\\Pest,,\r\n"
          "\n"
          "Bad Ltd,\xC3\x9Cnter,33,3,[[HKEYUSERVALUE]]Run,KVN:[[WINDOWS]]x.exe,1\n",
      .files = "Bad Ltd,File Pest,1,37,pest.exe," + std::string(kHash) + ",ID 7\n",
      .programs = std::string(kHash) + "^11^File Pest\n",
      .blockedCookies = "*.ads.example\r\n[a-f]d#.example\r\n",
      .activeX = "Bad Control,{01234567-89AB-CDEF-0123-456789abcdef}\n",
      .levels = "[Level]\nkeypest=5\n",
  };
}

std::string_view BytesOf(const CompiledSet& set, std::string_view name) {
  for (const CompiledFile& file : set.files) {
    if (file.name == name) return file.bytes;
  }
  ADD_FAILURE() << name << " was not made";
  return {};
}

TEST(Compiler, MakesTheWholeSet) {
  const CompiledSet set = CompileSet(Sample());
  ASSERT_TRUE(set.errors.empty()) << set.errors.front().Text();
  for (const SignatureFile& file : SignatureFiles()) {
    if (file.inPresenceTest) BytesOf(set, file.name);
  }
  EXPECT_EQ(BytesOf(set, "QNLESig.dll"),
            "1\r\n" + Encrypt(std::string(kHash) + "^11^File Pest") + "\r\n");
  EXPECT_TRUE(BytesOf(set, "QNLRSig.dll").starts_with("2\r\n"));
  EXPECT_EQ(ComplementBytes(BytesOf(set, "QNLBlkCoo.dll")), "*.ads.example\r\n[a-f]d#.example\r\n");
  EXPECT_EQ(BytesOf(set, "QNLSigLevel.dll"), "[Level]\nkeypest=5\n");
  EXPECT_EQ(BytesOf(set, "QNLList.dll"), "Key Pest\r\n\xC3\x9Cnter\r\nFile Pest\r\n");
}

TEST(Compiler, ShownFilesCompileToTheSameBytes) {
  const CompiledSet set = CompileSet(Sample());
  SignatureSources shown;
  for (const SourceFile& source : SourceFiles()) {
    const std::string name(source.name.substr(0, source.name.find('.')));
    // The name is known in any letter case.
    shown.*source.text =
        ShowSignatureFile(ToUpper(name) + ".DLL", BytesOf(set, name + ".dll")).value();
  }
  const CompiledSet again = CompileSet(shown);
  ASSERT_TRUE(again.errors.empty()) << again.errors.front().Text();
  for (const CompiledFile& file : set.files) EXPECT_EQ(BytesOf(again, file.name), file.bytes);
  EXPECT_EQ(ShowSignatureFile("notes.txt", "x"), std::nullopt);
}

TEST(Compiler, ShowsWhatHandMadeFilesHold) {
  EXPECT_EQ(ShowSignatureFile("ENoSignature.dll", Encrypt("a^b^c") + "\n" + Encrypt("even")),
            "a^b^c\neven\n");
  EXPECT_EQ(ShowSignatureFile("ignorList", ComplementBytes("\"a,b\",c")), "a,b\nc\n");
  EXPECT_EQ(ShowSignatureFile("QNLImmData.dll", ComplementBytes("a\nb,c")), "a,b\nc\n");
  for (const SignatureFile& file : SignatureFiles())
    EXPECT_EQ(ShowSignatureFile(file.name, ""), "");
}

TEST(Compiler, RefusesWhatReadersWouldMisread) {
  using S = SignatureSources;
  const std::string hash(kHash);
  // Enciphered to a line feed as the last character of an even text, and to the end-of-file mark as
  // the last of an odd one, behind which a blank comes.
  const char lineFeed = static_cast<char>('\n' - 'M');
  const char endMark = static_cast<char>('\x1A' - 'E');
  struct Case {
    std::string S::*source;
    std::string line;
    std::string reason;  // a part of it
  };
  const Case cases[] = {
      {&S::registry, "a,b,1,2,key,,", ""},
      {&S::registry, "a,b,1,2,key,", "6 fields"},
      {&S::registry, "a,b,1,2,key,,data,more", "8 fields"},
      {&S::registry, "a,b,54,2,key,,", "field 3 (type code)"},
      {&S::registry, "a,b,-1,2,key,,", "field 3 (type code)"},
      {&S::registry, "a,b,1,6,key,,", "field 4 (hive code)"},
      {&S::registry, "a,b,1,,key,,", "field 4 (hive code)"},
      {&S::registry, "a,b,1,2,,,", "neither a key nor a value name"},
      {&S::registry, "a,b^,1,2,key,,", "\"^\""},
      {&S::files, "a,b,1,43,p,,", ""},
      {&S::files, "a,b,1,0,p,,", "field 4 (folder code)"},
      {&S::files, "a,b,1,44,p,,", "field 4 (folder code)"},
      {&S::files, "a,b,1,1x,p,,", "field 4 (folder code)"},
      {&S::files, "a,b,1,1,p," + hash.substr(1) + ",", "32 hexadecimal"},
      {&S::files, "a,b,1,1,p," + hash.substr(1) + "g,", "32 hexadecimal"},
      {&S::files, std::string("a,b,1,1,p,,ii") + lineFeed,
       "byte 14 would be enciphered to a line feed"},
      {&S::files, std::string("a,b,1,1,p,,i") + endMark, "byte 13 would be enciphered to an end"},
      {&S::files, "a,b,1,1,p,," + std::string(kLongestLine - 12, 'x'), ""},
      {&S::files, "a,b,1,1,p,," + std::string(kLongestLine - 11, 'x'), "characters"},
      {&S::programs, "^1^name", "field 1 (hash)"},
      {&S::programs, hash + "^1^na^me", "4 fields"},
      {&S::blockedCookies, "a,b", "2 fields"},
      {&S::blockedCookies, "\"a\"", "quotation"},
      {&S::blockedCookies, " a", "blank"},
      {&S::blockedCookies, "[a", "list"},
      {&S::blockedCookies, "[b-a]", "list"},
      {&S::blockedCookies, std::string("a\0b", 3), "byte 2 has the value 0"},
      {&S::blockedCookies, "a\xFF", "byte 2 has the value 255"},
      {&S::activeX, "name", "1 fields"},
      {&S::activeX, "name,{0123}", "field 2 (class identifier)"},
      {&S::levels, "[Level]\nname=-2", ""},
      {&S::levels, "[Other]\nany thing", ""},
      {&S::levels, "[Level]\nname", "="},
      {&S::levels, "[Level]\na name=1", "blanks"},
      {&S::levels, "[level]\nname=32768", "is not a number"},
  };
  for (const Case& c : cases) {
    SignatureSources sources;
    sources.*c.source = "# comment\n" + c.line + "\n";
    const CompiledSet set = CompileSet(sources);
    if (c.reason.empty()) {
      EXPECT_TRUE(set.errors.empty()) << c.line.substr(0, 80) << ": " << set.errors.front().Text();
      continue;
    }
    EXPECT_TRUE(set.files.empty());
    ASSERT_EQ(set.errors.size(), 1U) << c.line.substr(0, 80);
    EXPECT_EQ(set.errors[0].line, c.line.starts_with('[') && c.source == &S::levels ? 3U : 2U);
    EXPECT_NE(set.errors[0].reason.find(c.reason), std::string::npos) << set.errors[0].Text();
  }
}

TEST(SignatureTool, CompilesFoldersAndAnswersBadCalls) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::temp_directory_path() / "quarnel_signature_tool_test";
  fs::remove_all(folder);
  fs::create_directories(folder / "source");
  const auto run = [&](const std::vector<std::string>& arguments, std::string& said) {
    std::ostringstream out, errors;
    const int code = RunSignatureTool(arguments, out, errors);
    said = code == 0 ? out.str() : errors.str();
    return code;
  };
  const std::string source = (folder / "source").string(), set = (folder / "set").string();
  std::string said;
  EXPECT_EQ(run({}, said), 2);
  EXPECT_EQ(run({"compile", source}, said), 2);
  EXPECT_EQ(run({"compile", source, set}, said), 1) << "there is no source";
  std::ofstream(folder / "source" / "QNLESig.txt") << kHash << "^1^Name\nbad\n";
  EXPECT_EQ(run({"compile", source, set}, said), 1);
  EXPECT_NE(said.find("QNLESig.txt:2: 1 fields"), std::string::npos) << said;
  EXPECT_FALSE(fs::exists(set)) << "a refused source must leave nothing behind";
  std::ofstream(folder / "source" / "QNLESig.txt") << kHash << "^1^Name\n";
  EXPECT_EQ(run({"compile", source, set}, said), 0);
  EXPECT_EQ(run({"show", set + "/QNLESig.dll"}, said), 0);
  EXPECT_EQ(said, std::string(kHash) + "^1^Name\n");
  EXPECT_EQ(run({"show", set + "/QNLESig.txt"}, said), 1);
  EXPECT_EQ(run({"show", source}, said), 1);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace quarnel
