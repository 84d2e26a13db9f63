#include "scan/watched_files.h"

#include <utility>

#include "core/paths.h"
#include "platform/held_folders.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kUnreadFile = "file";
constexpr std::string_view kUnreadFolder = "folder";

class WatchedFile : public File {
  template <typename Step>
  auto Watched(const Step& step) {
    try {
      return step();
    } catch (const RuntimeError&) {
      unread_.Add(kUnreadFile, path_);
      throw;
    }
  }

 public:
  WatchedFile(std::unique_ptr<File> file, std::string path, Unread& unread)
      : file_(std::move(file)), path_(std::move(path)), unread_(unread) {}

  size_t Read(std::span<char> buffer) override {
    return Watched([&] { return file_->Read(buffer); });
  }
  void Write(std::string_view bytes) override { file_->Write(bytes); }
  void Seek(uint64_t position) override {
    Watched([&] { file_->Seek(position); });
  }
  uint64_t Size() override {
    return Watched([&] { return file_->Size(); });
  }
  void Flush() override { file_->Flush(); }

 private:
  std::unique_ptr<File> file_;
  std::string path_;
  Unread& unread_;
};

class WatchedKey : public RegistryKey {
 public:
  WatchedKey(std::unique_ptr<RegistryKey> key, std::string name, Unread& unread)
      : key_(std::move(key)), name_(std::move(name)), unread_(unread) {}

  RegistryStatus Query(std::string_view name, RawValue& value) override {
    return Noted(key_->Query(name, value));
  }
  RegistryStatus Set(std::string_view name, const RawValue& value) override {
    return key_->Set(name, value);
  }
  RegistryStatus DeleteValue(std::string_view name) override { return key_->DeleteValue(name); }
  RegistryStatus EnumKey(uint32_t index, std::string& name) override {
    return Noted(key_->EnumKey(index, name));
  }
  RegistryStatus EnumValue(uint32_t index, std::string& name) override {
    return Noted(key_->EnumValue(index, name));
  }

 private:
  RegistryStatus Noted(RegistryStatus status) {
    if (!IsAnswer(status)) unread_.AddBrokenRegistry(name_);
    return status;
  }

  std::unique_ptr<RegistryKey> key_;
  std::string name_;
  Unread& unread_;
};

}  // namespace

template <typename Step>
auto WatchedFiles::Watched(std::string_view kind, std::string_view path, const Step& step) {
  try {
    return step();
  } catch (const RuntimeError& error) {
    if (!TellsAbsence(error)) unread_.Add(kind, path);
    throw;
  }
}

std::optional<DirectoryEntry> WatchedFiles::Look(std::string_view path) {
  return Watched(kUnreadFile, path, [&] { return files_.Look(path); });
}

std::vector<DirectoryEntry> WatchedFiles::Checked(std::string_view folder,
                                                  std::vector<DirectoryEntry> entries) {
  for (const DirectoryEntry& entry : entries) {
    if (entry.unseen) unread_.Add(kUnreadFile, GetPathWithSlash(folder) + entry.name);
  }
  return entries;
}

std::vector<DirectoryEntry> WatchedFiles::List(std::string_view folder) {
  return Watched(kUnreadFolder, folder, [&] { return Checked(folder, files_.List(folder)); });
}

std::vector<DirectoryEntry> WatchedFiles::ListBriefly(std::string_view folder) {
  return Watched(kUnreadFolder, folder,
                 [&] { return Checked(folder, files_.ListBriefly(folder)); });
}

std::unique_ptr<File> WatchedFiles::Open(std::string_view path, OpenMode mode) {
  if (mode != OpenMode::kRead) return files_.Open(path, mode);
  return Watched(kUnreadFile, path, [&]() -> std::unique_ptr<File> {
    return std::make_unique<WatchedFile>(files_.Open(path, mode), std::string(path), unread_);
  });
}

std::unique_ptr<HeldFolders> WatchedFiles::HoldFolders() { return files_.HoldFolders(); }

RegistryStatus WatchedRegistry::Open(uint32_t root, std::string_view path, uint32_t access,
                                     std::unique_ptr<RegistryKey>& key) {
  std::unique_ptr<RegistryKey> open;
  const RegistryStatus status = registry_.Open(root, path, access, open);
  const auto name = [&] { return std::string(HiveName(root)) + "\\" + std::string(path); };
  if (status == RegistryStatus::kSuccess) {
    key = std::make_unique<WatchedKey>(std::move(open), name(), unread_);
  } else if (!IsAnswer(status)) {
    unread_.AddBrokenRegistry(name());
  }
  return status;
}

}  // namespace quarnel
