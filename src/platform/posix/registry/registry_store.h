#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

// What keeps the keys and values of a machine's registry. It knows nothing of root handles and
// checks no rights: that is the registry's part. Names are found in any letter case and kept as
// they were given. Every failure of the store itself is a RuntimeError: kPermissionDenied when it
// is held by another program or may not be written, kInvalidCall when it is damaged.
class RegistryStore {
 public:
  virtual ~RegistryStore() = default;

  struct Key {
    int64_t id = 0;
    KeyRights rights;
  };
  // The key of a whole path, such as "HKEY_LOCAL_MACHINE\SOFTWARE".
  virtual std::optional<Key> Find(std::string_view path) = 0;
  virtual bool Exists(int64_t key) = 0;
  // Makes a key, which is not there yet, in an existing one (0 for a root key), whose rights it
  // takes over. Its identifier is never given again.
  virtual int64_t Add(int64_t parent, std::string_view name) = 0;
  virtual bool HasSubKeys(int64_t key) = 0;
  virtual void Remove(int64_t key) = 0;
  virtual void SetRights(int64_t key, const KeyRights& rights) = 0;

  virtual bool GetValue(int64_t key, std::string_view name, RawValue& value) = 0;
  // False when the key is gone.
  virtual bool SetValue(int64_t key, std::string_view name, const RawValue& value) = 0;
  virtual bool RemoveValue(int64_t key, std::string_view name) = 0;

  // Names of subkeys in the order of their folded names, those of values in that of their making.
  virtual std::vector<std::string> SubKeyNames(int64_t key) = 0;
  virtual std::vector<std::string> ValueNames(int64_t key) = 0;

  // A number that differs whenever anything changed, by whomever.
  virtual int64_t Version() = 0;

  // Runs `change` while no other program changes the store. What it did stays when it returns true;
  // all of it is taken back when it returns false or raises. The answer is that of `change`.
  virtual bool Transact(const std::function<bool()>& change) = 0;
};

}  // namespace quarnel
