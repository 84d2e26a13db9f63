#include "recovery/strict_restore.h"

#include "base/text.h"
#include "core/paths.h"
#include "recovery/file_restorer.h"
#include "recovery/restore.h"
#include "recovery/restore_point.h"
#include "recovery/safe_path.h"

namespace quarnel {

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
  StoredCopies files(u_.files,
                     RestorePointFile(u_.files, u_.machine, manifest.stem, restore_point::kFiles));
  StoredCopies cookies(
      u_.files, RestorePointFile(u_.files, u_.machine, manifest.stem, restore_point::kCookies));
  FileRestorer restorer(u_.files);
  for (const FileItem& item : manifest.files) {
    Step();
    RestoreFile(item, item.kind == ArchiveKind::kFiles ? files : cookies, restorer);
  }
  restorer.Settle();
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
  report_.failures.push_back({what, RefusalText(status)});
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

bool StrictRestore::StandsThere(const FileItem& item, FileRestorer& restorer) {
  const auto present = restorer.Stat(item.path);
  if (!present) return false;
  if (present->IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess);
  bool equal = present->size == item.size;
  if (equal) {
    Sha256 hash;
    std::string buffer(size_t{1} << 18, '\0');
    const auto file = restorer.Open(item.path);
    while (const size_t count = file->Read({buffer.data(), buffer.size()})) {
      hash.Update({buffer.data(), count});
    }
    equal = hash.Finish() == item.digest;
  }
  if (!equal) RequireSameFile(*present, item.path);
  return equal;
}

void StrictRestore::RestoreFile(const FileItem& item, StoredCopies& copies,
                                FileRestorer& restorer) {
  const FileDress dress{.attributes = item.attributes, .times = item.times};
  const auto failed = [this, &item](const RuntimeError& error) {
    report_.failures.push_back({item.path, error.Description()});
    u_.log.NoteInPassing("RestoreFiles",
                         RuntimeError(error.Number(), item.path, error.SystemCode()));
  };
  try {
    RequireSafePath(item.path);
    if (StandsThere(item, restorer)) {
      restorer.Dress(item.path, dress);
      ++report_.present;
      return;
    }
    restorer.Put({.path = item.path,
                  .source = [&](const FileRestorer::Pieces& take) { copies.Read(item, take); },
                  .dress = dress,
                  .placed = [this] { ++report_.files; },
                  .failed = failed});
  } catch (const RuntimeError& error) {
    failed(error);
  }
}

}  // namespace quarnel
