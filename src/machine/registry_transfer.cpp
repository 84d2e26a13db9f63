#include "machine/registry_transfer.h"

#include <memory>
#include <utility>

#include "base/text.h"

namespace quarnel {
namespace {

bool IsAtOrBelow(const KeyPath& key, const KeyPath& top) {
  if (key.root != top.root || !StartsWithText(key.path, top.path)) return false;
  return key.path.size() == top.path.size() || top.path.empty() ||
         key.path[top.path.size()] == '\\';
}

RegistryStatus Apply(Registry& registry, const RegStep& step, std::unique_ptr<RegistryKey>& key) {
  switch (step.action) {
    case RegStep::Action::kMakeKey:
      return registry.Create(step.key.root, step.key.path, key);
    case RegStep::Action::kDeleteKey: {
      key.reset();
      return DeleteKeyTree(registry, step.key.root, step.key.path, nullptr);
    }
    case RegStep::Action::kSetValue:
      return key->Set(step.name, step.value);
    case RegStep::Action::kDeleteValue:
      return key->DeleteValue(step.name);
  }
  return RegistryStatus::kInvalidParameter;
}

bool IsDeletion(RegStep::Action action) {
  return action == RegStep::Action::kDeleteKey || action == RegStep::Action::kDeleteValue;
}

}  // namespace

std::optional<RegError> ApplySteps(Registry& registry, std::span<const RegStep> steps,
                                   const std::optional<KeyPath>& below) {
  std::unique_ptr<RegistryKey> key;  // of the last header
  for (const RegStep& step : steps) {
    if (below && !IsAtOrBelow(step.key, *below)) continue;
    const RegistryStatus status = Apply(registry, step, key);
    if (status == RegistryStatus::kSuccess) continue;
    if (status == RegistryStatus::kFileNotFound && IsDeletion(step.action)) continue;
    return RegError{step.line, StatusText(status)};
  }
  return std::nullopt;
}

RegistryStatus CollectSteps(Registry& registry, const KeyPath& key, std::vector<RegStep>& steps) {
  std::unique_ptr<RegistryKey> open;
  const RegistryStatus status = registry.Open(key.root, key.path, registry_access::kRead, open);
  if (status != RegistryStatus::kSuccess) return status;
  steps.push_back({RegStep::Action::kMakeKey, key, {}, {}, 0});
  std::string name;
  for (uint32_t i = 0; open->EnumValue(i, name) == RegistryStatus::kSuccess; ++i) {
    RegStep step{RegStep::Action::kSetValue, key, name, {}, 0};
    if (open->Query(name, step.value) == RegistryStatus::kSuccess) {
      steps.push_back(std::move(step));
    }
  }
  for (uint32_t i = 0; open->EnumKey(i, name) == RegistryStatus::kSuccess; ++i) {
    CollectSteps(registry, {key.root, key.path.empty() ? name : key.path + "\\" + name}, steps);
  }
  return status;
}

std::string StatusText(RegistryStatus status) {
  switch (status) {
    case RegistryStatus::kFileNotFound:
      return "not there";
    case RegistryStatus::kAccessDenied:
      return "access denied";
    case RegistryStatus::kWriteProtected:
      return "write-protected";
    case RegistryStatus::kInvalidHandle:
      return "no such root key";
    case RegistryStatus::kKeyDeleted:
      return "deleted meanwhile";
    default:
      return "registry error " + std::to_string(static_cast<long>(status));
  }
}

}  // namespace quarnel
