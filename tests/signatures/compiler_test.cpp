#include "signatures/compiler.h"

#include <gtest/gtest.h>

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

TEST(Compiler, StopsAtTooManyErrors) {
  SignatureSources sources;
  for (int i = 0; i < 2000; ++i) sources.registry += "bad\n";
  sources.programs = "bad\n";
  EXPECT_EQ(CompileSet(sources).errors.size(), kMostSourceErrors);
}

TEST(Compiler, RefusesWhatReadersWouldMisread) {
  using S = SignatureSources;
  const std::string hash(kHash);
  // Enciphered to a line feed as the last character of an even text, and to the end-of-file mark as
  // the last of an odd one, behind which a blank comes.
  const char lineFeed = static_cast<char>('\n' - 'M');
  const char endMark = static_cast<char>('\x1A' - 'E');
  const auto longFile = [](size_t over) {
    return "a,b,1,1,p,," + std::string(kLongestLine - 12 + over, 'x');
  };
  const struct {
    std::string S::*source;
    std::string reason;  // a part of it; empty for lines that are taken
    std::vector<std::string> lines;
    size_t at = 2;
  } cases[] = {
      {&S::registry, "", {"a,b,1,2,key,,"}},
      {&S::registry, "6 fields", {"a,b,1,2,key,"}},
      {&S::registry, "8 fields", {"a,b,1,2,key,,data,more"}},
      {&S::registry, "field 3 (type code)", {"a,b,54,2,key,,", "a,b,-1,2,key,,"}},
      {&S::registry, "field 4 (hive code)", {"a,b,1,6,key,,", "a,b,1,,key,,"}},
      {&S::registry, "neither a key nor a value name", {"a,b,1,2,,,"}},
      {&S::registry,
       "whole hive",
       {"a,b,1,3,[[HKEYUSERVALUE]],,", "a,b,1,3,KEY:,,", "a,b,1,3,key:CB:\\,,", "a,b,1,3,[[x,KVN:,",
        "a,b,1,3,any[[HKEYUSERVALUE]],,"}},
      {&S::registry,
       "",
       {"a,b,1,3,[[HKEYUSERVALUE]]k,,", "a,b,1,3,[[HKEYUSERVALUE]],v,", "a,b,1,3,KEY:[[USER]]k,,"}},
      {&S::registry, "\"b\" elsewhere", {"a,b,1,2,key,,\na,B,1,2,key,,"}, 3},
      {&S::registry, "\"^\"", {"a,b^,1,2,key,,"}},
      {&S::files, "", {"a,b,1,0,C:\\p,,", "a,b,1,44,C:\\p,,", longFile(0)}},
      {&S::files, "field 4 (folder code)", {"a,b,1,-1,p,,", "a,b,1,32768,p,,", "a,b,1,1x,p,,"}},
      {&S::files,
       "32 hexadecimal",
       {"a,b,1,1,p," + hash.substr(1) + ",", "a,b,1,1,p," + hash.substr(1) + "g,"}},
      {&S::files,
       "byte 14 would be enciphered to a line feed",
       {std::string("a,b,1,1,p,,ii") + lineFeed}},
      {&S::files, "byte 13 would be enciphered to an end", {std::string("a,b,1,1,p,,i") + endMark}},
      {&S::files, "characters", {longFile(1)}},
      {&S::programs, "field 1 (hash)", {"^1^name"}},
      {&S::programs, "4 fields", {hash + "^1^na^me"}},
      {&S::blockedCookies, "2 fields", {"a,b"}},
      {&S::blockedCookies, "quotation", {"\"a\""}},
      {&S::blockedCookies, "blank", {" a"}},
      {&S::blockedCookies, "list", {"[a", "[b-a]"}},
      {&S::blockedCookies, "", {std::string(kLongestCookiePattern, 'a')}},
      {&S::blockedCookies, "4096 characters", {std::string(kLongestCookiePattern + 1, 'a')}},
      {&S::blockedCookies, "byte 2 has the value 0", {std::string("a\0b", 3)}},
      {&S::blockedCookies, "byte 2 has the value 255", {"a\xFF"}},
      {&S::activeX, "1 fields", {"name"}},
      {&S::activeX, "field 2 (class identifier)", {"name,{0123}"}},
      {&S::levels, "", {"[Level]\nname=-2", "[Other]\nany thing"}},
      {&S::levels, "=", {"[Level]\nname"}, 3},
      {&S::levels, "blanks", {"[Level]\na name=1"}, 3},
      {&S::levels, "is not a number", {"[level]\nname=32768"}, 3},
  };
  for (const auto& c : cases) {
    for (const std::string& line : c.lines) {
      SCOPED_TRACE(line.substr(0, 80));
      SignatureSources sources;
      sources.*c.source = "# comment\n" + line + "\n";
      const CompiledSet set = CompileSet(sources);
      ASSERT_EQ(set.errors.size(), c.reason.empty() ? 0U : 1U);
      EXPECT_EQ(set.files.empty(), !c.reason.empty());
      if (c.reason.empty()) continue;
      EXPECT_EQ(set.errors[0].line, c.at);
      EXPECT_NE(set.errors[0].reason.find(c.reason), std::string::npos) << set.errors[0].Text();
    }
  }
}

TEST(SignatureTool, CompilesFoldersAndAnswersBadCalls) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::temp_directory_path() / "quarnel_signature_tool_test";
  fs::remove_all(folder);
  fs::create_directories(folder / "source");
  const std::string source = (folder / "source").string(), set = (folder / "set").string();
  std::string said;
  const auto run = [&](const std::vector<std::string>& arguments) {
    std::ostringstream out, errors;
    const int code = RunSignatureTool(arguments, out, errors);
    said = code == 0 ? out.str() : errors.str();
    return code;
  };
  EXPECT_EQ(run({}), 2);
  EXPECT_EQ(run({"compile", source}), 2);
  EXPECT_EQ(run({"compile", source, set}), 1) << "there is no source";
  std::ofstream(folder / "source" / "QNLESig.txt") << kHash << "^1^Name\nbad\n";
  EXPECT_EQ(run({"compile", source, set}), 1);
  EXPECT_NE(said.find("QNLESig.txt:2: 1 fields"), std::string::npos) << said;
  EXPECT_FALSE(fs::exists(set)) << "a refused source must leave nothing behind";
  std::ofstream(folder / "source" / "QNLESig.txt") << kHash << "^1^Name\n";
  EXPECT_EQ(run({"compile", source, set}), 0);
  EXPECT_EQ(run({"show", set + "/QNLESig.dll"}), 0);
  EXPECT_EQ(said, std::string(kHash) + "^1^Name\n");
  EXPECT_EQ(run({"show", set + "/QNLESig.txt"}), 1);
  EXPECT_EQ(run({"show", source}), 1);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace quarnel
