#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "core/dir_drill.h"
#include "core/like.h"
#include "core/lines.h"
#include "core/mvb6_functions.h"
#include "core/paths.h"
#include "core/product.h"

namespace quarnel {
namespace {

using Parts = std::vector<std::string>;

Parts LinesOf(std::string_view text) {
  Parts lines;
  LineReader reader(text);
  while (const auto line = reader.Next()) lines.emplace_back(*line);
  EXPECT_TRUE(reader.AtEnd());
  EXPECT_EQ(reader.Position(), text.size());
  return lines;
}

Parts Fields(std::string_view text) {
  Parts fields;
  FieldReader reader(text);
  while (auto field = reader.Next()) fields.push_back(std::move(*field));
  return fields;
}

TEST(LineReader, EndsLinesAtEveryForm) {
  EXPECT_EQ(LinesOf("a\r\nb\rc\nd"), (Parts{"a", "b", "c", "d"}));
  EXPECT_EQ(LinesOf("a\r\n"), Parts{"a"});
  EXPECT_EQ(LinesOf("a\n\n"), (Parts{"a", ""}));
  EXPECT_EQ(LinesOf("a\n\rb"), (Parts{"a", "", "b"}));
  EXPECT_EQ(LinesOf("\r\r\n"), (Parts{"", ""}));
  EXPECT_EQ(LinesOf(""), Parts{});
  using namespace std::string_literals;
  EXPECT_EQ(LinesOf("\0\x1A\xFF\n\t "s), (Parts{"\0\x1A\xFF"s, "\t "}));
  // Linear also without a single line feed.
  EXPECT_EQ(LinesOf(std::string(4'000'000, '\r')).size(), 4'000'000u);
}

TEST(FieldReader, Fields) {
  EXPECT_EQ(Fields("a,  b ,\r\nc\nd\r"), (Parts{"a", "b ", "", "c", "d"}));
  EXPECT_EQ(Fields("\"x, \r\ny\" , z,,\"\""), (Parts{"x, \r\ny", "z", "", ""}));
  EXPECT_EQ(Fields("\"open, end"), Parts{"open, end"});
  EXPECT_EQ(Fields("\"a\"b,c"), (Parts{"a", "b", "c"}));
  EXPECT_EQ(Fields("a\"b,\""), (Parts{"a\"b", ""}));
  EXPECT_EQ(Fields("  "), Parts{""});
  EXPECT_EQ(Fields(""), Parts{});
}

TEST(MVb6Functions, InStrRev) {
  constexpr auto kExact = CompareMode::kBinary, kFolded = CompareMode::kText;
  // clang-format off
  const struct {
    std::string text, find;
    long start;
    CompareMode compare;
    long expected;
  } cases[] = {
      {"a.b.c", ".", -1, kExact, 4},   {"a.b.c", ".", 3, kExact, 2},
      {"a.b.c", ".", 4, kExact, 4},    {"a.b.c", ".", 0, kExact, 0},
      {"a.b.c", ".", 99, kExact, 4},   {"xAbab", "AB", -1, kExact, 0},
      {"xAbab", "AB", -1, kFolded, 4}, {"xAbab", "AB", 4, kFolded, 2},
      {"ab", "abc", -1, kFolded, 0},   {"", "a", -1, kFolded, 0},
      {"abc", "", 2, kFolded, 3},      {"abc", "", 2, kExact, 3},
  };
  // clang-format on
  for (const auto& c : cases) {
    EXPECT_EQ(InStrRev(c.text, c.find, c.start, c.compare), c.expected) << c.text << c.find;
  }
  EXPECT_EQ(StrReverse("ab\xFF"),
            "\xFF"
            "ba");
}

TEST(MVb6Functions, SplitWithLimit) {
  EXPECT_EQ(Split("a,b,c", ",", -1), (Parts{"a", "b", "c"}));
  EXPECT_EQ(Split("a,b,c", ",", 2), (Parts{"a", "b,c"}));
  EXPECT_EQ(Split("a,b,", ",", 3), (Parts{"a", "b", ""}));
  EXPECT_EQ(Split("a,b", ",", 1), Parts{"a,b"});
  EXPECT_EQ(Split("a,b", ",", 0), Parts{});
  EXPECT_EQ(Split("", ",", 5), Parts{});
  EXPECT_EQ(Split("a", "", 5), Parts{"a"});
  EXPECT_EQ(Split("1xX2Xx3", "XX", -1, CompareMode::kText), (Parts{"1", "2", "3"}));
  EXPECT_EQ(Split("1xX2", "XX", -1), Parts{"1xX2"});
}

TEST(Like, Patterns) {
  const struct {
    std::string pattern;
    Parts fitting, others;
  } cases[] = {
      {"", {""}, {"a"}},
      {"*", {""}, {}},
      {"a*c", {"abc", "ac"}, {"Abc"}},
      {"*ab", {"abcab"}, {"abcabd"}},
      {"*X*X*", {"abXcdXef"}, {}},
      {"a#", {"a1"}, {"ab"}},
      {"a?", {"ab"}, {"a"}},
      {"a**", {"a"}, {}},
      {"[a-c]", {"b"}, {"d", "-"}},
      {"[!a-c]", {"d"}, {"b"}},
      {"[a-]", {"-"}, {}},
      {"[-a]", {"-"}, {}},
      {"]", {"]"}, {}},
      {"[[]", {"["}, {}},
      {"[*]", {"*"}, {"x"}},
      {"a[]b", {"ab"}, {}},
      {"[!]", {"!"}, {"x"}},
      {"[a!]", {"!"}, {}},
      {"[a]]", {"a]"}, {}},
      {"[!a]", {}, {""}},
      {"[\xE0-\xFF]", {"\xE9"}, {}},
      {"?", {"\xE9"}, {}},
      {"*[.]ads.*", {"www.ads.example"}, {}},
  };
  for (const auto& c : cases) {
    for (const std::string& text : c.fitting)
      EXPECT_TRUE(Like(text, c.pattern)) << text << c.pattern;
    for (const std::string& text : c.others)
      EXPECT_FALSE(Like(text, c.pattern)) << text << c.pattern;
  }
  for (const char* invalid : {"[", "a[b", "[z-a]", "*["}) {
    EXPECT_THROW(Like("x", invalid), RuntimeError) << invalid;
  }
}

TEST(Like, HostilePatternsEndInTime) {
  std::string pattern;
  for (int i = 0; i < 2000; ++i) pattern += "*a";
  EXPECT_FALSE(Like(std::string(20'000, 'a'), pattern + "b"));
  EXPECT_FALSE(MatchesFilePattern(std::string(20'000, 'a'), pattern + "b"));
}

TEST(FilePattern, Matches) {
  const struct {
    std::string name, pattern;
    bool fits;
  } cases[] = {
      {"a.txt", "*.*", true},
      {"README", "*.*", true},
      {"README", "read*.*", true},
      {"a.TXT", "*.txt", true},
      {"a.txtx", "*.txt", false},
      {"ab", "a?", true},
      {"a", "a?", false},
      {"a", "*", true},
      {"a", "", false},
      {"[x]", "[x]", true},
      {"a.b.c", "a.*", true},
      {"ab", "a.*", false},
      {"\xC3\xA4.a", "\xC3\x84.?", true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MatchesFilePattern(c.name, c.pattern), c.fits) << c.name << " " << c.pattern;
  }
}

TEST(Paths, Texts) {
  using namespace std::string_literals;
  EXPECT_EQ(GetPathWithSlash("   "), "");
  EXPECT_EQ(GetPathWithSlash("C:\\"), "C:\\");
  EXPECT_EQ(GetPathWithSlash(" C:\\a "), " C:\\a \\");
  EXPECT_EQ(FileName_Parse("C:\\a\\b.txt"), "b.txt");
  EXPECT_EQ(FileName_Parse("C:\\a\0\\b.txt"s), "a");
  EXPECT_EQ(FileName_Parse("b.txt"), "");
  EXPECT_EQ(FileName_Parse("C:\\"), "");
  EXPECT_EQ(GetFileExtension("a.b.TXT "), "txt");
  EXPECT_EQ(GetFileExtension("a"), "");
  EXPECT_EQ(GetFileExtension("a."), "");
  EXPECT_EQ(StripNulls("two words"), "two");
  EXPECT_EQ(StripNulls("two words\0x"s), "two words");
  EXPECT_EQ(StripNulls("word"), "word");
  EXPECT_EQ(VersionRecordText(), "3.0.4");
}

}  // namespace
}  // namespace quarnel
