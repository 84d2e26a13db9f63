#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "scan/scan_context.h"
#include "scan/watched_files.h"
#include "signatures/signature_files.h"

namespace quarnel {

// The string form of the user's security identifier: the name of the one subkey of the Protected
// Storage key, which is made readable first. Empty for a user without that key.
std::string GetSSID(Registry& registry);

// The phase of registry signatures: each line becomes a hive, a key and a value name, which are
// tested against the registry and entered in the results.
class RegistryScan {
 public:
  RegistryScan(const ScanContext& context, Registry& registry)
      : u_(context), registry_(registry, context.unread) {}

  void ScanRegistry();

  // A registry signature with all forms resolved but "[[USER]]" and "CB:".
  struct Entry {
    std::string company;
    std::string threatName;
    std::string threatType;
    uint32_t hive = 0;
    std::string key;
    std::string valueName;
  };
  // Tests one entry and enters its trace when it exists. `key` and `valueName` may be changed.
  void LoadSpywareRegistryToBeDeleted(Entry& entry);

 private:
  // The working record of the walk. A field that a line does not set keeps the text of the line
  // before.
  struct Record {
    std::string mainKey;
    std::string key;
    std::string valueName;
    std::string valueData;
  };

  void ScanLine(std::string_view line, Record& record);
  void ReadKeyField(std::string_view field, Record& record);
  void TestFolders(const Entry& entry);
  bool Exists(const Entry& entry);
  void Enter(const Entry& entry);

  ScanContext u_;
  WatchedRegistry registry_;
};

}  // namespace quarnel
