#include "platform/held_folders.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"

namespace quarnel {

PathParts PartsOf(const std::string& path) {
  const size_t slash = path.find_last_of("\\/");
  if (slash == std::string::npos) return {".", path};
  const bool isRoot = slash > 0 && path[slash - 1] == ':';
  return {path.substr(0, isRoot ? slash + 1 : slash), path.substr(slash + 1)};
}

std::string PathIn(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.ends_with('\\')) path += '\\';
  return path.append(name);
}

void RequireName(std::string_view name) {
  constexpr std::string_view kForbidden("\\/:*?\"<>|\0", 10);
  if (name.empty() || name == "." || name == ".." ||
      name.find_first_of(kForbidden) != std::string_view::npos) {
    throw RuntimeError(ErrorNumber::kBadFileName, name.substr(0, 260));
  }
}

std::string HeldFolderByPath::PathOf(std::string_view name) const {
  RequireName(name);
  return PathIn(path_, name);
}

std::optional<DirectoryEntry> HeldFolderByPath::Stat(std::string_view name) {
  std::optional<DirectoryEntry> entry;
  IgnoringErrors([&] { entry = files_.Stat(PathOf(name)); });
  return entry;
}

std::unique_ptr<File> HeldFolderByPath::OpenForReading(std::string_view name) {
  return files_.Open(PathOf(name), OpenMode::kRead);
}

std::unique_ptr<File> HeldFolderByPath::Create(std::string_view name) {
  const std::string path = PathOf(name);
  if (files_.Stat(path)) files_.Delete(path);
  auto file = files_.Open(path, OpenMode::kCreate);
  unflushed_.emplace_back(name);
  return file;
}

void HeldFolderByPath::Delete(std::string_view name) {
  files_.Delete(PathOf(name));
  std::erase(unflushed_, name);
}

void HeldFolderByPath::SetAttributes(std::string_view name, uint32_t attributes) {
  files_.SetAttributes(PathOf(name), attributes);
}

void HeldFolderByPath::SetTimes(std::string_view name, const FileTimes& times) {
  files_.SetTimes(PathOf(name), times);
}

void HeldFolderByPath::PutInPlace(std::string_view from, std::string_view to) {
  Replace(PathOf(from), PathOf(to));
  std::replace(unflushed_.begin(), unflushed_.end(), std::string(from), std::string(to));
}

void HeldFolderByPath::Replace(const std::string& from, const std::string& to) {
  files_.ReplaceFile(from, to);
}

// Where no more than this can be asked for, the system keeps the names of folders in a journal.
void HeldFolderByPath::Flush() {
  for (const std::string& name : std::exchange(unflushed_, {})) {
    const std::string path = PathOf(name);
    // Opening it would make it.
    if (!files_.Stat(path)) throw RuntimeError(ErrorNumber::kFileNotFound, path);
    files_.Open(path, OpenMode::kReadWrite)->Flush();
  }
}

HeldFolder* HeldFoldersByPath::Find(const std::string& path) {
  if (const auto known = folders_.find(path); known != folders_.end()) return known->second.get();
  const auto entry = files_.Stat(path);
  if (!entry || !entry->IsFolder()) return nullptr;
  std::unique_ptr<HeldFolderByPath> folder;
  if (!IgnoringErrors([&] { folder = hold_(path); })) return nullptr;
  return folders_.emplace(path, std::move(folder)).first->second.get();
}

HeldFolder& HeldFoldersByPath::Make(const std::string& path) {
  if (const auto known = folders_.find(path); known != folders_.end()) return *known->second;
  CreateFolders(files_, path);
  return *folders_.emplace(path, hold_(path)).first->second;
}

void HeldFoldersByPath::Flush() {
  for (const auto& [path, folder] : folders_) folder->Flush();
}

}  // namespace quarnel
