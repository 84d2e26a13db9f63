#include "recovery/restore.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "base/text.h"
#include "core/existing_files.h"
#include "core/lines.h"
#include "core/messages.h"
#include "recovery/archive.h"
#include "recovery/file_restorer.h"
#include "recovery/restore_note.h"
#include "recovery/restore_point.h"
#include "recovery/safe_path.h"
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

std::string_view ListEndingOf(ArchiveKind kind) {
  return kind == ArchiveKind::kFiles ? restore_point::kFileDetails : restore_point::kCookieDetails;
}

bool HasEntries(Files& files, const std::string& archive) {
  bool any = false;
  ReadArchive(files, archive, [&any](ArchiveEntry&) { any = true; });
  return any;
}

// Which item a line of the registry text is about does not matter to it: any intact line may stand
// anywhere.
class IntactLines {
 public:
  explicit IntactLines(const Manifest& manifest) {
    for (const TextItem& text : manifest.texts) {
      known_.insert(text.digest);
      left_.emplace(text.digest, &text);
    }
  }
  void Note(std::string_view line) { left_.erase(Sha256Of(line)); }
  bool Knows(std::string_view line) const { return known_.contains(Sha256Of(line)); }
  // Those whose line did not come.
  const std::map<Sha256Digest, const TextItem*>& Left() const { return left_; }

 private:
  std::set<Sha256Digest> known_;
  std::map<Sha256Digest, const TextItem*> left_;
};

// Without taking a line apart that may hold any number of fields.
bool HasSixFields(std::string_view line) {
  constexpr size_t kFields = 6;
  size_t fields = 1;
  for (size_t at = line.find(restore_point::kSeparator);
       at != std::string_view::npos && fields <= kFields;
       at = line.find(restore_point::kSeparator, at + restore_point::kSeparator.size())) {
    ++fields;
  }
  return fields == kFields;
}

std::set<std::string> EntriesOf(const Manifest& manifest, ArchiveKind kind) {
  std::set<std::string> entries;
  for (const FileItem& item : manifest.files) {
    if (item.kind == kind) entries.insert(item.entry);
  }
  return entries;
}

// What a person needs to see of a list; the log and the report hold the rest.
void AppendSome(std::string& text, std::string_view title, const std::vector<std::string>& lines) {
  constexpr size_t kShown = 20;
  if (lines.empty()) return;
  text += title;
  for (size_t i = 0; i < std::min(lines.size(), kShown); ++i) text += "\r\n" + lines[i];
  if (lines.size() > kShown) {
    text += "\r\n... and " + std::to_string(lines.size() - kShown) + " more";
  }
}

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
  const std::string manifestPath =
      RestorePointFile(u_.files, u_.machine, stem, restore_point::kManifest);
  Naming(manifestPath, "RestoreSpyware", [&] {
    const RestoreNote note(u_.files, u_.machine, stem);
    const bool strict = u_.settings.Get(setting::kStrict) == 1;
    if (!FileExists(u_.files, manifestPath)) {
      if (strict) Fail(manifestPath, "it is missing: nothing could be checked or restored exactly");
      return RestoreAsDescribed(stem, nullptr);
    }
    if (strict) return RestoreStrictly(stem, manifestPath);
    ManifestReading reading;
    try {
      reading = ReadManifest(ReadWholeFile(u_.files, manifestPath), stem);
    } catch (const RuntimeError& error) {
      reading.Fault(error.Description());
    }
    RestoreAsDescribed(stem, &reading);
    const size_t all = reading.faults;
    report_.faults = std::move(reading.damage);
    if (all <= report_.faults.size()) return;
    report_.faults.insert(report_.faults.begin(),
                          std::to_string(all) + " faults, the first of them");
  });
  TellEnd();
  return std::move(report_);
}

void Restore::RestoreStrictly(std::string_view stem, const std::string& manifestPath) {
  constexpr std::string_view kNoRecord = "its record is damaged or missing";
  const ManifestReading reading = ReadManifest(ReadWholeFile(u_.files, manifestPath), stem);
  StrictRestore({.page = u_.page,
                 .files = u_.files,
                 .registry = u_.registry,
                 .machine = u_.machine,
                 .host = u_.host,
                 .log = u_.log},
                report_)
      .Run(reading.manifest);
  for (const std::string& item : reading.damage) Fail(item, kNoRecord);
  if (const size_t more = reading.faults - reading.damage.size(); more > 0) {
    Fail(std::to_string(more) + " further items", kNoRecord);
  }
  if (reading.faults == 0) return;
  NameUnlisted(stem, ArchiveKind::kFiles, reading.manifest);
  NameUnlisted(stem, ArchiveKind::kCookies, reading.manifest);
}

void Restore::RestoreAsDescribed(std::string_view stem, const ManifestReading* manifest) {
  const std::string registry =
      RestorePointFile(u_.files, u_.machine, stem, restore_point::kRegistry);
  if (FileExists(u_.files, registry)) {
    RestoreRegistry(registry, manifest);
  } else if (manifest != nullptr && (manifest->faults > 0 || !manifest->manifest.texts.empty())) {
    Fail(registry, "the file is missing");
  }
  for (const ArchiveKind kind : {ArchiveKind::kFiles, ArchiveKind::kCookies}) {
    const std::string archive = RestorePointFile(u_.files, u_.machine, stem, EndingOf(kind));
    if (manifest == nullptr && !FileExists(u_.files, archive)) continue;
    Naming(archive, LabelOf(kind), [&] {
      if (manifest != nullptr) return ExtractByManifest(archive, kind, *manifest);
      ExtractAll(archive, kind, nullptr);
      if (HasEntries(u_.files, archive)) return;
      // One without entries looks like one that lost them all; the list beside it tells.
      const std::string list = RestorePointFile(u_.files, u_.machine, stem, ListEndingOf(kind));
      if (FileExists(u_.files, list) && !ReadWholeFile(u_.files, list).empty()) {
        Fail(archive, "it is empty, and the list beside it is not");
      }
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
    RestoreLines(path, ReadWholeFile(u_.files, path), manifest);
  });
  u_.page.picBackupProgress.SetVisible(false);
}

void Restore::RestoreLines(const std::string& path, std::string_view text,
                           const ManifestReading* manifest) {
  BackupPage& page = u_.page;
  std::optional<IntactLines> intact;
  if (manifest != nullptr) intact.emplace(manifest->manifest);
  size_t count = 0;
  for (LineReader lines(text); const auto line = lines.Next(); ++count) {
    if (intact) intact->Note(*line);
  }
  // A line that no record knows is damaged, or its record is. Where every record has found its line
  // it is the latter.
  const bool takesUnknown = intact && manifest->faults > 0 && intact->Left().empty();
  page.lblBackupProgress.SetCaption("Restore process in progress. Please wait...");
  page.pgbBackup.SetMax(static_cast<double>(count + 1));
  LineReader lines(text);
  for (size_t number = 1; const auto line = lines.Next(); ++number) {
    page.pgbBackup.SetValue(static_cast<double>(number));
    page.form.Refresh();
    u_.host.DoEvents();
    const std::string name = "line " + std::to_string(number) + " of " + path;
    const bool known = !intact || intact->Knows(*line);
    if (known || takesUnknown) RestoreLine(name, *line);
    if (!known && takesUnknown) report_.unchecked.push_back(name);
  }
  if (!intact) return;
  for (const auto& [digest, item] : intact->Left()) {
    Fail(ItemText(item->hive, item->path, item->name), "its line is damaged or missing");
  }
}

void Restore::RestoreLine(const std::string& name, std::string_view line) {
  if (line.empty()) return;
  if (!HasSixFields(line)) {
    return Fail(name, "it is damaged, or its value holds the mark between fields");
  }
  const std::vector<std::string> fields = Split(line, restore_point::kSeparator);
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

void Restore::ExtractAll(const std::string& archivePath, ArchiveKind kind, const Manifest* listed) {
  const std::set<std::string> known =
      listed != nullptr ? EntriesOf(*listed, kind) : std::set<std::string>();
  FileRestorer restorer(u_.files);
  ReadArchive(u_.files, archivePath, [&](ArchiveEntry& entry) {
    u_.host.DoEvents();
    const std::string& name = entry.Name();
    if (known.contains(name) || name.ends_with('/')) return;
    if (IsSideEntry(name)) return TellSideFile(SideFilePath(name));
    PutBelowRoot(
        name, kind, restorer, [&](const FileRestorer::Pieces& take) { entry.Read(take); },
        [this, listed, path = PlaceBelowRoot(u_.machine, name)] {
          if (listed != nullptr) report_.unchecked.push_back(path);
        });
  });
  restorer.Settle();
}

void Restore::ExtractByManifest(const std::string& archivePath, ArchiveKind kind,
                                const ManifestReading& reading) {
  StoredCopies copies(u_.files, archivePath);
  FileRestorer restorer(u_.files);
  for (const FileItem& item : reading.manifest.files) {
    if (item.kind != kind) continue;
    u_.host.DoEvents();
    if (IsSideEntry(item.entry)) {
      TellSideFile(item.path);
      continue;
    }
    PutBelowRoot(
        item.entry, kind, restorer,
        [&](const FileRestorer::Pieces& take) { copies.Read(item, take); }, [] {});
  }
  restorer.Settle();
  if (reading.faults > 0) ExtractAll(archivePath, kind, &reading.manifest);
}

void Restore::TellSideFile(const std::string& path) {
  if (!WhyUnsafe(path).empty() || !u_.files.WithoutLinks().Stat(path)) {
    Fail(path, "only strict mode brings it back to its own place");
  }
}

// Only what is gone comes back.
void Restore::PutBelowRoot(const std::string& entry, ArchiveKind kind, FileRestorer& restorer,
                           const std::function<void(const FileRestorer::Pieces& take)>& source,
                           const Handler& placed) {
  const std::string path = PlaceBelowRoot(u_.machine, entry);
  const auto failed = [this, path, kind](const RuntimeError& error) {
    Fail(path, error.Description());
    u_.log.NoteInPassing(LabelOf(kind), RuntimeError(error.Number(), path, error.SystemCode()));
  };
  try {
    RequireBelow(RestoreRoot(u_.machine), path);
    if (const auto present = restorer.Stat(path)) {
      RequireSameFile(*present, path);
      ++report_.present;
      return;
    }
    const auto noted = [this, placed] {
      ++report_.files;
      placed();
    };
    restorer.Put({.path = path, .source = source, .placed = noted, .failed = failed});
  } catch (const RuntimeError& error) {
    failed(error);
  }
}

void Restore::NameUnlisted(std::string_view stem, ArchiveKind kind, const Manifest& manifest) {
  const std::set<std::string> listed = EntriesOf(manifest, kind);
  const std::string archive = RestorePointFile(u_.files, u_.machine, stem, EndingOf(kind));
  IgnoringErrors([&] {
    ReadArchive(u_.files, archive, [&](ArchiveEntry& entry) {
      if (!listed.contains(entry.Name())) Fail(entry.Name(), "it has no intact record");
    });
  });
}

void Restore::TellEnd() {
  std::string text = "Restore process completed successfully.";
  if (!report_.failures.empty() || !report_.faults.empty()) {
    std::vector<std::string> failures;
    for (const RestoreFailure& failure : report_.failures) {
      failures.push_back(failure.what + " - " + failure.reason);
    }
    text = "Restore process completed.";
    AppendSome(text, " These items were not restored:", failures);
    AppendSome(text, "\r\nThe manifest of the restore point is damaged:", report_.faults);
    AppendSome(text,
               "\r\nNothing could be checked of these, which were restored as they lay there:",
               report_.unchecked);
  }
  Messages(u_.host, u_.settings).Inform(text);
}

}  // namespace quarnel
