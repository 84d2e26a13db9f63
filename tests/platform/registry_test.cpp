#include "platform/registry.h"

#include <gmock/gmock.h>

#include <utility>

#include "base/text.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using enum RegistryStatus;

class RegistryTest : public PlatformTest {
 protected:
  std::unique_ptr<RegistryKey> Make(std::string_view name) {
    std::unique_ptr<RegistryKey> key;
    EXPECT_EQ(registry().Create(kRoot, Key(name), key), kSuccess) << name;
    return key;
  }
  RegistryStatus Open(std::string_view path) {
    std::unique_ptr<RegistryKey> key;
    return registry().Open(kRoot, path, registry_access::kRead, key);
  }
};

TEST_F(RegistryTest, ReadsValuesAsTheProgramSeesThem) {
  const auto wide = [](std::string_view text) {
    std::string bytes;
    for (const char c : text) bytes.append({c, '\0'});
    return bytes;
  };
  const struct {
    const char* what;
    RawValue raw;
    std::optional<RegistryValue> value;
  } cases[] = {
      {"text", {ValueType::kString, wide({"ab\0", 3})}, "ab"},
      {"empty text", {ValueType::kString, wide({"\0", 1})}, ""},
      {"no bytes", {ValueType::kString, ""}, ""},
      {"no terminator", {ValueType::kString, wide("ab")}, "ab"},
      {"odd byte", {ValueType::kString, wide("ab") + "x"}, "ab"},
      {"one byte", {ValueType::kString, "x"}, ""},
      {"NUL inside", {ValueType::kString, wide({"a\0b\0", 4})}, std::string("a\0b", 3)},
      {"outside ASCII", {ValueType::kString, std::string("\xAC\x20\0\0", 4)}, "\xE2\x82\xAC"},
      {"lone surrogate", {ValueType::kString, std::string("\x00\xD8\0\0", 4)}, "\xED\xA0\x80"},
      {"number", {ValueType::kDword, "\x01\x02\x03\xFF"}, 0xFF030201U},
      {"short number", {ValueType::kDword, "\x01\x02"}, 0x201U},
      {"long number", {ValueType::kDword, "12345"}, std::nullopt},
      {"expandable", {ValueType::kExpandString, wide({"a\0", 2})}, std::nullopt},
      {"binary", {ValueType::kBinary, "1234"}, std::nullopt},
      {"several texts", {ValueType::kMultiString, wide({"a\0\0", 3})}, std::nullopt},
      {"no type", {ValueType::kNone, ""}, std::nullopt},
      {"unknown type", {static_cast<ValueType>(0x12345), "1234"}, std::nullopt},
  };
  const auto key = Make("values");
  for (const auto& test : cases) {
    EXPECT_EQ(ValueFromRaw(test.raw), test.value) << test.what;
    ASSERT_EQ(key->Set(test.what, test.raw), kSuccess) << test.what;
    RawValue raw;
    ASSERT_EQ(key->Query(ToUpper(test.what), raw), kSuccess) << test.what;
    EXPECT_EQ(raw.type, test.raw.type) << test.what;
    EXPECT_EQ(raw.data, test.raw.data) << test.what;
    RegistryValue value = "unchanged";
    EXPECT_EQ(QueryValue(registry(), kRoot, Key("values"), test.what, value),
              test.value.has_value());
    EXPECT_EQ(value, test.value.value_or("unchanged")) << test.what;
    if (!test.value) continue;
    EXPECT_EQ(ValueFromRaw(RawFromValue(*test.value)), test.value) << test.what;
  }
}

TEST_F(RegistryTest, ValuesAreFoundInAnyCaseAndKeepTheirFirstSpelling) {
  const auto key = Make("values");
  const auto set = [&](std::string_view name, const RegistryValue& value) {
    EXPECT_EQ(key->Set(name, RawFromValue(value)), kSuccess) << name;
  };
  set("Zebra", "1");
  set("", "default");
  set("apple", 7U);
  set("ZEBRA", "2");
  // Values have no order that holds everywhere.
  Strings names(3);
  for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(key->EnumValue(i, names[i]), kSuccess);
  EXPECT_THAT(names, testing::UnorderedElementsAre("Zebra", "", "apple"));
  EXPECT_EQ(key->EnumValue(3, names[0]), kNoMoreItems);
  EXPECT_EQ(QueryText(registry(), kRoot, ToUpper(Key("values")), "zebra"), "2");
  EXPECT_EQ(QueryText(registry(), kRoot, Key("values"), ""), "default");
  EXPECT_EQ(QueryText(registry(), kRoot, Key("values"), "Apple"), "7");
  EXPECT_EQ(QueryText(registry(), kRoot, Key("values"), "none"), "");
  set("größe", "3");
  EXPECT_EQ(QueryText(registry(), kRoot, Key("values"), "GRÖßE"), "3");
  EXPECT_EQ(DeleteValue(registry(), kRoot, Key("values"), "GRöße"), kSuccess);
  EXPECT_EQ(DeleteValue(registry(), kRoot, Key("values"), "zebrA"), kSuccess);
  EXPECT_EQ(DeleteValue(registry(), kRoot, Key("values"), "zebrA"), kFileNotFound);
  EXPECT_EQ(DeleteValue(registry(), kRoot, Key("none"), "zebrA"), kFileNotFound);
  RawValue raw;
  EXPECT_EQ(key->Query("Zebra", raw), kFileNotFound);
}

TEST_F(RegistryTest, GetKeyValueShowsNumbersAsHexadecimalText) {
  const auto key = Make("browser");
  for (const auto& [number, text] : {std::pair{0U, "&h0"}, std::pair{0xABCDEF01U, "&hABCDEF01"}}) {
    key->Set("n", RawFromValue(number));
    std::string got;
    EXPECT_TRUE(GetKeyValue(registry(), kRoot, Key("browser"), "n", got));
    EXPECT_EQ(got, text);
  }
  std::string got;
  EXPECT_FALSE(GetKeyValue(registry(), kRoot, Key("browser"), "other", got));
}

TEST_F(RegistryTest, KeysAreMadeWithTheirParentsAndFoundInAnyCase) {
  Make("One\\Two\\\xC3\x84gypten");
  EXPECT_EQ(Open(Key("one\\TWO\\\xC3\x84gypten")), kSuccess);
  EXPECT_EQ(Open(Key("one\\TWO\\\xC3\xA4GYPTEN")), kSuccess);
  EXPECT_EQ(Open(Key("One\\Two\\")), kSuccess);
  EXPECT_EQ(Open(Key("One\\Three")), kFileNotFound);
  EXPECT_EQ(Open(Key("One\\Two\\Three\\Four")), kFileNotFound);
  EXPECT_EQ(Open(""), kSuccess);
  EXPECT_NE(Open("\\" + Key("One")), kSuccess);
  EXPECT_EQ(CreateNewKey(registry(), kRoot, Key("one\\two")), kSuccess);
  EXPECT_NE(CreateNewKey(registry(), kRoot, Key(std::string(300, 'k'))), kSuccess);
  for (const char* name : {"b", "C", "a"}) Make("One\\" + std::string(name));
  EXPECT_EQ(EnumSubKeys(registry(), kRoot, Key("one")), (Strings{"a", "b", "C", "Two"}));
  EXPECT_TRUE(EnumSubKeys(registry(), kRoot, Key("none")).empty());
}

TEST_F(RegistryTest, EnumerationFollowsChanges) {
  const auto key = Make("list");
  for (const char* name : {"a", "b", "c"}) Make("list\\" + std::string(name));
  std::string name;
  EXPECT_EQ(key->EnumKey(1, name), kSuccess);
  EXPECT_EQ(name, "b");
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("list\\a")), kSuccess);
  EXPECT_EQ(key->EnumKey(1, name), kSuccess);
  EXPECT_EQ(name, "c");
  EXPECT_EQ(key->EnumKey(2, name), kNoMoreItems);
}

TEST_F(RegistryTest, RootsAreNumbers) {
  for (const uint32_t root : {hive::kClassesRoot, hive::kCurrentUser, hive::kLocalMachine,
                              hive::kUsers, hive::kCurrentConfig}) {
    std::unique_ptr<RegistryKey> key;
    EXPECT_EQ(registry().Open(root, "", registry_access::kRead, key), kSuccess) << root;
  }
  for (const uint32_t root : {0U, 1U, 0x80000009U, 0xFFFFFFF0U}) {
    std::unique_ptr<RegistryKey> key;
    EXPECT_EQ(registry().Open(root, "Software", registry_access::kRead, key), kInvalidHandle);
    EXPECT_EQ(CreateNewKey(registry(), root, "Software\\QuarnelTest"), kInvalidHandle);
    EXPECT_EQ(DeleteKey(registry(), root, "Software\\QuarnelTest"), kInvalidHandle);
    EXPECT_EQ(registry().SetKeySecurity(root, "x", registry().AccountName(), 1), "RegOpenKeyEx");
  }
}

TEST_F(RegistryTest, AnOpenKeyHasTheRightsThatItWasOpenedWith) {
  Make("rights")->Set("v", RawFromValue("1"));
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(registry().Open(kRoot, Key("rights"), registry_access::kRead, key), kSuccess);
  RawValue raw;
  EXPECT_EQ(key->Query("v", raw), kSuccess);
  EXPECT_EQ(key->Set("v", raw), kAccessDenied);
  EXPECT_EQ(key->DeleteValue("v"), kAccessDenied);
}

TEST_F(RegistryTest, ADeletedKeyAnswersSo) {
  const auto key = Make("gone");
  key->Set("v", RawFromValue("1"));
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("gone")), kSuccess);
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("gone")), kFileNotFound);
  RawValue raw{ValueType::kString, ""};
  std::string name;
  EXPECT_EQ(key->Query("v", raw), kKeyDeleted);
  EXPECT_EQ(key->Set("v", raw), kKeyDeleted);
  EXPECT_EQ(key->EnumKey(0, name), kKeyDeleted);
  // A new key of the same name has none of the old one's values.
  EXPECT_EQ(Make("gone")->Query("v", raw), kFileNotFound);
}

TEST_F(RegistryTest, SetKeyValueLosesTheValueOfANewKey) {
  const auto set = [&](const RegistryValue& value, ValueType type) {
    return SetKeyValue(registry(), kRoot, Key("restored"), "v", value, type);
  };
  const auto text = [&] { return QueryText(registry(), kRoot, Key("restored"), "v"); };
  EXPECT_NE(set("first", ValueType::kString), kSuccess);
  EXPECT_EQ(Open(Key("restored")), kSuccess);
  EXPECT_EQ(text(), "");
  EXPECT_EQ(set("second", ValueType::kString), kSuccess);
  EXPECT_EQ(text(), "second");
  EXPECT_EQ(set("third", ValueType::kBinary), kSuccess);
  EXPECT_EQ(text(), "second");
  EXPECT_EQ(set("007", ValueType::kDword), kSuccess);
  EXPECT_EQ(text(), "7");
  EXPECT_EQ(set("4294967295", ValueType::kDword), kInvalidParameter);
  EXPECT_EQ(text(), "7");
  EXPECT_EQ(RegCreateKeyValue(registry(), kRoot, Key("other"), "v", "kept"), kSuccess);
  EXPECT_EQ(QueryText(registry(), kRoot, Key("other"), "v"), "kept");
}

TEST_F(RegistryTest, DeleteKeyTreeGoesInnermostFirst) {
  for (const char* name : {"tree\\a\\1", "tree\\a\\2", "tree\\b"}) Make(name);
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("tree")), kAccessDenied);
  int turns = 0;
  EXPECT_EQ(DeleteKeyTree(registry(), kRoot, Key("tree"), [&] { ++turns; }), kSuccess);
  EXPECT_EQ(turns, 4);
  EXPECT_EQ(Open(Key("tree")), kFileNotFound);
  EXPECT_EQ(DeleteKeyTree(registry(), kRoot, Key("tree"), nullptr), kFileNotFound);
  // It ends when somebody makes keys anew.
  Make("tree\\back");
  turns = 0;
  EXPECT_EQ(DeleteKeyTree(registry(), kRoot, Key("tree"),
                          [&] { turns += Make("tree\\back") != nullptr; }),
            kAccessDenied);
  EXPECT_EQ(turns, 1);
}

TEST_F(RegistryTest, SetKeySecurityNamesTheStepThatFailed) {
  Make("secured");
  const std::string account = registry().AccountName();
  EXPECT_EQ(registry().SetKeySecurity(kRoot, Key("secured"), "no such account", 1),
            "LookupAccountName");
  EXPECT_EQ(registry().SetKeySecurity(kRoot, Key("none"), account, 1), "RegOpenKeyEx");
  EXPECT_EQ(registry().SetKeySecurity(kRoot, Key("secured"), account, registry_access::kDelete),
            "");
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("secured")), kSuccess);
}

}  // namespace
}  // namespace quarnel
