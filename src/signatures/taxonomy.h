#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The codes of signature lines and what they stand for.
namespace quarnel {

// The names of threat types by their code, from 0. The spellings are seen by the user, kept in
// files and compared by the program.
std::span<const std::string_view> ThreatTypes();

// The type name of a decimal code, taken by the number at its front: an empty text is code 0, and a
// code outside the table gives "Unknown".
std::string_view GetTypeOfSpyWare(std::string_view sType);

// A root of the registry: its position in the table is its code in signature lines.
struct Hive {
  uint32_t handle;
  std::string_view name;
};
std::span<const Hive> Hives();

// The handle for the hive code of a registry signature; 0 for a code outside the table.
uint32_t GetMainKeyFromFile(std::string_view sMainKey);

// "HKEY_LOCAL_MACHINE"; empty for a handle outside the table.
std::string_view HiveName(uint32_t handle);

// How a registry trace is shown and recognised everywhere: in the tree, in the list, on the safe
// list. For a whole key nothing stands behind the marker.
std::string RegistryTraceText(std::string_view hiveName, std::string_view key,
                              std::string_view valueName);

}  // namespace quarnel
