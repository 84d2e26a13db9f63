#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/sqlite.h"
#include "platform/registry.h"

namespace quarnel {

// Who may do what with a key. Without a list everybody may do everything. The owner, when there is
// one, may always change the list.
struct KeyRights {
  struct Entry {
    std::string account;
    uint32_t access = 0;
  };
  std::optional<std::string> owner;
  std::optional<std::vector<Entry>> list;

  // The rights of an account: the sum of its entries and those of "Everyone".
  uint32_t GrantedTo(std::string_view account) const;
};

// The keys and values of a machine folder's registry.db, an SQLite database of its own kind:
//
//   keys(id, parent, name, path, owner, rights)   path is the whole path from its root key, letter
//                                                 case folded: one look finds a key at any depth
//   key_values(id, key, name, folded, type, data) data as the registry keeps it: strings are
//                                                 UTF-16LE with the terminator that was written
//
// Rights are lines "account:access" with a hexadecimal access mask. Reads and writes of several
// programs at once are kept apart by SQLite (WAL). All operations raise RuntimeError, see sqlite.h.
class RegistryStore {
 public:
  // Opens or makes the database. One that belongs to something else is kInvalidCall.
  explicit RegistryStore(const std::string& path);
  ~RegistryStore();
  RegistryStore(const RegistryStore&) = delete;
  RegistryStore& operator=(const RegistryStore&) = delete;

  struct Key {
    int64_t id = 0;
    KeyRights rights;
  };
  // `path` is folded: "HKEY_LOCAL_MACHINE\SOFTWARE".
  std::optional<Key> Find(std::string_view path);
  bool Exists(int64_t key);
  // Makes a key in an existing one (0 for a root key), whose rights it takes over. Its identifier
  // is never given again.
  int64_t Add(int64_t parent, std::string_view name, std::string_view path);
  bool HasSubKeys(int64_t key);
  void Remove(int64_t key);
  void SetRights(int64_t key, const KeyRights& rights);

  bool GetValue(int64_t key, std::string_view name, RawValue& value);
  // False when the key is gone.
  bool SetValue(int64_t key, std::string_view name, const RawValue& value);
  bool RemoveValue(int64_t key, std::string_view name);

  // Names of subkeys in the order of their folded names, those of values in that of their making.
  std::vector<std::string> SubKeyNames(int64_t key);
  std::vector<std::string> ValueNames(int64_t key);

  // A number that differs whenever anything changed, by whomever.
  int64_t Version();

  Database& database() { return database_; }

 private:
  std::vector<std::string> Names(Statement& statement, int64_t key);

  Database database_;
  struct Statements;
  std::unique_ptr<Statements> statements_;
};

}  // namespace quarnel
