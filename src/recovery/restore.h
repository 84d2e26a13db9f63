#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "recovery/backup_page.h"
#include "recovery/file_restorer.h"
#include "recovery/manifest.h"

namespace quarnel {

// An item of a restore point that was not brought back.
struct RestoreFailure {
  std::string what;
  std::string reason;  // for a person to read
};

// What a restore came to.
struct RestoreReport {
  size_t registryItems = 0;
  size_t files = 0;    // brought back; those of cookies too
  size_t present = 0;  // files that stood there and were left alone
  std::vector<RestoreFailure> failures;
  // What is wrong with the manifest where the rest came back all the same, and what came back
  // unchecked for it.
  std::vector<std::string> faults;
  std::vector<std::string> unchecked;

  bool Complete() const { return failures.empty(); }
};

// Why the registry did not take an item.
std::string RefusalText(RegistryStatus status);

// Puts back what a restore point holds.
class Restore {
 public:
  struct Uses {
    BackupPage& page;
    Files& files;
    Registry& registry;
    Machine& machine;
    Settings& settings;
    Host& host;
    ErrorLog& log;
  };
  explicit Restore(const Uses& uses) : u_(uses) {}

  // Restores the point of this stem. With a manifest beside it every item is checked first, and a
  // damaged one is named and left out; with the setting chkStrict the manifest alone says what
  // comes back and how. Otherwise: values of REG_SZ and REG_DWORD into keys that exist, and files
  // that are gone, below the root of the program's drive; what a damaged manifest does not tell of
  // comes back unchecked. A message box tells the end, and every item that did not come back.
  RestoreReport RestoreSpyware(std::string_view stem);

 private:
  void Naming(std::string_view what, std::string_view label, const Handler& procedure);
  void RestoreStrictly(std::string_view stem, const std::string& manifestPath);
  void RestoreAsDescribed(std::string_view stem, const ManifestReading* manifest);
  void RestoreRegistry(const std::string& path, const ManifestReading* manifest);
  void RestoreLines(const std::string& path, std::string_view text,
                    const ManifestReading* manifest);
  void RestoreLine(const std::string& name, std::string_view line);
  // All entries but those of `listed`.
  void ExtractAll(const std::string& archivePath, ArchiveKind kind, const Manifest* listed);
  void ExtractByManifest(const std::string& archivePath, ArchiveKind kind,
                         const ManifestReading& reading);
  void PutBelowRoot(const std::string& entry, ArchiveKind kind, FileRestorer& restorer,
                    const std::function<void(const FileRestorer::Pieces& take)>& source,
                    const Handler& placed);
  // A file that only a manifest leads to.
  void TellSideFile(const std::string& path);
  // Names what the archive holds and no intact record tells of.
  void NameUnlisted(std::string_view stem, ArchiveKind kind, const Manifest& manifest);
  void TellEnd();
  void Fail(std::string_view what, std::string_view reason);

  Uses u_;
  RestoreReport report_;
};

}  // namespace quarnel
