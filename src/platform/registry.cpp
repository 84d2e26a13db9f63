#include "platform/registry.h"

#include <algorithm>

#include "base/hex.h"
#include "base/little_endian.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "base/unicode.h"

namespace quarnel {
namespace {

constexpr uint32_t kSetValueRight = 2;
constexpr uint32_t kEnumerateRight = 8;

std::string TextFromWide(std::string_view bytes) {
  std::u16string wide;
  // An odd byte at the end is no character.
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) wide += static_cast<char16_t>(U16At(bytes, i));
  if (wide.ends_with(u'\0')) wide.pop_back();
  return ToUtf8(wide);
}

std::string WideFromText(std::string_view text) {
  std::string bytes;
  PutWide(bytes, ToUtf16(text) + u'\0');
  return bytes;
}

// The value as the type asks for it, as assignments between texts and numbers convert; nothing when
// it cannot be.
std::optional<RegistryValue> AsType(const RegistryValue& value, ValueType type) {
  const auto* text = std::get_if<std::string>(&value);
  const auto* number = std::get_if<uint32_t>(&value);
  if (type == ValueType::kString && number != nullptr) {
    return std::to_string(static_cast<int32_t>(*number));
  }
  if (type == ValueType::kDword && text != nullptr) {
    std::optional<RegistryValue> converted;
    IgnoringErrors([&] { converted = static_cast<uint32_t>(ToLong(*text)); });
    return converted;
  }
  return value;
}

}  // namespace

std::optional<RegistryValue> ValueFromRaw(const RawValue& raw) {
  if (raw.type == ValueType::kString) return TextFromWide(raw.data);
  if (raw.type != ValueType::kDword || raw.data.size() > 4) return std::nullopt;
  // A shorter one reads as the system gives it: what is there of the low bytes.
  return LittleEndianAt(raw.data, 0, raw.data.size());
}

RawValue RawFromValue(const RegistryValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return {ValueType::kString, WideFromText(*text)};
  }
  RawValue raw{ValueType::kDword, {}};
  PutU32(raw.data, std::get<uint32_t>(value));
  return raw;
}

bool IsAnswer(RegistryStatus status) {
  constexpr auto kPathNotFound = static_cast<RegistryStatus>(3);
  constexpr auto kInvalidName = static_cast<RegistryStatus>(123);
  constexpr auto kBadPathName = static_cast<RegistryStatus>(161);
  constexpr RegistryStatus kAnswers[] = {RegistryStatus::kSuccess,
                                         RegistryStatus::kFileNotFound,
                                         RegistryStatus::kInvalidHandle,
                                         RegistryStatus::kInvalidParameter,
                                         RegistryStatus::kNoMoreItems,
                                         RegistryStatus::kKeyDeleted,
                                         kPathNotFound,
                                         kInvalidName,
                                         kBadPathName};
  return std::find(std::begin(kAnswers), std::end(kAnswers), status) != std::end(kAnswers);
}

bool QueryValueEx(RegistryKey& key, std::string_view name, RegistryValue& value) {
  RawValue raw;
  if (key.Query(name, raw) != RegistryStatus::kSuccess) return false;
  auto known = ValueFromRaw(raw);
  if (known) value = std::move(*known);
  return known.has_value();
}

bool QueryValue(Registry& registry, uint32_t root, std::string_view path, std::string_view name,
                RegistryValue& value) {
  std::unique_ptr<RegistryKey> key;
  return registry.Open(root, path, registry_access::kReadWrite, key) == RegistryStatus::kSuccess &&
         QueryValueEx(*key, name, value);
}

bool GetKeyValue(Registry& registry, uint32_t root, std::string_view path, std::string_view name,
                 std::string& text) {
  std::unique_ptr<RegistryKey> key;
  return registry.Open(root, path, registry_access::kReadWrite, key) == RegistryStatus::kSuccess &&
         GetKeyValue(*key, name, text);
}

bool GetKeyValue(RegistryKey& key, std::string_view name, std::string& text) {
  RegistryValue value;
  if (!QueryValueEx(key, name, value)) return false;
  const auto* number = std::get_if<uint32_t>(&value);
  text = number != nullptr ? "&h" + HexNumber(*number) : std::get<std::string>(value);
  return true;
}

std::string QueryText(Registry& registry, uint32_t root, std::string_view path,
                      std::string_view name) {
  RegistryValue value;
  if (!QueryValue(registry, root, path, name, value)) return {};
  const auto* number = std::get_if<uint32_t>(&value);
  return number != nullptr ? std::to_string(*number) : std::get<std::string>(value);
}

RegistryStatus SetValueEx(RegistryKey& key, std::string_view name, ValueType type,
                          const RegistryValue& value) {
  if (type != ValueType::kString && type != ValueType::kDword) return RegistryStatus::kSuccess;
  const auto converted = AsType(value, type);
  return converted ? key.Set(name, RawFromValue(*converted)) : RegistryStatus::kInvalidParameter;
}

RegistryStatus SetKeyValue(Registry& registry, uint32_t root, std::string_view path,
                           std::string_view name, const RegistryValue& value, ValueType type) {
  std::unique_ptr<RegistryKey> key;
  if (registry.Open(root, path, registry_access::kReadWrite, key) == RegistryStatus::kSuccess) {
    return SetValueEx(*key, name, type, value);
  }
  const RegistryStatus status = registry.Create(root, path, key);
  // The value is not written by way of the new key: there is no handle for it.
  return status == RegistryStatus::kSuccess ? RegistryStatus::kInvalidHandle : status;
}

RegistryStatus SetKeyValue_LocalMachine(Registry& registry, std::string_view path,
                                        std::string_view name, const RegistryValue& value) {
  std::unique_ptr<RegistryKey> key;
  const auto open = [&] {
    return registry.Open(hive::kLocalMachine, path, registry_access::kReadWrite, key);
  };
  RegistryStatus status = open();
  if (status != RegistryStatus::kSuccess) {
    status = CreateNewKey(registry, hive::kLocalMachine, path);
    if (status == RegistryStatus::kSuccess) status = open();
  }
  return status == RegistryStatus::kSuccess ? key->Set(name, RawFromValue(value)) : status;
}

RegistryStatus RegCreateKeyValue(Registry& registry, uint32_t root, std::string_view path,
                                 std::string_view name, const RegistryValue& value) {
  std::unique_ptr<RegistryKey> key;
  const RegistryStatus status = registry.Create(root, path, key);
  return status == RegistryStatus::kSuccess ? key->Set(name, RawFromValue(value)) : status;
}

RegistryStatus CreateNewKey(Registry& registry, uint32_t root, std::string_view path) {
  std::unique_ptr<RegistryKey> key;
  return registry.Create(root, path, key);
}

void TakeKeyAccess(Registry& registry, uint32_t root, std::string_view path) {
  registry.SetKeySecurity(root, path, CutAtNul(registry.AccountName()), registry_access::kDelete);
}

RegistryStatus DeleteKey(Registry& registry, uint32_t root, std::string_view path) {
  TakeKeyAccess(registry, root, path);
  return registry.Delete(root, path);
}

RegistryStatus DeleteValue(Registry& registry, uint32_t root, std::string_view path,
                           std::string_view name) {
  TakeKeyAccess(registry, root, path);
  std::unique_ptr<RegistryKey> key;
  const RegistryStatus status = registry.Open(root, path, kSetValueRight, key);
  return status == RegistryStatus::kSuccess ? key->DeleteValue(name) : status;
}

RegistryStatus DeleteKeyTree(Registry& registry, uint32_t root, std::string_view path,
                             const std::function<void()>& afterEach) {
  std::string last;
  for (;;) {
    std::unique_ptr<RegistryKey> key;
    const RegistryStatus status = registry.Open(root, path, kEnumerateRight, key);
    // A key that went away under the work is as good as deleted, and says so below.
    if (status == RegistryStatus::kFileNotFound) return status;
    std::string name;
    if (status != RegistryStatus::kSuccess || key->EnumKey(0, name) != RegistryStatus::kSuccess) {
      break;
    }
    // Somebody makes it anew as fast as it is deleted.
    if (name == last) break;
    key.reset();
    const std::string subKey = std::string(path).append("\\").append(name);
    if (DeleteKeyTree(registry, root, subKey, afterEach) != RegistryStatus::kSuccess) break;
    last = std::move(name);
    if (afterEach) afterEach();
  }
  return DeleteKey(registry, root, path);
}

std::vector<std::string> EnumSubKeys(Registry& registry, uint32_t root, std::string_view path) {
  std::vector<std::string> names;
  std::unique_ptr<RegistryKey> key;
  if (registry.Open(root, path, registry_access::kRead, key) != RegistryStatus::kSuccess) {
    return names;
  }
  std::string name;
  for (uint32_t i = 0; key->EnumKey(i, name) == RegistryStatus::kSuccess; ++i) {
    names.emplace_back(CutAtNul(name));
  }
  return names;
}

}  // namespace quarnel
