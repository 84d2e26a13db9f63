#include "recovery/restore.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "base/text.h"
#include "core/lines.h"
#include "core/paths.h"
#include "recovery/archive.h"
#include "recovery/file_restorer.h"
#include "recovery/restore_note.h"
#include "recovery/restore_point.h"
#include "recovery/stored_copies.h"
#include "recovery/strict_restore.h"

namespace quarnel {
namespace {

std::string_view LabelOf(ArchiveKind kind) {
  return kind == ArchiveKind::kFiles ? "RestoreFiles" : "RestoreCookies";
}

std::string_view EndingOf(ArchiveKind kind) {
  return kind == ArchiveKind::kFiles ? restore_point::kFiles : restore_point::kCookies;
}

// Which item a line of the registry text is about does not matter to it: any intact line may stand
// anywhere.
class IntactLines {
 public:
  explicit IntactLines(const Manifest& manifest) {
    for (const TextItem& text : manifest.texts) left_.emplace(text.digest, &text);
  }
  bool Take(std::string_view line) {
    const Sha256Digest digest = Sha256Of(line);
    const auto found = left_.find(digest);
    if (found == left_.end()) return taken_.contains(digest);
    taken_.insert(digest);
    left_.erase(found);
    return true;
  }
  // Those that did not come.
  const std::map<Sha256Digest, const TextItem*>& Left() const { return left_; }

 private:
  std::map<Sha256Digest, const TextItem*> left_;
  std::set<Sha256Digest> taken_;
};

}  // namespace

std::string RefusalText(RegistryStatus status) {
  return "the registry refuses it (" + std::to_string(static_cast<long>(status)) + ")";
}

void Restore::Fail(std::string_view what, std::string_view reason) {
  report_.failures.push_back({std::string(what), std::string(reason)});
}

// As Reporting, and what was given up stands in the report.
void Restore::Naming(std::string_view what, std::string_view label, const Handler& procedure) {
  Reporting(u_.log, label, [&] {
    try {
      procedure();
    } catch (const RuntimeError& error) {
      Fail(what, error.Description());
      throw;
    }
  });
}

RestoreReport Restore::RestoreSpyware(std::string_view stem) {
  report_ = {};
  bool tellFailures = false;
  const std::string manifestPath = RestorePointFile(u_.machine, stem, restore_point::kManifest);
  Naming(manifestPath, "RestoreSpyware", [&] {
    const RestoreNote note(u_.files, u_.machine, stem);
    const bool strict = u_.settings.Get(setting::kStrict) == "1";
    const bool hasManifest = FileExists(u_.files, manifestPath);
    tellFailures = strict || hasManifest;
    if (!hasManifest) {
      if (strict) Fail(manifestPath, "it is missing: nothing could be checked or restored exactly");
      return RestoreAsDescribed(stem, nullptr);
    }
    const ManifestReading reading = ReadManifest(ReadWholeFile(u_.files, manifestPath), stem);
    if (strict) {
      StrictRestore({.page = u_.page,
                     .files = u_.files,
                     .registry = u_.registry,
                     .machine = u_.machine,
                     .host = u_.host,
                     .log = u_.log},
                    report_)
          .Run(reading.manifest);
    } else {
      RestoreAsDescribed(stem, &reading);
    }
    for (const std::string& item : reading.damage) Fail(item, "its record is damaged or missing");
    if (reading.damage.empty()) return;
    NameUnlisted(stem, ArchiveKind::kFiles, reading.manifest);
    NameUnlisted(stem, ArchiveKind::kCookies, reading.manifest);
  });
  TellEnd(tellFailures);
  return std::move(report_);
}

void Restore::RestoreAsDescribed(std::string_view stem, const ManifestReading* manifest) {
  const std::string registry = RestorePointFile(u_.machine, stem, restore_point::kRegistry);
  if (FileExists(u_.files, registry)) {
    RestoreRegistry(registry, manifest);
  } else if (manifest != nullptr && !manifest->manifest.texts.empty()) {
    Fail(registry, "the file is missing");
  }
  for (const ArchiveKind kind : {ArchiveKind::kFiles, ArchiveKind::kCookies}) {
    const std::string archive = RestorePointFile(u_.machine, stem, EndingOf(kind));
    if (manifest == nullptr && !FileExists(u_.files, archive)) continue;
    Naming(archive, LabelOf(kind), [&] {
      manifest != nullptr ? ExtractByManifest(archive, kind, manifest->manifest)
                          : ExtractAll(archive, kind);
    });
  }
  u_.page.picBackupProgress.SetVisible(false);
}

void Restore::RestoreRegistry(const std::string& path, const ManifestReading* manifest) {
  Naming(path, "RestoreRegistry", [&] {
    BackupPage& page = u_.page;
    page.picBackupProgress.SetVisible(true);
    page.lblBackupProgress.SetCaption("Please wait while initializing restore process...");
    page.pgbBackup.SetMin(0);
    page.pgbBackup.SetMax(100);
    page.pgbBackup.SetValue(0);
    const std::string text = ReadWholeFile(u_.files, path);
    size_t count = 0;
    for (LineReader lines(text); lines.Next();) ++count;
    page.lblBackupProgress.SetCaption("Restore process in progress. Please wait...");
    page.pgbBackup.SetMax(static_cast<double>(count + 1));
    std::optional<IntactLines> intact;
    if (manifest != nullptr) intact.emplace(manifest->manifest);
    LineReader lines(text);
    for (size_t number = 1; const auto line = lines.Next(); ++number) {
      page.pgbBackup.SetValue(static_cast<double>(number));
      page.form.Refresh();
      u_.host.DoEvents();
      if (!intact || intact->Take(*line)) RestoreLine(*line);
    }
    if (intact) {
      for (const auto& [digest, item] : intact->Left()) {
        Fail(ItemText(item->hive, item->path, item->name), "its line is damaged or missing");
      }
    }
  });
  u_.page.picBackupProgress.SetVisible(false);
}

void Restore::RestoreLine(std::string_view line) {
  constexpr size_t kFields = 6;
  const std::vector<std::string> fields = Split(line, restore_point::kSeparator);
  if (fields.size() != kFields) return;
  const auto type = static_cast<ValueType>(ValLong(fields[5]));
  const RegistryStatus status = SetKeyValue(u_.registry, static_cast<uint32_t>(ValLong(fields[1])),
                                            fields[2], fields[3], fields[4], type);
  switch (status) {
    case RegistryStatus::kSuccess:
      ++report_.registryItems;
      break;
    case RegistryStatus::kInvalidHandle:     // the first value of a key that was gone
    case RegistryStatus::kInvalidParameter:  // a number that the text's form cannot give back
      break;
    default:
      Fail(ItemText(static_cast<uint32_t>(ValLong(fields[1])), fields[2], fields[3]),
           RefusalText(status));
  }
}

void Restore::ExtractAll(const std::string& archivePath, ArchiveKind kind) {
  FileRestorer restorer(u_.files);
  ReadArchive(u_.files, archivePath, [&](ArchiveEntry& entry) {
    u_.host.DoEvents();
    if (IsSideEntry(entry.Name()) || entry.Name().ends_with('/')) return;
    PutBelowRoot(entry.Name(), kind, restorer,
                 [&](const FileRestorer::Pieces& take) { entry.Read(take); });
  });
  restorer.Settle();
}

void Restore::ExtractByManifest(const std::string& archivePath, ArchiveKind kind,
                                const Manifest& manifest) {
  StoredCopies copies(u_.files, archivePath);
  FileRestorer restorer(u_.files);
  for (const FileItem& item : manifest.files) {
    if (item.kind != kind || IsSideEntry(item.entry)) continue;
    u_.host.DoEvents();
    PutBelowRoot(item.entry, kind, restorer,
                 [&](const FileRestorer::Pieces& take) { copies.Read(item, take); });
  }
  restorer.Settle();
}

// Only what is gone comes back.
void Restore::PutBelowRoot(const std::string& entry, ArchiveKind kind, FileRestorer& restorer,
                           const std::function<void(const FileRestorer::Pieces& take)>& source) {
  const std::string path = PlaceBelowRoot(u_.machine, entry);
  const auto failed = [this, path, kind](const RuntimeError& error) {
    Fail(path, error.Description());
    u_.log.NoteInPassing(LabelOf(kind), RuntimeError(error.Number(), path, error.SystemCode()));
  };
  try {
    RequireBelow(RestoreRoot(u_.machine), path);
    if (restorer.Stat(path)) {
      ++report_.present;
      return;
    }
    restorer.Put(
        {.path = path, .source = source, .placed = [this] { ++report_.files; }, .failed = failed});
  } catch (const RuntimeError& error) {
    failed(error);
  }
}

void Restore::NameUnlisted(std::string_view stem, ArchiveKind kind, const Manifest& manifest) {
  std::set<std::string> listed;
  for (const FileItem& item : manifest.files) {
    if (item.kind == kind) listed.insert(item.entry);
  }
  const std::string archive = RestorePointFile(u_.machine, stem, EndingOf(kind));
  IgnoringErrors([&] {
    ReadArchive(u_.files, archive, [&](ArchiveEntry& entry) {
      if (!listed.contains(entry.Name())) Fail(entry.Name(), "it has no intact record");
    });
  });
}

void Restore::TellEnd(bool withFailures) {
  std::string text = "Restore process completed successfully.";
  const std::vector<RestoreFailure>& failures = report_.failures;
  if (withFailures && !failures.empty()) {
    constexpr size_t kShown = 20;
    text = "Restore process completed. These items were not restored:";
    for (size_t i = 0; i < std::min(failures.size(), kShown); ++i) {
      text += "\r\n" + failures[i].what + " - " + failures[i].reason;
    }
    if (failures.size() > kShown) {
      text += "\r\n... and " + std::to_string(failures.size() - kShown) + " more";
    }
  }
  u_.host.MsgBox(
      {.text = text, .title = u_.settings.ApplicationName(), .icon = MessageIcon::kInformation});
}

}  // namespace quarnel
