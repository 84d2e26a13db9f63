#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

// Registry files (.reg), as the system's registry editor writes and reads them: "Windows Registry
// Editor Version 5.00" in UTF-16LE with its mark or in UTF-8, and the older "REGEDIT4".
namespace quarnel {

// A key by its root and the path below that.
struct KeyPath {
  uint32_t root = 0;
  std::string path;
};

// Reads "HKEY_LOCAL_MACHINE\Software\X"; a root may be shortened (HKLM, HKCU, HKCR, HKU, HKCC) and
// stand in any letter case. Nothing for an unknown root.
std::optional<KeyPath> ParseKeyPath(std::string_view text);
std::string KeyPathText(const KeyPath& key);

// One step of a registry file. A key header makes its key, then come its values.
struct RegStep {
  enum class Action { kMakeKey, kDeleteKey, kSetValue, kDeleteValue };
  Action action = Action::kMakeKey;
  KeyPath key;
  std::string name;  // of the value; empty for the default value
  RawValue value;
  size_t line = 0;  // where it stands, from 1
};

struct RegError {
  size_t line = 0;  // from 1
  std::string reason;
};

struct RegFile {
  std::vector<RegStep> steps;
  // The first thing that cannot be understood; the steps before it are then of no use.
  std::optional<RegError> error;
};

// Reads a registry file. In strings \\ and \" stand for themselves without the first backslash, any
// other backslash for itself.
RegFile ParseRegFile(std::string_view bytes);

// The steps as a file of version 5.00 in UTF-16LE with its mark, which reads back as the same
// steps.
std::string PrintRegFile(std::span<const RegStep> steps);

// One value as a line of such a file, without an end of line: "Name"=dword:00000007.
std::string ValueLine(std::string_view name, const RawValue& value);

}  // namespace quarnel
