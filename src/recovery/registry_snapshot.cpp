#include "recovery/registry_snapshot.h"

#include <memory>

#include "base/text.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// The name as the registry has it, found by an enumeration; `name` itself when there is none.
template <typename Next>
std::string KeptName(std::string_view name, Next&& next) {
  std::string kept(name);
  std::string found;
  for (uint32_t i = 0; next(i, found) == RegistryStatus::kSuccess; ++i) {
    if (EqualText(found, name)) return found;
    if (EqualNames(found, name)) kept = found;
  }
  return kept;
}

std::string KeptPath(Registry& registry, uint32_t hive, const std::string& path) {
  const size_t slash = path.rfind('\\');
  const std::string above = slash == std::string::npos ? std::string() : path.substr(0, slash);
  const std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1);
  std::unique_ptr<RegistryKey> key;
  if (registry.Open(hive, above, registry_access::kRead, key) != RegistryStatus::kSuccess) {
    return path;
  }
  const std::string kept =
      KeptName(name, [&](uint32_t i, std::string& found) { return key->EnumKey(i, found); });
  return above.empty() ? kept : above + "\\" + kept;
}

class Snapshot {
 public:
  Snapshot(Registry& registry, uint32_t hive, Manifest& manifest)
      : registry_(registry), hive_(hive), manifest_(manifest) {}

  std::vector<std::string> unread;

  // Null when the key is gone, or could not be opened, which is noted.
  std::unique_ptr<RegistryKey> Open(const std::string& path) {
    std::unique_ptr<RegistryKey> key;
    const RegistryStatus status = registry_.Open(hive_, path, registry_access::kRead, key);
    if (status == RegistryStatus::kSuccess) return key;
    if (status != RegistryStatus::kFileNotFound) unread.push_back(ItemText(hive_, path));
    return nullptr;
  }

  void TakeValue(RegistryKey& key, const std::string& path, const std::string& name) {
    ValueItem item{hive_, path, name, {}};
    const RegistryStatus status = key.Query(name, item.value);
    if (status == RegistryStatus::kSuccess) {
      manifest_.values.push_back(std::move(item));
    } else if (status != RegistryStatus::kFileNotFound) {
      unread.push_back(ItemText(hive_, path, name));
    }
  }

  void TakeTree(const std::string& path) {
    const auto key = Open(path);
    if (!key) return;
    manifest_.keys.push_back({hive_, path});
    std::string name;
    for (uint32_t i = 0; Next(key->EnumValue(i, name), path); ++i) TakeValue(*key, path, name);
    for (uint32_t i = 0; Next(key->EnumKey(i, name), path); ++i) {
      std::string child = path;
      TakeTree(child.append("\\").append(name));
    }
  }

 private:
  bool Next(RegistryStatus status, const std::string& path) {
    if (status == RegistryStatus::kSuccess) return true;
    if (status != RegistryStatus::kNoMoreItems) unread.push_back(ItemText(hive_, path));
    return false;
  }

  Registry& registry_;
  uint32_t hive_;
  Manifest& manifest_;
};

}  // namespace

std::vector<std::string> SnapshotTrace(Registry& registry, const ValueItem& trace,
                                       Manifest& manifest) {
  Snapshot snapshot(registry, trace.hive, manifest);
  const std::string path = KeptPath(registry, trace.hive, trace.path);
  if (trace.name.empty()) {
    snapshot.TakeTree(path);
  } else if (const auto key = snapshot.Open(path)) {
    const auto next = [&](uint32_t i, std::string& found) { return key->EnumValue(i, found); };
    snapshot.TakeValue(*key, path, KeptName(trace.name, next));
  }
  return std::move(snapshot.unread);
}

}  // namespace quarnel
