#include "support/temporary_machine.h"

#include <functional>
#include <set>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/held_folders.h"
#include "platform/windows/backends.h"
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
  std::optional<DirectoryEntry> Look(std::string_view path) override { return files_.Look(path); }
  std::vector<DirectoryEntry> List(std::string_view folder) override { return files_.List(folder); }
  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override {
    return (mode == OpenMode::kRead ? files_ : Kept(path)).Open(path, mode);
  }
  void Delete(std::string_view path) override { Kept(path).Delete(path); }
  void DeleteFolder(std::string_view path) override { Kept(path).DeleteFolder(path); }
  void CreateFolder(std::string_view path) override { Kept(path).CreateFolder(path); }
  void Move(std::string_view from, std::string_view to) override {
    Kept(from);
    Kept(to).Move(from, to);
  }
  void ReplaceFile(std::string_view from, std::string_view to) override {
    Kept(from);
    Kept(to).ReplaceFile(from, to);
  }
  std::unique_ptr<HeldFolders> HoldFolders() override {
    return std::make_unique<HeldFoldersByPath>(*this, [this](const std::string& path) {
      return std::make_unique<HeldFolderByPath>(*this, path);
    });
  }
  void Copy(std::string_view from, std::string_view to) override { Kept(to).Copy(from, to); }
  void SetAttributes(std::string_view path, uint32_t attributes) override {
    Kept(path).SetAttributes(path, attributes);
  }
  FileTimes Times(std::string_view path) override { return files_.Times(path); }
  void SetTimes(std::string_view path, const FileTimes& times) override {
    Kept(path).SetTimes(path, times);
  }

 private:
  // Notes what stands at a path before it is changed for the first time.
  Files& Kept(std::string_view changed) {
    if (!kept_.insert(ToUpper(changed)).second) return files_;
    std::string path(changed);
    const auto entry = files_.Stat(path);
    if (!entry) {
      undo_.Add([this, path] { Remove(path); });
    } else if (entry->IsFolder()) {
      undo_.Add([this, path] { CreateFolders(files_, path); });
      for (const DirectoryEntry& below : files_.List(path)) Kept(path + "\\" + below.name);
    } else {
      undo_.Add([this, path, entry = *entry, bytes = ReadWholeFile(files_, path)] {
        IgnoringErrors([&] { files_.SetAttributes(path, file_attribute::kNormal); });
        WriteWholeFile(files_, path, bytes);
        files_.SetModified(path, entry.modified);
        files_.SetAttributes(path, entry.attributes);
      });
    }
    return files_;
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

// Each value of a key, as it stands.
std::vector<std::pair<std::string, RawValue>> ValuesOf(RegistryKey& key) {
  std::vector<std::pair<std::string, RawValue>> values;
  std::string name;
  for (uint32_t i = 0; key.EnumValue(i, name) == RegistryStatus::kSuccess; ++i) {
    key.Query(name, values.emplace_back(name, RawValue()).second);
  }
  return values;
}

class UndoneRegistry : public Registry {
 public:
  UndoneRegistry(Registry& registry, UndoList& undo) : registry_(registry), undo_(undo) {}

  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    Registry& kept = access == registry_access::kRead ? registry_ : Kept(root, path);
    return kept.Open(root, path, access, key);
  }
  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    return Kept(root, path).Create(root, path, key);
  }
  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return Kept(root, path).Delete(root, path);
  }
  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return registry_.SetKeySecurity(root, path, account, access);
  }
  std::string AccountName() override { return registry_.AccountName(); }

 private:
  // Notes what stands at a key before it is changed for the first time: its values, or the topmost
  // key on its path that is to be made.
  Registry& Kept(uint32_t root, std::string_view changed) {
    if (!kept_.emplace(root, ToUpper(changed)).second) return registry_;
    std::unique_ptr<RegistryKey> key;
    const auto open = [&](const std::string& path) {
      return registry_.Open(root, path, registry_access::kRead, key);
    };
    std::string path;
    for (const std::string& name : Split(changed, "\\")) {
      path += (path.empty() ? "" : "\\") + name;
      if (name.empty() || open(path) != RegistryStatus::kFileNotFound) continue;
      undo_.Add([this, root, path] { DeleteKeyTree(registry_, root, path, nullptr); });
      return registry_;
    }
    if (open(path) != RegistryStatus::kSuccess) return registry_;
    undo_.Add([this, root, path, values = ValuesOf(*key)] {
      std::unique_ptr<RegistryKey> again;
      if (registry_.Create(root, path, again) != RegistryStatus::kSuccess) return;
      for (const auto& [name, value] : ValuesOf(*again)) again->DeleteValue(name);
      for (const auto& [name, value] : values) again->Set(name, value);
    });
    return registry_;
  }

  Registry& registry_;
  UndoList& undo_;
  std::set<std::pair<uint32_t, std::string>> kept_;
};

// A platform on the running system that takes back, when it is destroyed, what was changed in files
// and registry through it, so that each test finds the system as the one before found it. Rights of
// keys stay changed.
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

// The system that the tests run on is not theirs to restart.
TemporaryMachine::TemporaryMachine() {
  ReplaceRestartCall([](uint32_t, uint32_t) { return false; });
}
TemporaryMachine::~TemporaryMachine() = default;

std::unique_ptr<Platform> TemporaryMachine::Open() {
  return std::make_unique<UndonePlatform>(OpenPlatform(folder_));
}

}  // namespace quarnel
