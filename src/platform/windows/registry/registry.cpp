#include "platform/registry.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/text.h"
#include "platform/windows/backends.h"
#include "platform/windows/registry/key_security.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"

namespace quarnel {
namespace {

// The system's own limits of names, in units with the final NUL.
constexpr size_t kLongestKeyName = 256;
constexpr size_t kLongestValueName = 16384;

constexpr uint32_t kRoots[] = {hive::kClassesRoot, hive::kCurrentUser,   hive::kLocalMachine,
                               hive::kUsers,       hive::kCurrentConfig, hive::kDynData};

RegistryStatus StatusOf(LSTATUS code) { return static_cast<RegistryStatus>(code); }

// The handle that a root's number stands for; null for a number that is none. Any other number
// might be the handle of a key that is open by chance.
HKEY RootOf(uint32_t root) {
  if (std::find(std::begin(kRoots), std::end(kRoots), root) == std::end(kRoots)) return nullptr;
  // Predefined handles are numbers of 32 bits with a sign.
  return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(root)));
}

// Names end at a NUL.
std::wstring NameUntilNul(std::string_view name) { return Wide(CutAtNul(name)); }

class WindowsRegistryKey : public RegistryKey {
 public:
  explicit WindowsRegistryKey(KeyHandle key) : key_(std::move(key)) {}

  RegistryStatus Query(std::string_view name, RawValue& value) override {
    const std::wstring wide = NameUntilNul(name);
    std::string data;
    DWORD type = 0;
    DWORD size = 0;
    LSTATUS code = RegQueryValueExW(key_.Get(), wide.c_str(), nullptr, &type, nullptr, &size);
    // The value may grow between the two questions.
    for (int turn = 0; code == ERROR_SUCCESS && turn < 8; ++turn) {
      data.resize(size_t{size} + 1);
      size = static_cast<DWORD>(data.size());
      code = RegQueryValueExW(key_.Get(), wide.c_str(), nullptr, &type,
                              reinterpret_cast<BYTE*>(data.data()), &size);
      if (code != ERROR_MORE_DATA) break;
      code = ERROR_SUCCESS;
    }
    if (code != ERROR_SUCCESS) return StatusOf(code);
    data.resize(std::min<size_t>(size, data.size()));
    value = {static_cast<ValueType>(type), std::move(data)};
    return RegistryStatus::kSuccess;
  }

  RegistryStatus Set(std::string_view name, const RawValue& value) override {
    // For texts the system looks at the units around their end, and takes a NUL there for one that
    // was forgotten. Between these guards exactly the given bytes are stored.
    std::string guarded(2, '\0');
    guarded.append(value.data).append(2, '\xFF');
    return StatusOf(RegSetValueExW(
        key_.Get(), NameUntilNul(name).c_str(), 0, static_cast<DWORD>(value.type),
        reinterpret_cast<const BYTE*>(guarded.data() + 2), static_cast<DWORD>(value.data.size())));
  }

  RegistryStatus DeleteValue(std::string_view name) override {
    return StatusOf(RegDeleteValueW(key_.Get(), NameUntilNul(name).c_str()));
  }

  RegistryStatus EnumKey(uint32_t index, std::string& name) override {
    wchar_t buffer[kLongestKeyName];
    DWORD size = kLongestKeyName;
    const LSTATUS code =
        RegEnumKeyExW(key_.Get(), index, buffer, &size, nullptr, nullptr, nullptr, nullptr);
    if (code == ERROR_SUCCESS) name = Narrow({buffer, size});
    return StatusOf(code);
  }

  RegistryStatus EnumValue(uint32_t index, std::string& name) override {
    valueName_.resize(kLongestValueName);
    DWORD size = kLongestValueName;
    const LSTATUS code = RegEnumValueW(key_.Get(), index, valueName_.data(), &size, nullptr,
                                       nullptr, nullptr, nullptr);
    if (code == ERROR_SUCCESS) name = Narrow({valueName_.data(), size});
    return StatusOf(code);
  }

 private:
  KeyHandle key_;
  std::wstring valueName_;  // room for the longest, made when it is first needed
};

class WindowsRegistry : public Registry {
 public:
  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    const HKEY handle = RootOf(root);
    if (handle == nullptr) return RegistryStatus::kInvalidHandle;
    KeyHandle opened;
    const LSTATUS code =
        RegOpenKeyExW(handle, NameUntilNul(path).c_str(), 0, access, opened.Receive());
    if (code == ERROR_SUCCESS) key = std::make_unique<WindowsRegistryKey>(std::move(opened));
    return StatusOf(code);
  }

  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    const HKEY handle = RootOf(root);
    if (handle == nullptr) return RegistryStatus::kInvalidHandle;
    KeyHandle made;
    // As many rights as the key grants.
    const LSTATUS code = RegCreateKeyExW(handle, NameUntilNul(path).c_str(), 0, nullptr, 0,
                                         MAXIMUM_ALLOWED, nullptr, made.Receive(), nullptr);
    if (code == ERROR_SUCCESS) key = std::make_unique<WindowsRegistryKey>(std::move(made));
    return StatusOf(code);
  }

  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    const HKEY handle = RootOf(root);
    if (handle == nullptr) return RegistryStatus::kInvalidHandle;
    const std::wstring name = NameUntilNul(path);
    // A path without a name would mean the root.
    if (name.find_first_not_of(L'\\') == std::wstring::npos) return RegistryStatus::kAccessDenied;
    return StatusOf(RegDeleteKeyW(handle, name.c_str()));
  }

  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return AllowInFront(RootOf(root), NameUntilNul(path), Wide(account), access);
  }

  std::string AccountName() override { return AccountOfUser(); }
};

}  // namespace

std::unique_ptr<Registry> MakeRegistry() { return std::make_unique<WindowsRegistry>(); }

}  // namespace quarnel
