#pragma once

#include <memory>
#include <string>

#include "controls/host.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "recovery/backup_page.h"
#include "recovery/file_restorer.h"
#include "recovery/manifest.h"
#include "recovery/stored_copies.h"

namespace quarnel {

struct RestoreReport;

// Brings back exactly what a manifest records: keys, empty ones too, with every value of every
// type, and files in their own places with their attributes and times. What differs from the record
// is replaced.
class StrictRestore {
 public:
  struct Uses {
    BackupPage& page;
    Files& files;
    Registry& registry;
    Machine& machine;
    Host& host;
    ErrorLog& log;
  };
  // What comes of it is added to `report`.
  StrictRestore(const Uses& uses, RestoreReport& report) : u_(uses), report_(report) {}

  void Run(const Manifest& manifest);

 private:
  void Step();
  RegistryStatus OpenKey(uint32_t hive, const std::string& path);
  void RestoreKey(const KeyItem& item);
  void RestoreValue(const ValueItem& item);
  void RestoreFile(const FileItem& item, StoredCopies& copies, FileRestorer& restorer);
  // Whether the file is as it was, but for its times and attributes. Raises what forbids to replace
  // what stands there instead.
  bool StandsThere(const FileItem& item, FileRestorer& restorer);
  void Note(const std::string& what, RegistryStatus status);

  Uses u_;
  RestoreReport& report_;
  size_t done_ = 0;
  // The key of the last item; its values follow each other.
  std::unique_ptr<RegistryKey> key_;
  KeyItem open_;
};

}  // namespace quarnel
