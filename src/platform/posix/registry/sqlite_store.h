#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/registry/registry_store.h"
#include "platform/posix/registry/sqlite.h"

namespace quarnel {

// The store in a machine folder's registry.db, an SQLite database of its own kind:
//
//   keys(id, parent, name, path, owner, rights)   path is the whole path from its root key, letter
//                                                 case folded: one look finds a key at any depth
//   key_values(id, key, name, folded, type, data) data as the registry keeps it: strings are
//                                                 UTF-16LE with the terminator that was written
//   twins(kind, id)                               keys and values whose folded name another one
//   has:
//                                                 theirs is folded for ASCII letters only
//
// Rights are lines "account:access" with a hexadecimal access mask. Reads and writes of several
// programs at once are kept apart by SQLite (WAL).
class SqliteStore : public RegistryStore {
 public:
  // Opens or makes the database. One that belongs to something else is kInvalidCall. A user who may
  // not write there reads it, and each change is kPermissionDenied.
  explicit SqliteStore(const std::string& path);
  ~SqliteStore() override;
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  std::optional<Key> Find(std::string_view path) override;
  bool Exists(int64_t key) override;
  int64_t Add(int64_t parent, std::string_view name) override;
  bool HasSubKeys(int64_t key) override;
  void Remove(int64_t key) override;
  void SetRights(int64_t key, const KeyRights& rights) override;
  bool GetValue(int64_t key, std::string_view name, RawValue& value) override;
  bool SetValue(int64_t key, std::string_view name, const RawValue& value) override;
  bool RemoveValue(int64_t key, std::string_view name) override;
  std::vector<std::string> SubKeyNames(int64_t key) override;
  std::vector<std::string> ValueNames(int64_t key) override;
  int64_t Version() override;
  bool Transact(const std::function<bool()>& change) override;

  Database& database() { return database_; }

 private:
  // What stands in the columns path and folded for a name in any letter case. Where there are
  // twins, the spelling that fits one of them but for ASCII letters means that one.
  std::string FoldedPath(std::string_view path);
  std::string FoldedValue(int64_t key, std::string_view name);
  std::vector<std::string> Names(Statement& statement, int64_t key);

  Database database_;
  struct Statements;
  std::unique_ptr<Statements> statements_;
  bool hasTwins_ = false;  // they come from the conversion alone
};

}  // namespace quarnel
