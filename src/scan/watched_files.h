#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/registry.h"
#include "scan/unread.h"

namespace quarnel {

// The file system as a scan uses it: whatever cannot be looked at, listed, opened for reading or
// read is noted as unread, whether or not the phase that asked can tell it from what is not there.
class WatchedFiles : public Files {
 public:
  WatchedFiles(Files& files, Unread& unread) : files_(files), unread_(unread) {}

  Files& WithoutLinks() override { return files_.WithoutLinks(); }
  std::optional<DirectoryEntry> Look(std::string_view path) override;
  std::vector<DirectoryEntry> List(std::string_view folder) override;
  std::vector<DirectoryEntry> ListBriefly(std::string_view folder) override;
  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override;
  // Not watched, since its users are threads of their own: what they miss is opened once more.
  std::unique_ptr<ListedFolder> OpenFolder(std::string_view folder) override {
    return files_.OpenFolder(folder);
  }
  std::unique_ptr<HeldFolders> HoldFolders() override;
  void Delete(std::string_view path) override { files_.Delete(path); }
  void DeleteFolder(std::string_view path) override { files_.DeleteFolder(path); }
  void CreateFolder(std::string_view path) override { files_.CreateFolder(path); }
  void Move(std::string_view from, std::string_view to) override { files_.Move(from, to); }
  void ReplaceFile(std::string_view from, std::string_view to) override {
    files_.ReplaceFile(from, to);
  }
  void Copy(std::string_view from, std::string_view to) override { files_.Copy(from, to); }
  void SetAttributes(std::string_view path, uint32_t attributes) override {
    files_.SetAttributes(path, attributes);
  }
  FileTimes Times(std::string_view path) override { return files_.Times(path); }
  void SetTimes(std::string_view path, const FileTimes& times) override {
    files_.SetTimes(path, times);
  }

 private:
  // Runs a step; its failure is noted and goes on.
  template <typename Step>
  auto Watched(std::string_view kind, std::string_view path, const Step& step);
  std::vector<DirectoryEntry> Checked(std::string_view folder, std::vector<DirectoryEntry> entries);

  Files& files_;
  Unread& unread_;
};

// The same for the registry: every status is noted that tells neither success nor absence.
class WatchedRegistry : public Registry {
 public:
  WatchedRegistry(Registry& registry, Unread& unread) : registry_(registry), unread_(unread) {}

  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override;
  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    return registry_.Create(root, path, key);
  }
  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return registry_.Delete(root, path);
  }
  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return registry_.SetKeySecurity(root, path, account, access);
  }
  std::string AccountName() override { return registry_.AccountName(); }

 private:
  Registry& registry_;
  Unread& unread_;
};

}  // namespace quarnel
