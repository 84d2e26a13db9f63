#include "platform/registry.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/unicode.h"
#include "platform/posix/backends.h"
#include "platform/posix/registry/registry_store.h"

namespace quarnel {
namespace {

// Codes of the system that the program never asks for by name.
constexpr auto kNotEnoughMemory = static_cast<RegistryStatus>(8);
constexpr auto kBadPathName = static_cast<RegistryStatus>(161);
constexpr auto kRegistryCorrupt = static_cast<RegistryStatus>(1015);
constexpr auto kRegistryIoFailed = static_cast<RegistryStatus>(1016);

// Rights to a key, by the system's numbers.
constexpr uint32_t kQueryValue = 1;
constexpr uint32_t kSetValue = 2;
constexpr uint32_t kCreateSubKey = 4;
constexpr uint32_t kEnumerate = 8;

// The system's own limits: names in UTF-16 units, keys on a path.
constexpr size_t kLongestKeyName = 255;
constexpr size_t kLongestValueName = 16383;
constexpr size_t kDeepestKey = 512;
constexpr size_t kLongestKeyPath = size_t{1} << 16;
constexpr size_t kLargestData = size_t{64} << 20;

RegistryStatus StatusOf(const RuntimeError& error) {
  switch (error.Number()) {
    // A missing right to one key is told before the store is asked: here it is the store's.
    case ErrorNumber::kPermissionDenied:
      return RegistryStatus::kWriteProtected;
    case ErrorNumber::kInvalidCall:
      return kRegistryCorrupt;
    default:
      return kRegistryIoFailed;
  }
}

bool IsLonger(std::string_view name, size_t units) {
  return name.size() > units && ToUtf16(name).size() > units;
}

// Runs a step that gives a status; a failure of the store becomes one as well.
template <typename Step>
RegistryStatus WithStatus(const Step& step) {
  try {
    return step();
  } catch (const RuntimeError& error) {
    return StatusOf(error);
  }
}

// Names by index. They are read once and stay in use until something changes, so that walking all
// of them is no work in the square of their number.
class NameList {
 public:
  template <typename Read>
  RegistryStatus At(RegistryStore& store, uint32_t index, const Read& read, std::string& name) {
    const int64_t version = store.Version();
    if (!names_ || version != version_) {
      names_ = read();
      version_ = version;
    }
    if (index >= names_->size()) return RegistryStatus::kNoMoreItems;
    name = (*names_)[index];
    return RegistryStatus::kSuccess;
  }

 private:
  std::optional<std::vector<std::string>> names_;
  int64_t version_ = 0;
};

class PosixRegistryKey : public RegistryKey {
 public:
  PosixRegistryKey(std::shared_ptr<RegistryStore> store, int64_t id, uint32_t access)
      : store_(std::move(store)), id_(id), access_(access) {}

  RegistryStatus Query(std::string_view name, RawValue& value) override {
    return WithRight(kQueryValue, [&] {
      return store_->GetValue(id_, CutAtNul(name), value) ? RegistryStatus::kSuccess : Missing();
    });
  }

  RegistryStatus Set(std::string_view name, const RawValue& value) override {
    return WithRight(kSetValue, [&] {
      if (IsLonger(CutAtNul(name), kLongestValueName)) return RegistryStatus::kInvalidParameter;
      if (value.data.size() > kLargestData) return kNotEnoughMemory;
      return store_->SetValue(id_, CutAtNul(name), value) ? RegistryStatus::kSuccess
                                                          : RegistryStatus::kKeyDeleted;
    });
  }

  RegistryStatus DeleteValue(std::string_view name) override {
    return WithRight(kSetValue, [&] {
      return store_->RemoveValue(id_, CutAtNul(name)) ? RegistryStatus::kSuccess : Missing();
    });
  }

  RegistryStatus EnumKey(uint32_t index, std::string& name) override {
    return Enumerate(kEnumerate, subKeys_, &RegistryStore::SubKeyNames, index, name);
  }

  RegistryStatus EnumValue(uint32_t index, std::string& name) override {
    return Enumerate(kQueryValue, values_, &RegistryStore::ValueNames, index, name);
  }

 private:
  // What a missing value means.
  RegistryStatus Missing() {
    return store_->Exists(id_) ? RegistryStatus::kFileNotFound : RegistryStatus::kKeyDeleted;
  }

  template <typename Step>
  RegistryStatus WithRight(uint32_t right, const Step& step) {
    if ((access_ & right) == 0) return RegistryStatus::kAccessDenied;
    return WithStatus(step);
  }

  RegistryStatus Enumerate(uint32_t right, NameList& list,
                           std::vector<std::string> (RegistryStore::*read)(int64_t), uint32_t index,
                           std::string& name) {
    return WithRight(right, [&] {
      const RegistryStatus status = list.At(
          *store_, index, [&] { return ((*store_).*read)(id_); }, name);
      const bool gone = status == RegistryStatus::kNoMoreItems && !store_->Exists(id_);
      return gone ? RegistryStatus::kKeyDeleted : status;
    });
  }

  std::shared_ptr<RegistryStore> store_;
  int64_t id_;
  uint32_t access_;
  NameList subKeys_;
  NameList values_;
};

class PosixRegistry : public Registry {
 public:
  PosixRegistry(const MachineFolder& folder, std::shared_ptr<RegistryStore> store)
      : account_(folder.userName),
        hasDynData_(folder.family == SystemFamily::kWindows9x),
        userRoot_("HKEY_USERS\\" + folder.sid),
        store_(std::move(store)) {
    for (const uint32_t root : {hive::kLocalMachine, hive::kUsers, hive::kCurrentUser,
                                hive::kClassesRoot, hive::kCurrentConfig, hive::kDynData}) {
      const std::string_view path = RootPath(root);
      if (path.empty()) continue;
      fixedKeys_.emplace_back(path);
      if (!store_->Find(path)) Make(path);
    }
  }

  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    return WithStatus([&] {
      std::string full;
      if (const auto status = Resolve(root, path, full); status != RegistryStatus::kSuccess) {
        return status;
      }
      const auto found = store_->Find(full);
      if (!found) return RegistryStatus::kFileNotFound;
      constexpr uint32_t kWow64Views = 0x300;  // which of two registries; there is one here
      access &= ~kWow64Views;
      if ((access & ~found->rights.GrantedTo(account_)) != 0) return RegistryStatus::kAccessDenied;
      if ((access & registry_access::kGenericAll) != 0) access = ~uint32_t{0};
      key = std::make_unique<PosixRegistryKey>(store_, found->id, access);
      return RegistryStatus::kSuccess;
    });
  }

  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    return WithStatus([&] {
      std::string full;
      if (const auto status = Resolve(root, path, full); status != RegistryStatus::kSuccess) {
        return status;
      }
      auto found = store_->Find(full);
      if (!found) {
        if (!HasLegalNames(full)) return RegistryStatus::kInvalidParameter;
        if (!Make(full)) return RegistryStatus::kAccessDenied;
        found = store_->Find(full);
        if (!found) return RegistryStatus::kKeyDeleted;
      }
      // As many rights as the key grants.
      const uint32_t granted = found->rights.GrantedTo(account_);
      if (granted == 0) return RegistryStatus::kAccessDenied;
      key = std::make_unique<PosixRegistryKey>(store_, found->id, granted);
      return RegistryStatus::kSuccess;
    });
  }

  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return WithStatus([&] {
      std::string full;
      if (const auto status = Resolve(root, path, full); status != RegistryStatus::kSuccess) {
        return status;
      }
      for (const std::string& fixed : fixedKeys_) {
        if (EqualText(full, fixed)) return RegistryStatus::kAccessDenied;
      }
      RegistryStatus status = RegistryStatus::kSuccess;
      store_->Transact([&] {
        const auto found = store_->Find(full);
        if (!found) {
          status = RegistryStatus::kFileNotFound;
        } else if ((found->rights.GrantedTo(account_) & registry_access::kDelete) == 0 ||
                   store_->HasSubKeys(found->id)) {
          status = RegistryStatus::kAccessDenied;
        } else {
          store_->Remove(found->id);
        }
        return status == RegistryStatus::kSuccess;
      });
      return status;
    });
  }

  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    if (!IsAccount(account)) return "LookupAccountName";
    std::string full;
    std::optional<RegistryStore::Key> found;
    const char* step = "RegOpenKeyEx";
    try {
      if (Resolve(root, path, full) != RegistryStatus::kSuccess) return step;
      found = store_->Find(full);
      if (!found) return step;
      if ((found->rights.GrantedTo(account_) & registry_access::kWriteDac) == 0) return step;
      step = "RegSetKeySecurity";
      // Where everybody may do everything an entry would take rights, not give one.
      if (!found->rights.list) return {};
      auto& list = *found->rights.list;
      const bool isInFront =
          !list.empty() && EqualText(list[0].account, account) && list[0].access == access;
      if (isInFront) return {};
      list.insert(list.begin(), {std::string(account), access});
      store_->SetRights(found->id, found->rights);
      return {};
    } catch (const RuntimeError&) {
      return step;
    }
  }

  std::string AccountName() override { return account_; }

 private:
  // The path of a root handle in the store; empty for an unknown one.
  std::string_view RootPath(uint32_t root) const {
    switch (root) {
      case hive::kLocalMachine:
        return "HKEY_LOCAL_MACHINE";
      case hive::kUsers:
        return "HKEY_USERS";
      case hive::kCurrentUser:
        return userRoot_;
      case hive::kClassesRoot:
        return "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes";
      case hive::kCurrentConfig:
        return "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current";
      case hive::kDynData:
        // The line of NT has the handle's number and no keys behind it.
        return hasDynData_ ? "HKEY_DYN_DATA" : "";
      default:
        return {};
    }
  }

  RegistryStatus Resolve(uint32_t root, std::string_view path, std::string& full) const {
    const std::string_view rootPath = RootPath(root);
    if (rootPath.empty()) return RegistryStatus::kInvalidHandle;
    path = CutAtNul(path);
    if (path.starts_with('\\')) return kBadPathName;
    if (path.size() > kLongestKeyPath) return RegistryStatus::kInvalidParameter;
    full.reserve(rootPath.size() + path.size() + 1);
    full = rootPath;
    while (!path.empty()) {
      const size_t end = std::min(path.find('\\'), path.size());
      if (end > 0) full.append("\\").append(path.substr(0, end));
      path.remove_prefix(std::min(end + 1, path.size()));
    }
    return RegistryStatus::kSuccess;
  }

  static bool HasLegalNames(std::string_view path) {
    const std::vector<std::string> names = Split(path, "\\");
    return names.size() <= kDeepestKey &&
           std::none_of(names.begin(), names.end(),
                        [](const std::string& name) { return IsLonger(name, kLongestKeyName); });
  }

  // Makes a key with those above it; false when the nearest existing one does not let the user.
  bool Make(std::string_view path) {
    return store_->Transact([&] {
      int64_t parent = 0;
      bool mayAdd = true;
      for (size_t start = 0, end = 0; end < path.size(); start = end + 1) {
        end = std::min(path.find('\\', start), path.size());
        if (const auto found = store_->Find(path.substr(0, end))) {
          parent = found->id;
          mayAdd = (found->rights.GrantedTo(account_) & kCreateSubKey) != 0;
          continue;
        }
        if (!mayAdd) return false;
        parent = store_->Add(parent, path.substr(start, end - start));
      }
      return true;
    });
  }

  bool IsAccount(std::string_view account) const {
    for (const std::string_view known :
         {std::string_view(account_), std::string_view("Everyone"),
          std::string_view("Administrators"), std::string_view("SYSTEM")}) {
      if (EqualText(account, known)) return true;
    }
    return false;
  }

  std::string account_;
  bool hasDynData_;
  std::string userRoot_;
  std::shared_ptr<RegistryStore> store_;
  std::vector<std::string> fixedKeys_;
};

}  // namespace

std::unique_ptr<Registry> MakeRegistry(const MachineFolder& folder,
                                       std::shared_ptr<RegistryStore> store) {
  return std::make_unique<PosixRegistry>(folder, std::move(store));
}

}  // namespace quarnel
