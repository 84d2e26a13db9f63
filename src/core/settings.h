#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/setting_keys.h"
#include "platform/registry.h"

namespace quarnel {

// All settings with their sections, keys, forms and fallbacks.
std::span<const SettingKey> AllSettings();

// The two-level store of named text values, under the registry key
// "Software\VB and VBA Program Settings\" & application name below HKEY_CURRENT_USER.
// Every read goes to the store; absence is never an error, and a value of another type than text
// counts as absent.
class Settings {
 public:
  Settings(Registry& registry, std::string applicationName);

  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback) const;
  // Creates section and key as needed; raises kPathFileAccess when the store refuses.
  void SaveSetting(std::string_view section, std::string_view key, std::string_view value);

  // The same by a line of the table.
  std::string Get(const SettingKey& setting) const;
  std::string GetOther(const SettingKey& setting) const;      // with the second fallback
  std::string GetForToggle(const SettingKey& setting) const;  // with the third
  void Save(const SettingKey& setting, std::string_view value);

  // Empties the store when an installer asked for it by writing any text to
  // `Registry Status`/`ResetValue`; the request goes with the rest, so it runs once.
  void ResetRegistrySettings();

  const std::string& ApplicationName() const { return applicationName_; }

 private:
  std::string SectionPath(std::string_view section) const;

  Registry& registry_;
  std::string applicationName_;
  std::string root_;  // the application's key
};

}  // namespace quarnel
