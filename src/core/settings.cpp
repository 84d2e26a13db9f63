#include "core/settings.h"

#include <memory>
#include <utility>
#include <variant>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {

std::span<const SettingKey> AllSettings() { return setting::kAll; }

Settings::Settings(Registry& registry, std::string applicationName)
    : registry_(registry),
      applicationName_(std::move(applicationName)),
      root_("Software\\VB and VBA Program Settings\\" + applicationName_) {}

std::string Settings::SectionPath(std::string_view section) const {
  return root_ + "\\" + std::string(section);
}

std::string Settings::GetSetting(std::string_view section, std::string_view key,
                                 std::string_view fallback) const {
  RegistryValue value;
  if (QueryValue(registry_, hive::kCurrentUser, SectionPath(section), key, value)) {
    if (auto* text = std::get_if<std::string>(&value)) return std::move(*text);
  }
  return std::string(fallback);
}

void Settings::SaveSetting(std::string_view section, std::string_view key, std::string_view value) {
  const RegistryStatus status = RegCreateKeyValue(registry_, hive::kCurrentUser,
                                                  SectionPath(section), key, std::string(value));
  if (status != RegistryStatus::kSuccess) {
    throw RuntimeError(ErrorNumber::kPathFileAccess, std::string(section) + "\\" + std::string(key),
                       static_cast<long>(status));
  }
}

std::string Settings::Get(const SettingKey& setting) const {
  return GetSetting(setting.section, setting.key, setting.fallback);
}

std::string Settings::GetOther(const SettingKey& setting) const {
  return GetSetting(setting.section, setting.key,
                    setting.otherFallback.empty() ? setting.fallback : setting.otherFallback);
}

std::string Settings::GetForToggle(const SettingKey& setting) const {
  return GetSetting(setting.section, setting.key, setting.toggleFallback);
}

void Settings::Save(const SettingKey& setting, std::string_view value) {
  SaveSetting(setting.section, setting.key, value);
}

void Settings::ResetRegistrySettings() {
  if (Trim(Get(setting::kResetValue)).empty()) return;
  std::unique_ptr<RegistryKey> key;
  if (registry_.Open(hive::kCurrentUser, root_, registry_access::kReadWrite, key) ==
      RegistryStatus::kSuccess) {
    std::string name;
    while (key->EnumKey(0, name) == RegistryStatus::kSuccess) {
      const RegistryStatus status =
          DeleteKeyTree(registry_, hive::kCurrentUser, root_ + "\\" + name, [] {});
      // A subkey that stays would be found at index 0 forever.
      if (status != RegistryStatus::kSuccess) break;
    }
  }
  key.reset();
  DeleteKey(registry_, hive::kCurrentUser, root_);
}

}  // namespace quarnel
