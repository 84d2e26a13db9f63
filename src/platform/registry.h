#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quarnel {

// Root handles, as the system numbers them. A root is passed as its number, since signature data
// may name one that does not exist.
namespace hive {
inline constexpr uint32_t kClassesRoot = 0x80000000;
inline constexpr uint32_t kCurrentUser = 0x80000001;
inline constexpr uint32_t kLocalMachine = 0x80000002;
inline constexpr uint32_t kUsers = 0x80000003;
inline constexpr uint32_t kCurrentConfig = 0x80000005;
inline constexpr uint32_t kDynData = 0x80000006;
}  // namespace hive

namespace registry_access {
inline constexpr uint32_t kDelete = 0x10000;
inline constexpr uint32_t kWriteDac = 0x40000;
inline constexpr uint32_t kRead = 131097;   // enumeration without any right to write
inline constexpr uint32_t kReadWrite = 63;  // query, set, create, enumerate, notify, link
inline constexpr uint32_t kGenericAll = 0x10000000;
}  // namespace registry_access

// Result codes of registry calls, with the system's own numbers; other numbers pass through.
enum class RegistryStatus : long {
  kSuccess = 0,
  kFileNotFound = 2,
  kAccessDenied = 5,
  kInvalidHandle = 6,
  kWriteProtected = 19,
  kInvalidParameter = 87,
  kNoMoreItems = 259,
  kKeyDeleted = 1018,
};

enum class ValueType : uint32_t {
  kNone = 0,
  kString = 1,
  kExpandString = 2,
  kBinary = 3,
  kDword = 4,
  kDwordBigEndian = 5,
  kLink = 6,
  kMultiString = 7,
  kQword = 11,
};

// A value as it is stored: string types are UTF-16LE bytes with whatever terminator was written.
struct RawValue {
  ValueType type = ValueType::kNone;
  std::string data;
};

// An open key; destroying it closes it. Value and key names are found in any letter case. The
// default value has the empty name.
class RegistryKey {
 public:
  virtual ~RegistryKey() = default;
  virtual RegistryStatus Query(std::string_view name, RawValue& value) = 0;
  virtual RegistryStatus Set(std::string_view name, const RawValue& value) = 0;
  virtual RegistryStatus DeleteValue(std::string_view name) = 0;
  // Names by index from 0; kNoMoreItems behind the last one.
  virtual RegistryStatus EnumKey(uint32_t index, std::string& name) = 0;
  virtual RegistryStatus EnumValue(uint32_t index, std::string& name) = 0;
};

// The primitives that a backend provides.
class Registry {
 public:
  virtual ~Registry() = default;
  // Opens an existing key; an empty path is the root itself. `access` is asked for in full: a key
  // that grants less is kAccessDenied.
  virtual RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                              std::unique_ptr<RegistryKey>& key) = 0;
  // Opens a key, making it and its parents as needed.
  virtual RegistryStatus Create(uint32_t root, std::string_view path,
                                std::unique_ptr<RegistryKey>& key) = 0;
  // Deletes one key with its values. A key with subkeys is kAccessDenied.
  virtual RegistryStatus Delete(uint32_t root, std::string_view path) = 0;
  // Puts an entry that allows `access` to `account` in front of the key's rights. The result is the
  // name of the step that failed ("LookupAccountName", "RegOpenKeyEx", "RegGetKeySecurity",
  // "InitializeSecurityDescriptor", "RegSetKeySecurity"), empty when all went well.
  virtual std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                                     uint32_t access) = 0;
  // The present user's account name, as SetKeySecurity takes it.
  virtual std::string AccountName() = 0;
};

// Whether a status answers what was asked, and be it that there is no such key, value or name, or
// that nothing can bear such a name. Any other tells that nobody could look.
bool IsAnswer(RegistryStatus status);

// A value as the program's logic sees it: REG_SZ text without its final NUL, or a REG_DWORD.
using RegistryValue = std::variant<std::string, uint32_t>;

// The conversion between the two views; other types than REG_SZ and REG_DWORD give nothing.
std::optional<RegistryValue> ValueFromRaw(const RawValue& raw);
RawValue RawFromValue(const RegistryValue& value);

// The operations of the program, the same on every backend. A missing key or value is an expected
// answer: they return false, nothing, or the code, and raise nothing.

// True with the value when key and value are there and of a known type.
bool QueryValueEx(RegistryKey& key, std::string_view name, RegistryValue& value);
bool QueryValue(Registry& registry, uint32_t root, std::string_view path, std::string_view name,
                RegistryValue& value);
// As QueryValue, with a REG_DWORD as "&h" and its hexadecimal digits.
bool GetKeyValue(Registry& registry, uint32_t root, std::string_view path, std::string_view name,
                 std::string& text);
// The same of an open key.
bool GetKeyValue(RegistryKey& key, std::string_view name, std::string& text);
// A value as one text: the string, or the number in decimal; empty when absent.
std::string QueryText(Registry& registry, uint32_t root, std::string_view path,
                      std::string_view name);

// Writes to an open key; a type other than REG_SZ and REG_DWORD does nothing.
RegistryStatus SetValueEx(RegistryKey& key, std::string_view name, ValueType type,
                          const RegistryValue& value);
// Writes to an existing key. On a missing one the key is made and the value is lost: the restore
// of registry traces rests on both.
RegistryStatus SetKeyValue(Registry& registry, uint32_t root, std::string_view path,
                           std::string_view name, const RegistryValue& value, ValueType type);
// Writes a value of the type that fits its kind, below HKEY_LOCAL_MACHINE; the key is made as
// needed.
RegistryStatus SetKeyValue_LocalMachine(Registry& registry, std::string_view path,
                                        std::string_view name, const RegistryValue& value);
// Makes the key as needed and stores the value by its kind.
RegistryStatus RegCreateKeyValue(Registry& registry, uint32_t root, std::string_view path,
                                 std::string_view name, const RegistryValue& value);
RegistryStatus CreateNewKey(Registry& registry, uint32_t root, std::string_view path);

// Gives the present user the right to delete the key. Asked before every deletion; the result is
// ignored, since the deletion shows by itself whether it may.
void TakeKeyAccess(Registry& registry, uint32_t root, std::string_view path);

RegistryStatus DeleteKey(Registry& registry, uint32_t root, std::string_view path);
RegistryStatus DeleteValue(Registry& registry, uint32_t root, std::string_view path,
                           std::string_view name);
// Deletes a key and all below it, innermost first, calling `afterEach` after each subkey so that
// events can be processed. A subkey that cannot be deleted ends the work.
RegistryStatus DeleteKeyTree(Registry& registry, uint32_t root, std::string_view path,
                             const std::function<void()>& afterEach);
// The names of all subkeys in order; empty when the key is absent.
std::vector<std::string> EnumSubKeys(Registry& registry, uint32_t root, std::string_view path);

}  // namespace quarnel
