#include "support/windows/undone_platform.h"

#include <functional>
#include <set>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/held_folders.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

// Steps that lead back, taken in reverse order.
class UndoList {
 public:
  UndoList() = default;
  ~UndoList() {
    while (!steps_.empty()) {
      IgnoringErrors(steps_.back());
      steps_.pop_back();
    }
  }
  UndoList(const UndoList&) = delete;
  UndoList& operator=(const UndoList&) = delete;

  void Add(std::function<void()> step) { steps_.push_back(std::move(step)); }

 private:
  std::vector<std::function<void()>> steps_;
};

class UndoneFiles : public Files {
 public:
  UndoneFiles(Files& files, UndoList& undo) : files_(files), undo_(undo) {}

  Files& WithoutLinks() override {
    if (!withoutLinks_) {
      withoutLinks_ = std::make_unique<UndoneFiles>(files_.WithoutLinks(), undo_);
    }
    return *withoutLinks_;
  }
  std::optional<DirectoryEntry> Stat(std::string_view path) override { return files_.Stat(path); }
  std::vector<DirectoryEntry> List(std::string_view folder) override { return files_.List(folder); }
  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override {
    if (mode != OpenMode::kRead) Keep(path);
    return files_.Open(path, mode);
  }
  void Delete(std::string_view path) override {
    Keep(path);
    files_.Delete(path);
  }
  void DeleteFolder(std::string_view path) override {
    Keep(path);
    files_.DeleteFolder(path);
  }
  void CreateFolder(std::string_view path) override {
    Keep(path);
    files_.CreateFolder(path);
  }
  void Move(std::string_view from, std::string_view to) override {
    Keep(from);
    Keep(to);
    files_.Move(from, to);
  }
  void ReplaceFile(std::string_view from, std::string_view to) override {
    Keep(from);
    Keep(to);
    files_.ReplaceFile(from, to);
  }
  std::unique_ptr<HeldFolders> HoldFolders() override {
    return std::make_unique<HeldFoldersByPath>(*this, [this](const std::string& path) {
      return std::make_unique<HeldFolderByPath>(*this, path);
    });
  }
  void Copy(std::string_view from, std::string_view to) override {
    Keep(to);
    files_.Copy(from, to);
  }
  void SetAttributes(std::string_view path, uint32_t attributes) override {
    Keep(path);
    files_.SetAttributes(path, attributes);
  }
  FileTimes Times(std::string_view path) override { return files_.Times(path); }
  void SetTimes(std::string_view path, const FileTimes& times) override {
    Keep(path);
    files_.SetTimes(path, times);
  }

 private:
  // Notes what stands at a path before it is changed for the first time.
  void Keep(std::string_view changed) {
    if (!kept_.insert(ToUpper(changed)).second) return;
    std::string path(changed);
    const auto entry = files_.Stat(path);
    if (!entry) {
      undo_.Add([this, path] { Remove(path); });
      return;
    }
    if (entry->IsFolder()) {
      undo_.Add([this, path] { CreateFolders(files_, path); });
      for (const DirectoryEntry& below : files_.List(path)) Keep(path + "\\" + below.name);
      return;
    }
    undo_.Add([this, path, entry = *entry, bytes = ReadWholeFile(files_, path)] {
      IgnoringErrors([&] { files_.SetAttributes(path, file_attribute::kNormal); });
      WriteWholeFile(files_, path, bytes);
      files_.SetModified(path, entry.modified);
      files_.SetAttributes(path, entry.attributes);
    });
  }

  void Remove(const std::string& path) {
    DeleteTree(files_, path);
    IgnoringErrors([&] { files_.SetAttributes(path, file_attribute::kNormal); });
    IgnoringErrors([&] { files_.Delete(path); });
  }

  Files& files_;
  UndoList& undo_;
  std::set<std::string> kept_;
  std::unique_ptr<UndoneFiles> withoutLinks_;
};

struct KeyName {
  uint32_t root;
  std::string path;
};

class UndoneKey : public RegistryKey {
 public:
  UndoneKey(std::unique_ptr<RegistryKey> key, Registry& registry, UndoList& undo, KeyName name)
      : key_(std::move(key)), registry_(registry), undo_(undo), name_(std::move(name)) {}

  RegistryStatus Query(std::string_view name, RawValue& value) override {
    return key_->Query(name, value);
  }
  RegistryStatus Set(std::string_view name, const RawValue& value) override {
    Keep(name);
    return key_->Set(name, value);
  }
  RegistryStatus DeleteValue(std::string_view name) override {
    Keep(name);
    return key_->DeleteValue(name);
  }
  RegistryStatus EnumKey(uint32_t index, std::string& name) override {
    return key_->EnumKey(index, name);
  }
  RegistryStatus EnumValue(uint32_t index, std::string& name) override {
    return key_->EnumValue(index, name);
  }

 private:
  void Keep(std::string_view value) {
    RawValue before;
    const bool isThere = key_->Query(value, before) == RegistryStatus::kSuccess;
    undo_.Add([&registry = registry_, key = name_, name = std::string(value), before, isThere] {
      std::unique_ptr<RegistryKey> open;
      if (registry.Open(key.root, key.path, registry_access::kReadWrite, open) !=
          RegistryStatus::kSuccess) {
        return;
      }
      if (isThere) {
        open->Set(name, before);
      } else {
        open->DeleteValue(name);
      }
    });
  }

  std::unique_ptr<RegistryKey> key_;
  Registry& registry_;
  UndoList& undo_;
  KeyName name_;
};

class UndoneRegistry : public Registry {
 public:
  UndoneRegistry(Registry& registry, UndoList& undo) : registry_(registry), undo_(undo) {}

  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    const RegistryStatus status = registry_.Open(root, path, access, key);
    if (status == RegistryStatus::kSuccess) Wrap(key, root, path);
    return status;
  }

  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    KeepAbsence(root, path);
    const RegistryStatus status = registry_.Create(root, path, key);
    if (status == RegistryStatus::kSuccess) Wrap(key, root, path);
    return status;
  }

  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    KeepValues(root, path);
    return registry_.Delete(root, path);
  }

  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return registry_.SetKeySecurity(root, path, account, access);
  }
  std::string AccountName() override { return registry_.AccountName(); }

 private:
  void Wrap(std::unique_ptr<RegistryKey>& key, uint32_t root, std::string_view path) {
    key = std::make_unique<UndoneKey>(std::move(key), registry_, undo_,
                                      KeyName{root, std::string(path)});
  }

  // Notes the topmost key on a path that is to be made.
  void KeepAbsence(uint32_t root, std::string_view path) {
    for (size_t end = 0; end < path.size(); ++end) {
      end = std::min(path.find('\\', end), path.size());
      std::string key(path.substr(0, end));
      std::unique_ptr<RegistryKey> open;
      if (key.empty() || registry_.Open(root, key, registry_access::kRead, open) !=
                             RegistryStatus::kFileNotFound) {
        continue;
      }
      undo_.Add([this, root, key] { DeleteKeyTree(registry_, root, key, nullptr); });
      return;
    }
  }

  void KeepValues(uint32_t root, std::string_view path) {
    std::unique_ptr<RegistryKey> open;
    if (registry_.Open(root, path, registry_access::kRead, open) != RegistryStatus::kSuccess) {
      return;
    }
    std::vector<std::pair<std::string, RawValue>> values;
    std::string name;
    for (uint32_t i = 0; open->EnumValue(i, name) == RegistryStatus::kSuccess; ++i) {
      open->Query(name, values.emplace_back(name, RawValue()).second);
    }
    undo_.Add([this, root, key = std::string(path), values] {
      std::unique_ptr<RegistryKey> made;
      if (registry_.Create(root, key, made) != RegistryStatus::kSuccess) return;
      for (const auto& [value, raw] : values) made->Set(value, raw);
    });
  }

  Registry& registry_;
  UndoList& undo_;
};

class UndonePlatform : public Platform {
 public:
  explicit UndonePlatform(std::unique_ptr<Platform> platform)
      : platform_(std::move(platform)),
        files_(platform_->files(), undo_),
        registry_(platform_->registry(), undo_) {}

  Files& files() override { return files_; }
  Registry& registry() override { return registry_; }
  Processes& processes() override { return platform_->processes(); }
  VersionRecords& versions() override { return platform_->versions(); }
  Machine& machine() override { return platform_->machine(); }
  Shell& shell() override { return platform_->shell(); }
  Desktop& desktop() override { return platform_->desktop(); }
  Power& power() override { return platform_->power(); }

 private:
  std::unique_ptr<Platform> platform_;
  UndoneFiles files_;
  UndoneRegistry registry_;
  // Destroyed first, while all that it needs still stands.
  UndoList undo_;
};

}  // namespace

std::unique_ptr<Platform> MakeUndonePlatform(std::unique_ptr<Platform> platform) {
  return std::make_unique<UndonePlatform>(std::move(platform));
}

}  // namespace quarnel
