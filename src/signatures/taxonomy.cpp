#include "signatures/taxonomy.h"

#include <array>
#include <cstddef>

#include "base/text.h"
#include "platform/registry.h"

namespace quarnel {
namespace {

constexpr std::array<std::string_view, 54> kThreatTypes = {
    "Worm",
    "Adware",
    "Commercial rat",
    "System Monitor",
    "Browser Helper Object",
    "Commercial Network Managment Tool",
    "Browser Hacker",
    "Keylogger",
    "Cool Savings",
    "Dialer",
    "Spyware",
    "Trojan",
    "Trojan Horse",
    "Generic Malware",
    "Ansi Bomb",
    "AOL Pest",
    "Back Door",
    "Binder",
    "Carding",
    "Cracking Doc",
    "Anarchy",
    "Cracking Misc",
    "Cracking Tool",
    "DDOS",
    "DOS",
    "Downloader",
    "Worm Creation Tool",
    "Dropper",
    "Encryption Tool",
    "Exploit",
    "explosives",
    "Firewall Killer",
    "Hacking Tutorial",
    "Hijacker",
    "Rat",
    "Phreaking Tool",
    "Port Scanner",
    "Probe Tool",
    "Sniffer",
    "Virus Creation Tool",
    "Virus Source",
    "Virus Tutorial",
    "War Dialer",
    "Spam Tool",
    "Spoofer",
    "Flooder",
    "Trojan Creation Tool",
    "Spyware Hacking Tool",
    "Hackers Tools",
    "Browser Plugin",
    "Commercial Keylogger",
    "Remote Administration Tool",
    "Spyware Cookie",
    "Proxy",
};

// The code skips handle 0x80000004, which the program never uses.
constexpr std::array<Hive, 6> kHives = {{
    {hive::kClassesRoot, "HKEY_CLASSES_ROOT"},
    {hive::kCurrentUser, "HKEY_CURRENT_USER"},
    {hive::kLocalMachine, "HKEY_LOCAL_MACHINE"},
    {hive::kUsers, "HKEY_USERS"},
    {hive::kCurrentConfig, "HKEY_CURRENT_CONFIG"},
    {hive::kDynData, "HKEY_DYN_DATA"},
}};

// The entry of a table at the number in front of a text; null outside the table.
template <typename Entry, size_t kSize>
const Entry* EntryAt(const std::array<Entry, kSize>& table, std::string_view code) {
  const double number = Val(code);
  if (!(number >= 0 && number < static_cast<double>(kSize))) return nullptr;
  const auto index = static_cast<size_t>(number);
  // A fraction is no entry's code.
  return static_cast<double>(index) == number ? &table[index] : nullptr;
}

}  // namespace

std::span<const std::string_view> ThreatTypes() { return kThreatTypes; }

std::string_view GetTypeOfSpyWare(std::string_view sType) {
  const std::string_view* name = EntryAt(kThreatTypes, sType);
  return name != nullptr ? *name : "Unknown";
}

std::span<const Hive> Hives() { return kHives; }

uint32_t GetMainKeyFromFile(std::string_view sMainKey) {
  const Hive* hive = EntryAt(kHives, sMainKey);
  return hive != nullptr ? hive->handle : 0;
}

std::string_view HiveName(uint32_t handle) {
  for (const Hive& hive : kHives) {
    if (hive.handle == handle) return hive.name;
  }
  return {};
}

std::string RegistryTraceText(std::string_view hiveName, std::string_view key,
                              std::string_view valueName) {
  std::string text(hiveName);
  text.append("\\").append(key).append(" -> Value Name: ").append(valueName);
  return text;
}

}  // namespace quarnel
