#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/setting_keys.h"
#include "platform/registry.h"

namespace quarnel {

// The two-level store of named text values, under the registry key
// "Software\VB and VBA Program Settings\" & application name below HKEY_CURRENT_USER.
// Every read goes to the store; absence is never an error, and a value of another type than text
// counts as absent.
class Settings {
 public:
  Settings(Registry& registry, std::string applicationName);

  std::string GetSetting(std::string_view section, std::string_view name,
                         std::string_view fallback) const;
  // Creates section and name as needed; raises kPathFileAccess when the store refuses.
  void SaveSetting(std::string_view section, std::string_view name, std::string_view value);

  // The same by a key of the table, in the key's own form. A value that the form does not take as
  // it is does not compile.
  template <class Form>
  typename Form::Value Get(const SettingKey<Form>& key) const {
    return Form::Read(GetSetting(key.place.section, key.place.name, key.fallback));
  }
  template <class Form, class Value>
  requires requires(const Value& value) { Form::Write({value}); }
  void Save(const SettingKey<Form>& key, const Value& value) {
    SaveSetting(key.place.section, key.place.name, Form::Write({value}));
  }

  bool Has(const SettingPlace& place) const;

  // How often the store has failed to tell what it holds. What was read then, such as the ticks of
  // drives at the start, may not be what the user has chosen.
  size_t FailedReads() const { return failedReads_; }

  // Empties the store when an installer asked for it by writing any text to
  // `Registry Status`/`ResetValue`; the request goes with the rest, so it runs once.
  void ResetRegistrySettings();

  const std::string& ApplicationName() const { return applicationName_; }

 private:
  std::string SectionPath(std::string_view section) const;
  std::optional<std::string> Stored(const SettingPlace& place) const;

  Registry& registry_;
  std::string applicationName_;
  std::string root_;  // the application's key
  mutable size_t failedReads_ = 0;
};

}  // namespace quarnel
