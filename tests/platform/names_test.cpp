#include "platform/names.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

TEST(FoldName, TakesEachLetterToItsUpperCase) {
  const struct {
    std::string_view name, folded;
  } cases[] = {
      {"", ""},
      {"Plain name.txt", "PLAIN NAME.TXT"},
      {"ävil.txt", "ÄVIL.TXT"},
      {"ñ ø ÿ", "Ñ Ø Ÿ"},
      {"čšž", "ČŠŽ"},
      {"αω ж", "ΑΩ Ж"},
      {"straße", "STRAßE"},                      // no letter becomes two
      {"ıſ", "ıſ"},                              // nor one of ASCII
      {"\xF0\x90\x90\xA8", "\xF0\x90\x90\xA8"},  // a letter of two units
      {"a\xFFz \xED\xA0\x80 \xC3", "A\xFFZ \xED\xA0\x80 \xC3"},
  };
  for (const auto& [name, folded] : cases) {
    EXPECT_EQ(FoldName(name), folded) << name;
    EXPECT_EQ(FoldName(folded), folded) << name;
    EXPECT_TRUE(EqualNames(name, folded)) << name;
  }
  EXPECT_FALSE(EqualNames("ävil", "avil"));
}

}  // namespace
}  // namespace quarnel
