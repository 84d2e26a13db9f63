#include "protection/startup_locations.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "base/little_endian.h"
#include "base/text.h"
#include "base/unicode.h"
#include "core/paths.h"

namespace quarnel::startup {
namespace {

constexpr size_t kBuffer = 255;

constexpr uint32_t kMachine = hive::kLocalMachine;
constexpr uint32_t kUser = hive::kCurrentUser;

constexpr std::string_view kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kRunOnce = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr std::string_view kRunOnceEx = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr std::string_view kServices = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunServices";
constexpr std::string_view kServicesOnce =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunServicesOnce";

// What is deleted for the locations of RunOnce stands in the other hive and in the keys of
// services.
constexpr std::array<Location, 13> kLocations{{
    {kFolder},
    {"Registry Local Machine Run", Place{kMachine, kRun}, Place{kMachine, kRun}, kMachine},
    {"Registry Local Machine RunOnce", Place{kMachine, kRunOnce}, Place{kUser, kServicesOnce},
     kUser},
    {"Registry Local Machine RunOnceEx", Place{kMachine, kRunOnceEx}, Place{kUser, kServices},
     kUser},
    {"Registry Current User Run", Place{kUser, kRun}, Place{kUser, kRun}, kUser},
    {"Registry Current User RunOnce", Place{kUser, kRunOnce}, Place{kMachine, kServicesOnce},
     kMachine},
    {"Registry Current User RunOnceEx", Place{kUser, kRunOnceEx}, Place{kMachine, kServices},
     kMachine},
    {"Winlogon Shell"},
    {"Winlogon Userinit"},
    {"Registry Local Machine RunServices"},
    {"Registry Local Machine RunServicesOnce"},
    {"Registry Current User RunServices"},
    {"Registry Current User RunServicesOnce"},
}};

// The location of a section, which may come in brackets; null for one that there is not.
const Location* LocationOf(std::string_view section) {
  const std::string bare = Replace(Replace(section, "[", ""), "]", "");
  const auto* found =
      std::find_if(kLocations.begin(), kLocations.end(),
                   [&](const Location& location) { return location.label == Trim(bare); });
  return found == kLocations.end() ? nullptr : found;
}

// The units of a text value, with its NULs.
std::u16string UnitsOf(const RawValue& value) {
  std::u16string units;
  for (size_t i = 0; i + 1 < value.data.size(); i += 2) {
    units += static_cast<char16_t>(U16At(value.data, i));
  }
  return units;
}

bool IsText(ValueType type) {
  return type == ValueType::kString || type == ValueType::kExpandString;
}

// How many characters a buffer needs for the data.
size_t BufferedSize(const RawValue& value) {
  const bool isText = IsText(value.type) || value.type == ValueType::kMultiString;
  return isText ? ToUtf8(UnitsOf(value)).size() : value.data.size();
}

// Hidden entries as well, but none of the system's.
std::vector<DirectoryEntry> EntriesOf(Files& files, const std::string& folder) {
  std::vector<DirectoryEntry> entries;
  IgnoringErrors([&] { entries = files.List(folder); });
  std::erase_if(entries, [](const DirectoryEntry& entry) {
    return (entry.attributes & file_attribute::kSystem) != 0;
  });
  return entries;
}

std::string GetLinkTarget(Shell& shell, const std::string& link) {
  return shell.ShortcutTarget(link).value_or("");
}

void WalkFolder(const Reach& reach, const Visit& visit) {
  const std::string folder = GetSpecialFolderPath(reach.machine, csidl::kCommonStartup);
  if (folder.empty()) return;
  for (const DirectoryEntry& entry : EntriesOf(reach.files, folder)) {
    const std::string target = GetLinkTarget(reach.shell, folder + entry.name);
    if (!visit(entry.name, CleanStartupPath(target))) return;
  }
}

}  // namespace

std::span<const Location> Locations() { return kLocations; }

std::string GetSubKeyValue(const RawValue& value) {
  if (!IsText(value.type)) return {};
  return ToUtf8(WideTextAt(value.data, 0));
}

std::string CleanStartupPath(std::string_view text) {
  std::string path = Replace(text, "\"", "");
  path.resize(std::min(path.find(" /"), path.size()));
  const size_t dash = path.find(" -");
  if (dash != std::string::npos && path.find(" \\", dash) == std::string::npos) path.resize(dash);
  return std::string(Trim(Replace(path, ",", "")));
}

void EnumerateRegKeyValues(Registry& registry, const Place& place, const Visit& visit) {
  std::unique_ptr<RegistryKey> key;
  if (registry.Open(place.hive, place.key, registry_access::kRead, key) !=
      RegistryStatus::kSuccess) {
    return;
  }
  std::string name;
  RawValue value;
  for (uint32_t index = 0; key->EnumValue(index, name) == RegistryStatus::kSuccess; ++index) {
    if (name.size() >= kBuffer || key->Query(name, value) != RegistryStatus::kSuccess ||
        BufferedSize(value) > kBuffer) {
      return;
    }
    if (!visit(name, CleanStartupPath(GetSubKeyValue(value)))) return;
  }
}

void Walk(const Reach& reach, const Location& location, const Visit& visit) {
  if (location.walked) {
    EnumerateRegKeyValues(reach.registry, *location.walked, visit);
  } else if (location.label == kFolder) {
    WalkFolder(reach, visit);
  }
}

void BlockStartup(const Reach& reach, const StartupEntry& entry) {
  const Location* location = LocationOf(entry.section);
  if (location == nullptr) return;
  if (location->label == kFolder) {
    const std::string folder = GetSpecialFolderPath(reach.machine, csidl::kCommonStartup);
    if (folder.empty()) throw RuntimeError(ErrorNumber::kPathNotFound);
    // A name that has its ending already gets another one, and that file is not there.
    reach.files.Delete(folder + entry.name + ".lnk");
  } else if (location->blocked) {
    DeleteValue(reach.registry, location->blocked->hive, location->blocked->key, entry.name);
  }
}

void AllowStartup(const Reach& reach, const StartupEntry& entry) {
  const Location* location = LocationOf(entry.section);
  if (location == nullptr || !location->allowed) return;
  RegCreateKeyValue(reach.registry, *location->allowed, kRun, entry.name, entry.path);
}

}  // namespace quarnel::startup
