#include "recovery/strict_restore.h"

#include "base/text.h"
#include "core/paths.h"
#include "recovery/file_restorer.h"
#include "recovery/restore.h"
#include "recovery/restore_point.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

constexpr uint32_t kSettable = file_attribute::kReadOnly | file_attribute::kHidden |
                               file_attribute::kSystem | file_attribute::kArchive |
                               file_attribute::kTemporary;

}  // namespace

void StrictRestore::Run(const Manifest& manifest) {
  BackupPage& page = u_.page;
  page.picBackupProgress.SetVisible(true);
  page.lblBackupProgress.SetCaption("Restore process in progress. Please wait...");
  page.pgbBackup.SetMin(0);
  page.pgbBackup.SetMax(static_cast<double>(manifest.keys.size() + manifest.values.size() +
                                            manifest.files.size() + 1));
  page.pgbBackup.SetValue(0);
  for (const KeyItem& item : manifest.keys) RestoreKey(item);
  for (const ValueItem& item : manifest.values) RestoreValue(item);
  key_.reset();
  StoredCopies files(u_.files, RestorePointFile(u_.machine, manifest.stem, restore_point::kFiles));
  StoredCopies cookies(u_.files,
                       RestorePointFile(u_.machine, manifest.stem, restore_point::kCookies));
  for (const FileItem& item : manifest.files) {
    Step();
    Reporting(u_.log, "RestoreFiles", [&] {
      try {
        RestoreFile(item, item.kind == ArchiveKind::kFiles ? files : cookies);
      } catch (const RuntimeError& error) {
        report_.failures.push_back({item.path, error.Description()});
        throw RuntimeError(error.Number(), item.path + " (" + error.Description() + ")",
                           error.SystemCode());
      }
    });
  }
  page.picBackupProgress.SetVisible(false);
}

void StrictRestore::Step() {
  u_.page.pgbBackup.SetValue(static_cast<double>(++done_));
  u_.host.DoEvents();
}

RegistryStatus StrictRestore::OpenKey(uint32_t hive, const std::string& path) {
  const KeyItem wanted{hive, path};
  if (key_ && open_ == wanted) return RegistryStatus::kSuccess;
  key_.reset();
  open_ = wanted;
  return u_.registry.Create(hive, path, key_);
}

void StrictRestore::Note(const std::string& what, RegistryStatus status) {
  if (status == RegistryStatus::kSuccess) {
    ++report_.registryItems;
    return;
  }
  report_.failures.push_back(
      {what, "the registry refuses it (" + std::to_string(static_cast<long>(status)) + ")"});
}

void StrictRestore::RestoreKey(const KeyItem& item) {
  Step();
  Note(ItemText(item.hive, item.path), OpenKey(item.hive, item.path));
}

void StrictRestore::RestoreValue(const ValueItem& item) {
  Step();
  RegistryStatus status = OpenKey(item.hive, item.path);
  if (status == RegistryStatus::kSuccess) status = key_->Set(item.name, item.value);
  Note(ItemText(item.hive, item.path, item.name), status);
}

bool StrictRestore::StandsThere(const FileItem& item) {
  Files& files = u_.files.WithoutLinks();
  const auto present = files.Stat(item.path);
  if (!present) return false;
  if (present->IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess);
  bool equal = present->size == item.size;
  if (equal) {
    Sha256 hash;
    std::string buffer(size_t{1} << 18, '\0');
    const auto file = files.Open(item.path, OpenMode::kRead);
    while (const size_t count = file->Read({buffer.data(), buffer.size()})) {
      hash.Update({buffer.data(), count});
    }
    equal = hash.Finish() == item.digest;
  }
  // Where names may differ in letter case alone, it is another file.
  if (!equal && present->name != FileName_Parse(item.path)) {
    throw RuntimeError(ErrorNumber::kFileExists,
                       "another file has the name in other letter case: " + present->name);
  }
  return equal;
}

void StrictRestore::RestoreFile(const FileItem& item, StoredCopies& copies) {
  RequireSafePath(item.path);
  FileRestorer restorer(u_.files);
  const uint32_t attributes = item.attributes & kSettable;
  const auto finish = [&](const std::string& path) {
    // A file that is read-only already could not be seen onto the disk.
    restorer.files().SetAttributes(path, attributes & ~file_attribute::kReadOnly);
    restorer.files().SetTimes(path, item.times);
  };
  if (StandsThere(item)) {
    finish(item.path);
    ++report_.present;
  } else {
    restorer.Put(
        item.path, [&](const FileRestorer::Pieces& take) { copies.Read(item, take); },
        [&](const std::string& temporary) {
          finish(temporary);
          // What stands there is in the way no longer than the new file takes to come.
          if (restorer.files().Stat(item.path)) {
            restorer.files().SetAttributes(item.path, file_attribute::kNormal);
          }
        });
    ++report_.files;
  }
  if ((attributes & file_attribute::kReadOnly) != 0) {
    restorer.files().SetAttributes(item.path, attributes);
  }
}

}  // namespace quarnel
