#include "recovery/file_restorer.h"

#include <memory>
#include <utility>

#include "base/text.h"
#include "core/paths.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

// A batch is no larger than what may be left under temporary names by a crash without a burden.
constexpr size_t kMostFiles = 1000;
constexpr uint64_t kMostBytes = uint64_t{64} << 20;
constexpr size_t kMostFolders = 64;

constexpr uint32_t kSettable = file_attribute::kReadOnly | file_attribute::kHidden |
                               file_attribute::kSystem | file_attribute::kArchive |
                               file_attribute::kTemporary;

// A file that is read-only already could not be seen onto the disk.
void DressWritable(HeldFolder& folder, const std::string& name, const FileDress& dress) {
  folder.SetAttributes(name, dress.attributes & kSettable & ~file_attribute::kReadOnly);
  folder.SetTimes(name, dress.times);
}

void MakeReadOnly(HeldFolder& folder, const std::string& name, const FileDress& dress) {
  if ((dress.attributes & file_attribute::kReadOnly) == 0) return;
  folder.SetAttributes(name, dress.attributes & kSettable);
}

template <typename Action>
std::optional<RuntimeError> TroubleOf(Action&& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error;
  }
  return std::nullopt;
}

}  // namespace

void RequireBelow(std::string_view root, std::string_view path) {
  if (const std::string_view reason = WhyUnsafeBelow(root, path); !reason.empty()) {
    throw RuntimeError(ErrorNumber::kBadFileName, reason);
  }
}

void RequireSameFile(const DirectoryEntry& present, std::string_view path) {
  if (present.IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess);
  if (present.name == FileName_Parse(path)) return;
  throw RuntimeError(ErrorNumber::kFileExists,
                     "another file has the name in other letter case: " + present.name);
}

FileRestorer::~FileRestorer() {
  for (const Written& file : written_) {
    IgnoringErrors([&] { file.folder->Delete(file.temporary); });
  }
}

HeldFolders& FileRestorer::Folders() {
  if (folders_ && folders_->Count() >= kMostFolders) Settle();
  if (!folders_) folders_ = files_.HoldFolders();
  return *folders_;
}

HeldFolder& FileRestorer::FolderOf(const std::string& path) {
  if (HeldFolder* folder = Folders().Find(PartsOf(path).folder)) return *folder;
  throw RuntimeError(ErrorNumber::kPathNotFound, path);
}

std::optional<DirectoryEntry> FileRestorer::Stat(const std::string& path) {
  if (taken_.contains(TemporaryName(path))) Settle();
  const PathParts parts = PartsOf(path);
  HeldFolder* folder = Folders().Find(parts.folder);
  return folder == nullptr ? std::nullopt : folder->Stat(parts.name);
}

std::unique_ptr<File> FileRestorer::Open(const std::string& path) {
  return FolderOf(path).OpenForReading(PartsOf(path).name);
}

void FileRestorer::Dress(const std::string& path, const FileDress& dress) {
  HeldFolder& folder = FolderOf(path);
  const std::string name = PartsOf(path).name;
  DressWritable(folder, name, dress);
  MakeReadOnly(folder, name, dress);
}

void FileRestorer::Put(Item item) {
  const std::string temporary = TemporaryName(item.path);
  // Two names may come to the same one.
  if (taken_.contains(temporary)) Settle();
  const PathParts parts = PartsOf(item.path);
  Written file{.item = std::move(item), .name = parts.name, .temporary = PartsOf(temporary).name};
  std::unique_ptr<File> open;
  // Nothing is made for what turns out to be damaged before its first bytes.
  const auto begin = [&] {
    if (open) return;
    file.folder = &Folders().Make(parts.folder);
    open = file.folder->Create(file.temporary);
  };
  try {
    file.item.source([&](std::string_view piece) {
      begin();
      open->Write(piece);
      bytes_ += piece.size();
    });
    begin();
    open.reset();
    if (file.item.dress) DressWritable(*file.folder, file.temporary, *file.item.dress);
  } catch (const RuntimeError& error) {
    open.reset();
    if (file.folder != nullptr) IgnoringErrors([&] { file.folder->Delete(file.temporary); });
    throw ToldOfTarget(error, file.item.path);
  }
  file.item.source = nullptr;
  written_.push_back(std::move(file));
  taken_.insert(temporary);
  if (written_.size() >= kMostFiles || bytes_ >= kMostBytes) Settle();
}

void FileRestorer::Place(const Written& file) {
  try {
    return file.folder->PutInPlace(file.temporary, file.name);
  } catch (const RuntimeError&) {
    // A read-only file is in the way no longer than the new one takes to come.
    const auto present = file.folder->Stat(file.name);
    if (!present || (present->attributes & file_attribute::kReadOnly) == 0) throw;
    file.folder->SetAttributes(file.name, present->attributes & ~file_attribute::kReadOnly);
  }
  file.folder->PutInPlace(file.temporary, file.name);
}

void FileRestorer::Settle() {
  const std::vector<Written> files = std::exchange(written_, {});
  taken_.clear();
  bytes_ = 0;
  if (!files.empty()) FinishAll(files);
  folders_.reset();
}

void FileRestorer::FinishAll(const std::vector<Written>& files) {
  const auto unflushed = TroubleOf([&] { folders_->Flush(); });
  std::vector<const Written*> placed;
  for (const Written& file : files) {
    const auto trouble = unflushed ? unflushed : TroubleOf([&] { Place(file); });
    if (trouble) {
      IgnoringErrors([&] { file.folder->Delete(file.temporary); });
      file.item.failed(*trouble);
    } else {
      placed.push_back(&file);
    }
  }
  const auto unnamed = TroubleOf([&] { folders_->Flush(); });
  for (const Written* file : placed) {
    const auto trouble = unnamed ? unnamed : TroubleOf([&] {
      if (file->item.dress) MakeReadOnly(*file->folder, file->name, *file->item.dress);
      file->item.placed();
    });
    if (trouble) file->item.failed(*trouble);
  }
}

}  // namespace quarnel
