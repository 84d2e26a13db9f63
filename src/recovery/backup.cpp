#include "recovery/backup.h"

#include <utility>

#include "base/text.h"
#include "core/existing_files.h"
#include "core/own_files.h"
#include "core/paths.h"
#include "recovery/archive.h"
#include "recovery/manifest.h"
#include "recovery/registry_backup.h"
#include "recovery/registry_snapshot.h"
#include "recovery/restore_point.h"
#include "scan/traces.h"

namespace quarnel {

// One of the two lists of files, and where it goes.
struct Backup::FileList {
  const ListView& list;
  ArchiveKind kind;
  std::string_view label;  // in the error log
  std::string_view text;   // of the progress
  std::string_view archive;
  std::string_view details;
};

// A row's file as it stands before the removal.
struct Backup::Found {
  std::string path;  // in full, its name in the letter case that the disk has
  DirectoryEntry facts;
  FileTimes times;
};

BackupReport Backup::BackupSpyware() {
  BackupReport report;
  report.folder = BackupFolder(u_.machine);
  Manifest manifest;
  const bool madeFolder = Reporting(u_.log, "BackupSpyware", [&] {
    try {
      report.folder = OwnFolderToWrite(u_.files, u_.machine, report.folder);
    } catch (const RuntimeError& error) {
      report.failures.push_back({report.folder, error.Description()});
      throw;
    }
  });
  if (!madeFolder) return report;
  manifest.stem = report.stem = StemOf(u_.host.clock().Now());
  BackupRegistry(report, manifest);
  const ResultsPage& results = u_.results;
  report.files =
      BackupList({results.lvwFilesToBeDeleted, ArchiveKind::kFiles, "BackupFiles",
                  "Taking files backup.", restore_point::kFiles, restore_point::kFileDetails},
                 report, manifest);
  report.cookies =
      BackupList({results.lvwTrackingCookieObjectrecognized, ArchiveKind::kCookies, "BackupCookies",
                  "Taking cookies backup.", restore_point::kCookies, restore_point::kCookieDetails},
                 report, manifest);
  WriteManifest(report, manifest);
  return report;
}

// A path of the restore point that no earlier file stands at.
std::string Backup::FreshFile(const BackupReport& report, std::string_view ending) {
  std::string path = report.folder + "\\" + report.stem + std::string(ending);
  IgnoringErrors([&] { u_.files.Delete(path); });
  return path;
}

void Backup::BackupRegistry(BackupReport& report, Manifest& manifest) {
  RegistryBackup text({.page = u_.page,
                       .results = u_.results,
                       .files = u_.files,
                       .registry = u_.registry,
                       .host = u_.host,
                       .log = u_.log});
  const std::string path = FreshFile(report, restore_point::kRegistry);
  if (const std::string reason = text.BackupRegistry(path); !reason.empty()) {
    report.failures.push_back({path, reason});
  }
  manifest.texts = text.Lines();
  const ListView& list = u_.results.lvwRegistryEntriesFound;
  for (size_t i = 0; i < list.Count(); ++i) {
    RegistryTrace row = RegistryTrace::Of(list.At(i));
    const ValueItem trace{row.hive, std::move(row.key), std::move(row.valueName), {}};
    const size_t before = manifest.keys.size() + manifest.values.size();
    const auto unread = SnapshotTrace(u_.registry, trace, manifest);
    for (const std::string& item : unread) {
      report.failures.push_back({item, "it cannot be read"});
    }
    const bool found = manifest.keys.size() + manifest.values.size() > before;
    if (found && unread.empty()) ++report.registryTraces;
  }
}

std::optional<Backup::Found> Backup::Look(std::string_view path) {
  if (path.find_first_of("*?") != std::string_view::npos) return std::nullopt;
  const auto facts = u_.files.Stat(path);
  if (!facts || facts->IsFolder()) return std::nullopt;
  Found found{std::string(path), *facts, {}};
  if (path.size() < 2 || path[1] != ':') {
    found.path = GetPathWithSlash(u_.machine.ProgramFolder()) + found.path;
  }
  found.path.replace(found.path.rfind('\\') + 1, std::string::npos, facts->name);
  IgnoringErrors([&] { found.times = u_.files.Times(path); });
  return found;
}

size_t Backup::BackupList(const FileList& files, BackupReport& report, Manifest& manifest) {
  BackupPage& page = u_.page;
  page.picBackupProgress.SetVisible(true);
  page.lblBackupProgress.SetCaption("Please wait while initializing files backup...");
  page.pgbBackup.SetValue(0);
  const std::string archivePath = FreshFile(report, files.archive);
  const std::string detailPath = FreshFile(report, files.details);
  std::string details;
  std::map<std::string, Found> found;
  ArchiveWriter archive(u_.files, archivePath, [this] { u_.host.DoEvents(); });
  PassProgress progress(page, u_.host, files.text, files.list.Count());
  const size_t columns = files.list.ColumnHeaders().size();
  for (size_t i = 0; i < files.list.Count(); ++i) {
    const ListRow row = files.list.At(i);  // a copy: events may change the list
    progress.At(i + 1);
    AddToArchive(row.text, archive, found);
    details += row.text;
    for (size_t column = 1; column < columns; ++column) {
      details.append(restore_point::kSeparator).append(row.SubItem(column));
    }
    details += "\r\n";
  }
  const auto noting = [&](const std::string& path, auto&& action) {
    Reporting(u_.log, files.label, [&] {
      try {
        action();
      } catch (const RuntimeError& error) {
        report.failures.push_back({path, error.Description()});
        throw;
      }
    });
  };
  ArchiveWriter::Result result;
  noting(archivePath, [&] { result = archive.Finish(); });
  noting(detailPath, [&] { ReplaceWholeFile(u_.files, detailPath, details); });
  page.picBackupProgress.SetVisible(false);
  for (UnstoredFile& file : result.unstored) {
    report.failures.push_back({std::move(file.source), std::move(file.reason)});
  }
  for (StoredFile& file : result.stored) {
    const Found& source = found.find(file.source)->second;
    manifest.files.push_back({files.kind, source.path, file.size, file.digest,
                              source.facts.attributes, source.times, std::move(file.entry),
                              file.offset});
  }
  return result.stored.size();
}

void Backup::AddToArchive(const std::string& path, ArchiveWriter& archive,
                          std::map<std::string, Found>& found) {
  const auto file = Look(path);
  if (!file || !found.emplace(path, *file).second) return;
  // What a search does not show is not for the archive to bring back by itself.
  const bool seen = !Dir(u_.files, path, Search::kHidden).empty();
  if (seen && archive.Add(path, EntryName(file->path), file->facts)) return;
  archive.Add(path, SideEntryName(file->path), file->facts);
}

void Backup::WriteManifest(BackupReport& report, const Manifest& manifest) {
  const std::string path = FreshFile(report, restore_point::kManifest);
  Reporting(u_.log, "BackupSpyware", [&] {
    try {
      ReplaceWholeFile(u_.files, path, ManifestText(manifest));
    } catch (const RuntimeError& error) {
      report.failures.push_back({path, error.Description()});
      throw;
    }
  });
}

}  // namespace quarnel
