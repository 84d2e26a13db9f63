#include "signatures/taxonomy.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

TEST(Taxonomy, TypeNameByTheNumberInFront) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "Worm"},
      {"0", "Worm"},
      {"no number", "Worm"},
      {"1", "Adware"},
      {" 13", "Generic Malware"},
      {"30 or so", "explosives"},
      {"53", "Proxy"},
      {"54", "Unknown"},
      {"-1", "Unknown"},
      {"1.5", "Unknown"},
      {"1e300", "Unknown"},
      {"5", "Commercial Network Managment Tool"},
  };
  for (const auto& [code, name] : cases) EXPECT_EQ(GetTypeOfSpyWare(code), name) << code;
  EXPECT_EQ(ThreatTypes().size(), 54U);
}

TEST(Taxonomy, HiveHandlesAndNames) {
  EXPECT_EQ(GetMainKeyFromFile("3"), 0x80000003U);
  EXPECT_EQ(GetMainKeyFromFile("4"), 0x80000005U);
  EXPECT_EQ(GetMainKeyFromFile("5"), 0x80000006U);
  EXPECT_EQ(GetMainKeyFromFile("6"), 0U);
  EXPECT_EQ(GetMainKeyFromFile("-1"), 0U);
  EXPECT_EQ(HiveName(GetMainKeyFromFile("2")), "HKEY_LOCAL_MACHINE");
  EXPECT_EQ(HiveName(0x80000004), "");
}

}  // namespace
}  // namespace quarnel
