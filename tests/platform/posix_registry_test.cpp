#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "base/host_files.h"
#include "platform/posix/backends.h"
#include "platform/posix/registry/sqlite_store.h"
#include "support/platform_fixture.h"

// What the registry of a machine folder does beside the contract of all registries: rights of keys,
// several programs at once, and databases that are none.
namespace quarnel {
namespace {

using enum RegistryStatus;

class PosixRegistryTest : public PlatformTest {
 protected:
  std::string File() const { return machineFolder() + "/registry.db"; }

  std::string Bytes() const { return ReadHostFile(File()); }
  static std::string FullKey(std::string_view name) {
    return "HKEY_USERS\\" + MachineOptions().sid + "\\" + Key(name);
  }
  void SetRights(std::string_view name, const KeyRights& rights) {
    SqliteStore store(File());
    const auto key = store.Find(FullKey(name));
    ASSERT_TRUE(key) << name;
    store.SetRights(key->id, rights);
  }
  RegistryStatus Open(std::string_view name, uint32_t access) {
    std::unique_ptr<RegistryKey> key;
    return registry().Open(kRoot, Key(name), access, key);
  }
};

TEST_F(PosixRegistryTest, RightsDecideWhatMayBeDone) {
  RegCreateKeyValue(registry(), kRoot, Key("locked"), "v", "1");
  CreateNewKey(registry(), kRoot, Key("locked\\sub"));
  SetRights("locked", {"user", {{{"USER", registry_access::kRead}, {"SYSTEM", 0xF003F}}}});
  EXPECT_EQ(Open("locked", registry_access::kRead), kSuccess);
  EXPECT_EQ(Open("locked", registry_access::kReadWrite), kAccessDenied);
  EXPECT_EQ(Open("locked", registry_access::kGenericAll), kAccessDenied);
  EXPECT_EQ(CreateNewKey(registry(), kRoot, Key("locked\\new")), kAccessDenied);
  EXPECT_EQ(registry().Delete(kRoot, Key("locked\\sub")), kSuccess);
  EXPECT_EQ(registry().Delete(kRoot, Key("locked")), kAccessDenied);
  // Its owner gives himself the right, twice with one effect, and then the deletion runs.
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_EQ(registry().SetKeySecurity(kRoot, Key("locked"), "user", registry_access::kDelete),
              "");
  }
  EXPECT_EQ(SqliteStore(File()).Find(FullKey("locked"))->rights.list->size(), 3U);
  EXPECT_EQ(DeleteKey(registry(), kRoot, Key("locked")), kSuccess);
}

TEST_F(PosixRegistryTest, WithoutTheRightToChangeRightsAKeyStays) {
  CreateNewKey(registry(), kRoot, Key("tree\\foreign"));
  SetRights("tree\\foreign", {"SYSTEM", {{{"Everyone", registry_access::kRead}}}});
  EXPECT_EQ(registry().SetKeySecurity(kRoot, Key("tree\\foreign"), "user", 0x10000),
            "RegOpenKeyEx");
  int turns = 0;
  EXPECT_EQ(DeleteKeyTree(registry(), kRoot, Key("tree"), [&] { ++turns; }), kAccessDenied);
  EXPECT_EQ(turns, 0);
  EXPECT_EQ(Open("tree\\foreign", registry_access::kRead), kSuccess);
}

TEST_F(PosixRegistryTest, NewKeysTakeOverTheRightsOfTheirParent) {
  CreateNewKey(registry(), kRoot, Key("parent"));
  SetRights("parent", {std::nullopt, {{{"user", registry_access::kRead | 4}}}});
  EXPECT_EQ(CreateNewKey(registry(), kRoot, Key("parent\\child")), kSuccess);
  EXPECT_EQ(Open("parent\\child", registry_access::kReadWrite), kAccessDenied);
}

TEST_F(PosixRegistryTest, RootsAreViewsOfOneTree) {
  const struct {
    uint32_t root, target;
    std::string path;
  } cases[] = {{hive::kCurrentUser, hive::kUsers, MachineOptions().sid},
               {hive::kClassesRoot, hive::kLocalMachine, "Software\\Classes"},
               {hive::kCurrentConfig, hive::kLocalMachine,
                "System\\CurrentControlSet\\Hardware Profiles\\Current"}};
  for (const auto& [root, target, path] : cases) {
    RegCreateKeyValue(registry(), root, "QuarnelTest", "v", "seen");
    EXPECT_EQ(QueryText(registry(), target, path + "\\QuarnelTest", "v"), "seen");
    EXPECT_EQ(DeleteKey(registry(), target, path + "\\QuarnelTest"), kSuccess);
    EXPECT_EQ(DeleteKey(registry(), target, path), kAccessDenied);
  }
  EXPECT_EQ(CreateNewKey(registry(), hive::kDynData, "x"), kInvalidHandle);
}

TEST_F(PosixRegistryTest, TwoProgramsSeeEachOthersChanges) {
  const auto other = OpenPlatform(machineFolder());
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(registry().Create(kRoot, Key("shared"), key), kSuccess);
  std::string name;
  EXPECT_EQ(key->EnumKey(0, name), kNoMoreItems);
  CreateNewKey(other->registry(), kRoot, Key("shared\\sub"));
  EXPECT_EQ(key->EnumKey(0, name), kSuccess);
  DeleteKeyTree(other->registry(), kRoot, Key("shared"), nullptr);
  EXPECT_EQ(key->EnumKey(0, name), kKeyDeleted);
}

TEST_F(PosixRegistryTest, RefusesADatabaseThatIsNone) {
  const std::string path = machineFolder() + "/other.db";
  const auto openAfter = [&](const std::string& bytes) {
    WriteHostFile(path, bytes);
    return ErrorOf([&] { SqliteStore store(path); });
  };
  const std::string original = Bytes();
  EXPECT_EQ(
      openAfter("no database at all, but long enough to be looked at" + std::string(1000, '.')),
      ErrorNumber::kInvalidCall);
  EXPECT_EQ(openAfter(std::string(original).replace(0, 1, "X")), ErrorNumber::kInvalidCall);
  // The application's identifier, and the version of the schema.
  EXPECT_EQ(openAfter(std::string(original).replace(68, 4, "ABCD")), ErrorNumber::kInvalidCall);
  EXPECT_EQ(openAfter(std::string(original).replace(60, 4, "ABCD")), ErrorNumber::kInvalidCall);
  EXPECT_TRUE(openAfter(original.substr(0, 4096 + 100)));
  EXPECT_EQ(openAfter(original), std::nullopt);
  EXPECT_EQ(ErrorOf([&] { SqliteStore store(machineFolder() + "/none/registry.db"); }),
            ErrorNumber::kPathNotFound);
}

// A store of the time when only ASCII letters were folded.
TEST_F(PosixRegistryTest, AnOlderStoreIsConvertedOnceAndNoKeyIsLost) {
  const std::string path = machineFolder() + "/old.db";
  {
    SqliteStore store(path);
    Database& old = store.database();
    old.Execute("DROP TABLE twins; PRAGMA user_version = 1");
    old.Execute(
        "INSERT INTO keys(id, parent, name, path) VALUES(1, 0, 'ROOT', 'ROOT'),"
        " (2, 1, 'ävil', 'ROOT\\äVIL'), (3, 1, 'Ävil', 'ROOT\\ÄVIL'),"
        " (4, 2, 'süb', 'ROOT\\äVIL\\SüB'), (5, 3, 'SÜB', 'ROOT\\ÄVIL\\SÜB'),"
        " (6, 1, 'éé', 'ROOT\\éé'), (7, 1, 'Éé', 'ROOT\\Éé'), (8, 1, 'über', 'ROOT\\üBER'),"
        " (9, 8, 'Plain', 'ROOT\\üBER\\PLAIN');"
        "INSERT INTO key_values(key, name, folded, type, data) VALUES"
        " (4, 'ö', 'ö', 1, 'low'), (4, 'Ö', 'Ö', 1, 'high'), (9, 'ñ', 'ñ', 1, 'one')");
  }
  for (int turn = 0; turn < 2; ++turn) {
    SqliteStore store(path);
    const std::pair<const char*, int64_t> keys[] = {
        {"root\\ävil", 2},      {"Root\\Ävil", 3},      {"ROOT\\ÄVIL", 3},
        {"root\\Ävil\\süb", 5}, {"root\\äVil\\SÜB", 4}, {"root\\ävil\\süb", 4},
        {"root\\éé", 6},        {"root\\éÉ", 7},        {"root\\Éé", 7},
        {"root\\ÉÉ", 7},        {"ROOT\\Über", 8},      {"root\\ÜBER\\plain", 9}};
    for (const auto& [name, id] : keys) {
      const auto key = store.Find(name);
      EXPECT_EQ(key ? key->id : 0, id) << name;
    }
    EXPECT_EQ(store.SubKeyNames(1).size(), 5U);
    RawValue value;
    const std::tuple<int64_t, const char*, const char*> values[] = {
        {4, "ö", "low"}, {4, "Ö", "high"}, {9, "Ñ", "one"}, {9, "ñ", "one"}};
    for (const auto& [key, name, data] : values) {
      ASSERT_TRUE(store.GetValue(key, name, value)) << name;
      EXPECT_EQ(value.data, data) << name;
    }
  }
  SqliteStore store(path);
  store.SetValue(4, "ö", {ValueType::kString, "new"});
  EXPECT_EQ(store.ValueNames(4).size(), 2U);
  EXPECT_TRUE(store.RemoveValue(4, "ö"));
  RawValue value;
  EXPECT_TRUE(store.GetValue(4, "ö", value));
  EXPECT_EQ(value.data, "high");
}

// The rights of a user to whom nothing belongs, for as long as this lives. The administrator may
// write everything.
class AsNobody {
 public:
  AsNobody() {
    constexpr uid_t kNobody = 65534;
    if (isRoot_) seteuid(kNobody);
  }
  ~AsNobody() {
    if (isRoot_) seteuid(0);
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  const bool isRoot_ = geteuid() == 0;
};

TEST_F(PosixRegistryTest, IsReadByAUserWhoMayNotWriteIt) {
  namespace fs = std::filesystem;
  const fs::path folder =
      fs::temp_directory_path() / ("quarnel read only #" + std::to_string(getpid()));
  fs::create_directory(folder);
  const std::string path = folder / "registry.db";
  const MachineFolder machineOf = ReadMachineFolder(machineFolder());
  MakeRegistry(machineOf, std::make_shared<SqliteStore>(path));
  for (const fs::path& locked : {fs::path(path), folder}) {
    fs::permissions(locked, fs::perms::owner_write | fs::perms::group_write,
                    fs::perm_options::remove);
  }
  {
    const AsNobody nobody;
    const auto locked = MakeRegistry(machineOf, std::make_shared<SqliteStore>(path));
    std::unique_ptr<RegistryKey> key;
    EXPECT_EQ(locked->Open(kRoot, "", registry_access::kReadWrite, key), kSuccess);
    // Not a right to one key is missing.
    EXPECT_EQ(key->Set("v", {}), RegistryStatus::kWriteProtected);
  }
  fs::permissions(folder, fs::perms::owner_write, fs::perm_options::add);
  fs::remove_all(folder);
}

TEST_F(PosixRegistryTest, DamageIsAStatusAndNeverACrash) {
  for (int i = 0; i < 200; ++i) {
    RegCreateKeyValue(registry(), kRoot, Key("k" + std::to_string(i)), "v", std::string(200, 'v'));
  }
  const std::string copy = machineFolder() + "/damaged.db";
  {
    SqliteStore store(File());
    store.database().Execute("PRAGMA wal_checkpoint(TRUNCATE)");
  }
  const std::string original = Bytes();
  ASSERT_GT(original.size(), 40'000U);
  int damaged = 0;
  for (size_t page = 1; page < original.size() / 4096; ++page) {
    std::string bytes = original;
    for (size_t i = 0; i < 4096; i += 7) {
      char& byte = bytes[page * 4096 + i];
      byte = static_cast<char>(byte ^ static_cast<char>(i * page));
    }
    WriteHostFile(copy, bytes);
    MachineFolder folder = ReadMachineFolder(machineFolder());
    std::filesystem::rename(copy, File());
    for (const char* leftOver : {"-wal", "-shm"}) std::filesystem::remove(File() + leftOver);
    try {
      const auto registryOfDamaged = MakeRegistry(folder, OpenStore(folder));
      EnumSubKeys(*registryOfDamaged, kRoot, kTestKey);
      for (int i = 0; i < 200; i += 9) {
        std::unique_ptr<RegistryKey> key;
        const RegistryStatus status = registryOfDamaged->Open(kRoot, Key("k" + std::to_string(i)),
                                                              registry_access::kReadWrite, key);
        RawValue raw;
        if (status != kSuccess || key->Query("v", raw) != kSuccess) ++damaged;
      }
      DeleteKeyTree(*registryOfDamaged, kRoot, kTestKey, nullptr);
    } catch (const RuntimeError&) {
      ++damaged;
    }
  }
  EXPECT_GT(damaged, 0);
}

}  // namespace
}  // namespace quarnel
