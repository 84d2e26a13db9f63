#include "machine/reg_file.h"

#include <gtest/gtest.h>

#include <random>

#include "base/little_endian.h"
#include "base/unicode.h"

namespace quarnel {
namespace {

using Action = RegStep::Action;

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00\n";

RegFile Parse(std::string_view body) {
  return ParseRegFile(std::string(kHeader) + std::string(body));
}

std::string Wide(std::string_view text) {
  std::string bytes;
  PutWide(bytes, ToUtf16(text));
  return bytes;
}

// One step in short: what it does, where, and the data.
std::string Shown(const RegStep& step) {
  constexpr const char* kActions[] = {"make", "drop", "set", "unset"};
  std::string text = kActions[static_cast<int>(step.action)];
  text += " " + KeyPathText(step.key);
  if (step.action == Action::kSetValue || step.action == Action::kDeleteValue) {
    text += " <" + step.name + ">";
  }
  if (step.action == Action::kSetValue) text += " " + ValueLine("", step.value).substr(2);
  return text;
}

TEST(RegFileTest, ReadsEveryFormOfALine) {
  const struct {
    std::string_view line;
    std::string_view step;  // without the key
  } cases[] = {
      {R"("a"="b")", R"(<a> "b")"},
      {R"(@="default")", R"(<> "default")"},
      {R"(  "spaced"  =  "x"  ; comment)", R"(<spaced> "x")"},
      {R"("a\\b\"c"="C:\\dir\\ \"q\"")", R"(<a\b"c> "C:\\dir\\ \"q\"")"},
      {R"("sloppy"="C:\dir")", R"(<sloppy> "C:\\dir")"},
      {R"("empty"="")", R"(<empty> "")"},
      {R"("="="=")", R"(<=> "=")"},
      {"\"two\"=\"l\r\nh\"", "<two> hex(1):6c,00,0d,00,0a,00,68,00,00,00"},
      {"\"\xC3\xA4\xE2\x82\xAC\"=\"\xF0\x9F\x98\x80\"",
       "<\xC3\xA4\xE2\x82\xAC> \"\xF0\x9F\x98\x80\""},
      {R"("n"=dword:7)", "<n> dword:00000007"},
      {R"("n"=DWORD:fFfFfFfF)", "<n> dword:ffffffff"},
      {R"("b"=hex:)", "<b> hex:"},
      {R"("b"=hex:1,02 , ff)", "<b> hex:01,02,ff"},
      {"\"b\"=hex:01,\\\r\n  02,\\\n\t03 ; comment", "<b> hex:01,02,03"},
      {"\"b\"=hex:\\\n  01", "<b> hex:01"},
      {R"("t"=hex(2):25,00,00,00)", "<t> hex(2):25,00,00,00"},
      {R"("t"=hex(b):01,00,00,00,00,00,00,00)", "<t> hex(b):01,00,00,00,00,00,00,00"},
      {R"("t"=hex(ffff0001):)", "<t> hex(ffff0001):"},
      {R"("t"=hex(4):01,02)", "<t> hex(4):01,02"},
  };
  for (const auto& test : cases) {
    const RegFile file = Parse("[HKEY_CURRENT_USER\\K]\n" + std::string(test.line) + "\n");
    ASSERT_FALSE(file.error) << test.line << ": " << file.error->reason;
    ASSERT_EQ(file.steps.size(), 2U) << test.line;
    EXPECT_EQ(Shown(file.steps[1]), "set HKEY_CURRENT_USER\\K " + std::string(test.step));
  }
}

TEST(RegFileTest, ReadsKeysDeletionsAndComments) {
  const RegFile file = Parse(
      "; a comment\r\n# another\n\n"
      "[hklm\\Software\\[odd] key]\r\n"
      "\"gone\"=-\n@=-\n"
      "  [-HKEY_LOCAL_MACHINE\\Software\\Old]\n"
      "[HKEY_USERS]\n"
      "[HKCC\\A\\]");
  ASSERT_FALSE(file.error) << file.error->reason;
  std::vector<std::string> steps;
  for (const RegStep& step : file.steps) {
    steps.push_back(std::to_string(step.line) + " " + Shown(step));
  }
  EXPECT_EQ(steps, (std::vector<std::string>{
                       "5 make HKEY_LOCAL_MACHINE\\Software\\[odd] key",
                       "6 unset HKEY_LOCAL_MACHINE\\Software\\[odd] key <gone>",
                       "7 unset HKEY_LOCAL_MACHINE\\Software\\[odd] key <>",
                       "8 drop HKEY_LOCAL_MACHINE\\Software\\Old",
                       "9 make HKEY_USERS",
                       "10 make HKEY_CURRENT_CONFIG\\A",
                   }));
}

TEST(RegFileTest, ReadsEveryEncoding) {
  const std::string body = "[HKCU\\\xC3\xA4]\r\n\"n\"=\"\xE2\x82\xAC\"\r\n";
  const std::string text = std::string(kHeader) + body;
  for (const std::string& bytes : {text, "\xEF\xBB\xBF" + text, "\xFF\xFE" + Wide(text)}) {
    const RegFile file = ParseRegFile(bytes);
    ASSERT_EQ(file.steps.size(), 2U);
    EXPECT_EQ(Shown(file.steps[1]), "set HKEY_CURRENT_USER\\\xC3\xA4 <n> \"\xE2\x82\xAC\"");
  }
  // The older version has texts in bytes, one a character.
  const RegFile old = ParseRegFile("REGEDIT4\n[HKCU\\K]\n\"t\"=hex(2):25,61,25,00\n\"b\"=hex:01\n");
  ASSERT_EQ(old.steps.size(), 3U);
  EXPECT_EQ(old.steps[1].value.data, Wide(std::string("%a%\0", 4)));
  EXPECT_EQ(old.steps[2].value.data, "\x01");
}

TEST(RegFileTest, NamesTheLineOfAnError) {
  const std::string key = "[HKCU\\K]\n";
  const struct {
    size_t line;
    std::string before;
    std::vector<std::string_view> bodies;
  } cases[] = {
      {2, "", {"nonsense", "\"a\"=\"b\"", "[HKCU\\K", "[HKXX\\K]", "[]", "[-HKCU]"}},
      {3, key, {"\"a\"", "\"a\"=", "\"a\"=x", "\"a\"=\"open\n\n", "\"a\"=\"b\" c"}},
      {3, key + "\"a\"=dword:", {"", "123456789", "12x"}},
      {3, key + "\"a\"=hex", {":0g", ":001", ":01,", "(:01", "(1:01"}},
      {4, key + "\"a\"=hex:01,\\\n", {"", "  02,\\ x"}},
      {4, key, {"\n\"a"}},
      {3, "[-HKCU\\K]\n", {"\"a\"=\"b\""}},
  };
  for (const auto& [line, before, bodies] : cases) {
    for (const std::string_view end : bodies) {
      const std::string body = before + std::string(end);
      const RegFile file = Parse(body);
      ASSERT_TRUE(file.error) << body;
      EXPECT_EQ(file.error->line, line) << body;
      EXPECT_NE(file.error->reason, "") << body;
    }
  }
  for (const std::string_view bytes : {"", "\xFF\xFE", "REGEDIT5", "\xFE\xFF", "[HKCU\\K]"}) {
    EXPECT_EQ(ParseRegFile(bytes).error->line, 1U);
  }
}

TEST(RegFileTest, PrintsWhatReadsBackAsTheSame) {
  std::mt19937 random(7);
  const auto pick = [&](size_t limit) { return random() % limit; };
  std::vector<RegStep> steps;
  for (int i = 0; i < 300; ++i) {
    const KeyPath key{hive::kLocalMachine, "Key\\" + std::to_string(i / 10)};
    if (i % 10 == 0) steps.push_back({Action::kMakeKey, key, {}, {}, 0});
    constexpr std::string_view kNamePieces[] = {"a",        "\"", "\\", " ",   "=",
                                                "\xC3\xA4", ";",  "[",  "\xE4"};
    RegStep step{Action::kSetValue, key, "n", {}, 0};
    for (size_t n = pick(6); n > 0; --n) step.name += kNamePieces[pick(std::size(kNamePieces))];
    step.value.type = static_cast<ValueType>(pick(13));
    for (size_t n = pick(60); n > 0; --n) step.value.data += static_cast<char>(random());
    if (i % 3 == 0) step.value = RawFromValue(step.name);
    steps.push_back(step);
  }
  const std::string printed = PrintRegFile(steps);
  const RegFile file = ParseRegFile(printed);
  ASSERT_FALSE(file.error) << file.error->line << file.error->reason;
  ASSERT_EQ(file.steps.size(), steps.size());
  for (size_t i = 0; i < steps.size(); ++i) {
    EXPECT_EQ(file.steps[i].name, steps[i].name);
    EXPECT_EQ(file.steps[i].value.type, steps[i].value.type) << i;
    EXPECT_EQ(file.steps[i].value.data, steps[i].value.data) << i;
  }
  // Wherever such a file is torn it still reads to an end.
  for (size_t length = 0; length < printed.size(); length += 1 + pick(400)) {
    const RegFile torn = ParseRegFile(printed.substr(0, length));
    EXPECT_LE(torn.steps.size(), steps.size());
  }
}

}  // namespace
}  // namespace quarnel
