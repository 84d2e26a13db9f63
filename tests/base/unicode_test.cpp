#include "base/unicode.h"

#include <gtest/gtest.h>

#include <random>

namespace quarnel {
namespace {

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
