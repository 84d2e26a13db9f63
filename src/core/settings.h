#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace quarnel {

// In which text form a setting holds its value. The four forms of truth are not interchangeable.
enum class SettingForm {
  kCheckState,      // "0" or "1", read through Val
  kYesNo,           // "Yes" or "No"
  kTrueFalse,       // "True" or "False"
  kUpperTrueFalse,  // "TRUE" or "FALSE"
  kNumber,
  kText,
  kDateTime,
};

// One line of the table of settings.
struct SettingKey {
  std::string_view section;
  std::string_view key;
  SettingForm form;
  std::string_view fallback;  // what the reader passes when the key is absent
  // A second reader's fallback where readers disagree on purpose; empty when they agree.
  std::string_view otherFallback = {};
};

// All settings with their sections, keys, forms and defaults: `setting::kScanRegistry` and so on
// are members of this table.
std::span<const SettingKey> AllSettings();

// The two-level store of named text values, under the registry key
// "Software\VB and VBA Program Settings\" & application name below HKEY_CURRENT_USER.
// Every read goes to the store; absence is never an error.
class Settings {
 public:
  Settings(Registry& registry, std::string applicationName);

  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback) const;
  // Creates section and key as needed; raises kPathFileAccess when the store refuses.
  void SaveSetting(std::string_view section, std::string_view key, std::string_view value);

  // The same by a line of the table.
  std::string Get(const SettingKey& setting) const;
  std::string GetOther(const SettingKey& setting) const;  // with the second fallback
  void Save(const SettingKey& setting, std::string_view value);

  // Empties the store when an installer asked for it by writing any text to
  // `Registry Status`/`ResetValue`; the request goes with the rest, so it runs once.
  void ResetRegistrySettings();

  const std::string& ApplicationName() const { return applicationName_; }

 private:
  std::string SectionPath(std::string_view section) const;

  Registry& registry_;
  std::string applicationName_;
};

}  // namespace quarnel
