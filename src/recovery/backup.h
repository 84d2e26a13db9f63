#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "recovery/backup_page.h"
#include "scan/results.h"

namespace quarnel {

class ArchiveWriter;
struct Manifest;

// A trace that a restore point does not hold, or a file of the restore point that is not there.
struct BackupFailure {
  std::string what;    // the trace's own text, or the file's path
  std::string reason;  // for a person to read
};

// What a backup came to. What it counts as saved is in the restore point's manifest.
struct BackupReport {
  std::string stem;    // the restore point's identity
  std::string folder;  // where its files lie
  size_t registryTraces = 0;
  size_t files = 0;
  size_t cookies = 0;
  std::vector<BackupFailure> failures;

  bool Complete() const { return failures.empty(); }
};

// Takes a snapshot of everything that the result lists name, ticked or not.
class Backup {
 public:
  struct Uses {
    BackupPage& page;
    ResultsPage& results;
    Files& files;
    Registry& registry;
    Machine& machine;
    Host& host;
    ErrorLog& log;
  };
  explicit Backup(const Uses& uses) : u_(uses) {}

  // Makes a restore point. When it returns, all that it holds is on the disk. A failure ends the
  // file that it befalls and nothing else: it is logged and stands in the report, and the manifest
  // claims no copy that does not exist.
  BackupReport BackupSpyware();

 private:
  struct FileList;
  struct Found;

  std::string FreshFile(const BackupReport& report, std::string_view ending);
  void BackupRegistry(BackupReport& report, Manifest& manifest);
  // The number of files that were stored.
  size_t BackupList(const FileList& files, BackupReport& report, Manifest& manifest);
  // Nothing when no file stands there.
  std::optional<Found> Look(std::string_view path);
  void AddToArchive(const std::string& path, ArchiveWriter& archive,
                    std::map<std::string, Found>& found);
  void WriteManifest(BackupReport& report, const Manifest& manifest);

  Uses u_;
};

}  // namespace quarnel
