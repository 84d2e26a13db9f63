#include "core/settings.h"

#include <memory>
#include <utility>
#include <variant>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {

Settings::Settings(Registry& registry, std::string applicationName)
    : registry_(registry),
      applicationName_(std::move(applicationName)),
      root_("Software\\VB and VBA Program Settings\\" + applicationName_) {}

std::string Settings::SectionPath(std::string_view section) const {
  return root_ + "\\" + std::string(section);
}

std::optional<std::string> Settings::Stored(const SettingPlace& place) const {
  std::unique_ptr<RegistryKey> key;
  RawValue raw;
  RegistryStatus status =
      registry_.Open(hive::kCurrentUser, SectionPath(place.section), registry_access::kRead, key);
  if (status == RegistryStatus::kSuccess) status = key->Query(place.name, raw);
  if (status != RegistryStatus::kSuccess) {
    if (!IsAnswer(status)) ++failedReads_;
    return std::nullopt;
  }
  const auto value = ValueFromRaw(raw);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

bool Settings::Has(const SettingPlace& place) const { return Stored(place).has_value(); }

std::string Settings::GetSetting(std::string_view section, std::string_view name,
                                 std::string_view fallback) const {
  return Stored({section, name}).value_or(std::string(fallback));
}

void Settings::SaveSetting(std::string_view section, std::string_view name,
                           std::string_view value) {
  const RegistryStatus status = RegCreateKeyValue(registry_, hive::kCurrentUser,
                                                  SectionPath(section), name, std::string(value));
  if (status != RegistryStatus::kSuccess) {
    throw RuntimeError(ErrorNumber::kPathFileAccess,
                       std::string(section) + "\\" + std::string(name), static_cast<long>(status));
  }
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
