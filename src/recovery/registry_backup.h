#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "recovery/backup_page.h"
#include "recovery/manifest.h"
#include "scan/results.h"

namespace quarnel {

// Shows a pass over rows in percent and lets events be processed whenever the number changes.
class PassProgress {
 public:
  PassProgress(BackupPage& page, Host& host, std::string_view text, size_t rows);
  // The pass is at this row, counted from 1.
  void At(size_t row);

 private:
  BackupPage& page_;
  Host& host_;
  std::string text_;
  size_t rows_;
  size_t shown_ = 0;
};

// A value's data as the registry text of a restore point holds it: strings up to their first NUL,
// binary data as hexadecimal digits, numbers with at least three digits, nothing for other types.
// `type` is asked for when it is -1 or 0. A value that is gone gives an empty text.
std::string GetSubKeyValue(RegistryKey& key, std::string_view valueName, int32_t& type);

// The text of registry values in a restore point: one line a value, six fields.
class RegistryBackup {
 public:
  struct Uses {
    BackupPage& page;
    ResultsPage& results;
    Files& files;
    Registry& registry;
    Host& host;
    ErrorLog& log;
  };
  explicit RegistryBackup(const Uses& uses) : u_(uses) {}

  // Writes what lvwRegistryEntriesFound names. Ends without a file, with the progress left as it
  // is, at the first trace of a value whose key cannot be opened. The reason why there is no file;
  // empty when there is one.
  std::string BackupRegistry(std::string_view path);

  // What the last file holds, line by line.
  const std::vector<TextItem>& Lines() const { return lines_; }

  // Adds the values of a key and of all below it to a list of six columns. A key with n subkeys has
  // its values entered n + 1 times.
  void EnumerateRegSubKeys(ListView& list, std::string_view threatName, uint32_t hive,
                           const std::string& key);
  // Ends at a name or data that the fixed buffers of 255 characters do not hold.
  void EnumerateRegKeyValues(ListView& list, std::string_view threatName, uint32_t hive,
                             const std::string& key);

 private:
  bool Collect();
  void Write(std::string_view path);

  Uses u_;
  std::vector<TextItem> lines_;
  std::string missing_;  // the key that could not be opened
};

}  // namespace quarnel
