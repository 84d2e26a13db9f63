#include "protection/startup_locations.h"

#include <gmock/gmock.h>

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

TEST(StartupPath, IsThatOfTheProgramAlone) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"  C:\\a.exe ", "C:\\a.exe"},
      {"\"C:\\Program Files\\a.exe\" /min -x", "C:\\Program Files\\a.exe"},
      {"C:\\a.exe -x /min", "C:\\a.exe"},
      {"C:\\a.exe -x", "C:\\a.exe"},
      {"C:\\a -b\\c.exe", "C:\\a"},
      {"C:\\a -b \\c.exe", "C:\\a -b \\c.exe"},
      {"C:\\a,b.exe,", "C:\\ab.exe"},
      {"/x", "/x"},
  };
  for (const auto& [value, path] : cases) EXPECT_EQ(startup::CleanStartupPath(value), path);
}

class StartupLocationsTest : public PlatformTest {
 protected:
  static constexpr uint32_t kHives[] = {hive::kLocalMachine, hive::kCurrentUser};
  static constexpr const char* kKeys[] = {"Run", "RunOnce", "RunOnceEx", "RunServices",
                                          "RunServicesOnce"};

  ~StartupLocationsTest() override { Sweep(); }
  void Sweep() {
    for (const uint32_t hive : kHives) {
      for (const char* key : kKeys) DeleteValue(registry(), hive, kPrefix + key, "quarnel test");
    }
  }
  // Where the value stands, as "LM Run;", with what it holds.
  std::string Found() {
    std::string found;
    for (const uint32_t hive : kHives) {
      for (const char* key : kKeys) {
        const std::string data = QueryText(registry(), hive, kPrefix + key, "quarnel test");
        if (data.empty()) continue;
        found +=
            (hive == hive::kLocalMachine ? "LM " : "CU ") + std::string(key) + "=" + data + ";";
      }
    }
    return found;
  }

  const std::string kPrefix = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
  startup::Reach reach{files(), registry(), machine(), platform().shell()};
};

TEST_F(StartupLocationsTest, BlockAndAllowKeepTheirOwnTables) {
  const struct {
    const char* section;
    const char* gone;
    const char* written;
  } cases[] = {
      {"Registry Local Machine Run", "LM Run=x;", "LM Run=p;"},
      {"[Registry Local Machine RunOnce] ", "CU RunServicesOnce=x;", "CU Run=p;"},
      {"Registry Local Machine RunOnceEx", "CU RunServices=x;", "CU Run=p;"},
      {"Registry Current User Run", "CU Run=x;", "CU Run=p;"},
      {"Registry Current User RunOnce", "LM RunServicesOnce=x;", "LM Run=p;"},
      {"Registry Current User RunOnceEx", "LM RunServices=x;", "LM Run=p;"},
      {"Winlogon Shell", "", ""},
      {"Winlogon Userinit", "", ""},
      {"Registry Local Machine RunServices", "", ""},
      {"Registry Local Machine RunServicesOnce", "", ""},
      {"Registry Current User RunServices", "", ""},
      {"Registry Current User RunServicesOnce", "", ""},
      {"no section", "", ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.section);
    const StartupEntry entry{.name = "quarnel test", .path = "p", .section = test.section};
    for (const uint32_t hive : kHives) {
      for (const char* key : kKeys) {
        RegCreateKeyValue(registry(), hive, kPrefix + key, entry.name, std::string("x"));
      }
    }
    const std::string all = Found();
    startup::BlockStartup(reach, entry);
    const std::string left = Found();
    const size_t place = *test.gone == '\0' ? 0 : all.find(test.gone);
    ASSERT_NE(place, std::string::npos);
    EXPECT_EQ(left, std::string(all).erase(place, std::string(test.gone).size()));
    Sweep();
    startup::AllowStartup(reach, entry);
    EXPECT_EQ(Found(), test.written);
  }
}

TEST_F(StartupLocationsTest, ValuesAreReadAsTheirBuffersHoldThem) {
  const std::string path = Key("Run");
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(registry().Create(kRoot, path, key), RegistryStatus::kSuccess);
  const auto wide = [](std::string_view text) {
    std::string bytes;
    for (const char c : text) (bytes += c) += '\0';
    return bytes;
  };
  key->Set("a", {ValueType::kExpandString, wide(std::string_view("%SystemRoot%\\a\0b", 16))});
  key->Set("b", {ValueType::kMultiString, wide("b")});
  key->Set("c", {ValueType::kDword, "1234"});
  key->Set("d", {ValueType::kString, wide(std::string(255, 'd'))});
  const auto met = [&] {
    std::vector<std::string> all;
    startup::EnumerateRegKeyValues(registry(), {kRoot, path},
                                   [&](const std::string& name, const std::string& value) {
                                     all.push_back(name + "=" + value);
                                     return true;
                                   });
    return all;
  };
  using testing::ElementsAre;
  EXPECT_THAT(met(), ElementsAre("a=%SystemRoot%\\a", "b=", "c=", "d=" + std::string(255, 'd')));
  key->Set("d", {ValueType::kString, wide(std::string(256, 'd'))});
  key->Set("e", {ValueType::kString, wide("hidden")});
  EXPECT_THAT(met(), testing::SizeIs(3));
}

}  // namespace
}  // namespace quarnel
