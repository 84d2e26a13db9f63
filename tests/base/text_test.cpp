#include "base/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/unicode.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using namespace std::string_literals;
using Parts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Text, Val) {
  // clang-format off
  const struct {
    std::string text;
    double expected;
  } cases[] = {
      {"", 0}, {"abc", 0}, {" 1 2\t3 ", 123}, {"12abc", 12}, {"1,5", 1}, {"-.5x", -.5}, {"5.", 5},
      {".", 0}, {"1.2.3", 1.2}, {"1e3", 1000}, {"1D-2", .01}, {"1e", 1}, {"1e+", 1}, {"- 7", -7},
      {"True", 0}, {"11/22/2026", 11}, {"&HFF", 255}, {"&hFFFF", -1}, {"&H10000", 65536},
      {"&HFFFFFFFF", -1}, {"&O17", 15}, {"&O8", 0}, {"&H", 0}, {"&HG", 0},
      {"&H1FFFFFFFF", kInfinity}, {"1e999", kInfinity}, {"-1e999", -kInfinity}, {"1e-999", 0},
      {"0e999", 0}, {"1\0"s, 1}, {"\xFF", 0},
  };
  // clang-format on
  for (const auto& c : cases) EXPECT_EQ(Val(c.text), c.expected) << c.text;
  for (const std::string zero :
       {"1e-99999999999999999999", "1e-9223372036854775808", "0e99999999999999999999"}) {
    EXPECT_EQ(Val(zero), 0) << zero;
  }
  EXPECT_EQ(Val("." + std::string(380, '0') + "1"), 0);
  for (const std::string& huge :
       {"1e99999999999999999999"s, "1e9223372036854775807"s, std::string(390, '9')}) {
    EXPECT_EQ(Val(huge), kInfinity) << huge;
  }
  EXPECT_EQ(ValLong("1e999"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(ValLong("-3000000000"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(ValLong("2.9"), 2);
}

TEST(Text, ConversionsRefuse) {
  const auto numberOf = [](const auto& convert) {
    return static_cast<int>(ErrorOf(convert).value_or(ErrorNumber()));
  };
  const struct {
    std::string text;
    int integer, whole, boolean;  // the error numbers of the three conversions
  } cases[] = {
      {" 7 ", 0, 0, 0},    {"", 13, 13, 13},     {"x", 13, 13, 13},     {"7x", 13, 13, 13},
      {"32768", 6, 0, 0},  {"32767.5", 6, 0, 0}, {"-32768.5", 0, 0, 0}, {"2147483648", 6, 6, 0},
      {"1e999", 6, 6, 0},  {"&H", 13, 13, 13},   {"&O8", 13, 13, 13},   {"&HFFFFFFFFF", 6, 6, 0},
      {"tRue", 13, 13, 0}, {"1-", 13, 13, 13},   {"nan", 13, 13, 13},   {"inf", 13, 13, 13},
  };
  for (const auto& c : cases) {
    const std::string_view text = c.text;
    EXPECT_EQ(numberOf([&] { ToInteger(text); }), c.integer) << text;
    EXPECT_EQ(numberOf([&] { ToLong(text); }), c.whole) << text;
    EXPECT_EQ(numberOf([&] { ToBoolean(text); }), c.boolean) << text;
    EXPECT_EQ(ToBooleanOr(text, true) != ToBooleanOr(text, false), c.boolean != 0) << text;
  }
  EXPECT_THROW(ToLong(std::nan("")), RuntimeError);
}

TEST(Text, ConversionsRoundHalfToEven) {
  EXPECT_EQ(ToLong("0.5"), 0);
  EXPECT_EQ(ToLong("1.5"), 2);
  EXPECT_EQ(ToLong("-2.5"), -2);
  EXPECT_EQ(ToInteger(2.5), 2);
  EXPECT_TRUE(ToBoolean("-1"));
  EXPECT_FALSE(ToBoolean("0.0"));
}

TEST(Text, SingleText) {
  const struct {
    float value;
    std::string expected;
  } cases[] = {{7, "7"},
               {.5F, "0.5"},
               {-.25F, "-0.25"},
               {37516.25F, "37516.25"},
               {86399.99F, "86399.99"},
               {100000, "100000"},
               {1e7F, "1E+07"},
               {1.F / 3, "0.3333333"}};
  for (const auto& c : cases) EXPECT_EQ(SingleText(c.value), c.expected);
}

TEST(Text, FindsAndFolds) {
  EXPECT_EQ(FindText("abCd", "Cd"), 2u);
  EXPECT_EQ(FindText("abcabc", "BC", 2), 4u);
  EXPECT_EQ(FindText("abc", "c", 3), std::string::npos);
  EXPECT_EQ(FindText("abc", "", 3), 3u);
  EXPECT_EQ(FindText("abc", "", 4), std::string::npos);
  EXPECT_FALSE(EqualText("\xC4", "\xE4"));  // only ASCII letters fold
  EXPECT_FALSE(EqualText("@", "`"));
  EXPECT_FALSE(EqualText("a", "a\0"s));
  EXPECT_TRUE(LessText()("aZ", "\xE4"));
  EXPECT_FALSE(LessText()("B", "a"));
  EXPECT_TRUE(StartsWithText("ABC", "ab") && !StartsWithText("a", "ab"));
  EXPECT_TRUE(EndsWithText("x.LNK", ".lnk") && !EndsWithText("k", "lnk"));
  EXPECT_EQ(Trim("  a\t "), "a\t");
  EXPECT_EQ(Trim("   "), "");
}

TEST(Text, SplitsAndReplaces) {
  EXPECT_EQ(Split("a,,b,", ","), (Parts{"a", "", "b", ""}));
  EXPECT_EQ(Split("", ","), Parts{});
  EXPECT_EQ(Split("a", ""), Parts{"a"});
  EXPECT_EQ(Split("[[[]]", "[[]]"), Parts({"[", ""}));
  EXPECT_EQ(Join({"a", "", "b"}, "[[]]"), "a[[]][[]]b");
  EXPECT_EQ(Replace("aaa", "aa", "b"), "ba");
  EXPECT_EQ(Replace("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(Replace("abc", "", "x"), "abc");
  EXPECT_EQ(Replace("Aa", "a", ""), "A");
}

TEST(Unicode, KnownForms) {
  const struct {
    std::string utf8;
    std::u16string utf16;
  } cases[] = {
      {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"a\u00E9\u20AC\U0001F600"},
      {std::string("\0x", 2), std::u16string(u"\0x", 2)},
      {"\xED\xA0\xBDx", {0xD83D, u'x'}},                       // a lone surrogate
      {"\x80\xFF", {0xDC80, 0xDCFF}},                          // bytes that are no UTF-8
      {"\xC0\xAF", {0xDCC0, 0xDCAF}},                          // overlong
      {"\xE2\x82", {0xDCE2, 0xDC82}},                          // cut off
      {"\xF4\x90\x80\x80", {0xDCF4, 0xDC90, 0xDC80, 0xDC80}},  // behind the last code point
      {"\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToUtf16(c.utf8), c.utf16) << c.utf8;
    EXPECT_EQ(ToUtf8(c.utf16), c.utf8) << c.utf8;
  }
  // Escaped bytes that would read as a character keep their long form.
  EXPECT_EQ(ToUtf8(std::u16string{0xDCC3, 0xDCA9}), "\xED\xB3\x83\xED\xB2\xA9");
}

TEST(Unicode, EveryNameSurvives) {
  std::mt19937 random(1);
  const char16_t edges[] = {0,      'a',    0x7F,   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800,
                            0xDBFF, 0xDC00, 0xDC80, 0xDCC3, 0xDCA9, 0xDCFF, 0xDFFF, 0xFFFF};
  for (int turn = 0; turn < 20'000; ++turn) {
    std::u16string name;
    for (size_t length = random() % 6; length > 0; --length) {
      name += random() % 4 == 0 ? static_cast<char16_t>(random()) : edges[random() % 16];
    }
    ASSERT_EQ(ToUtf16(ToUtf8(name)), name);
    std::string bytes;
    for (size_t length = random() % 8; length > 0; --length) bytes += static_cast<char>(random());
    const std::u16string wide = ToUtf16(bytes);
    ASSERT_EQ(ToUtf16(ToUtf8(wide)), wide);
  }
}

}  // namespace
}  // namespace quarnel
