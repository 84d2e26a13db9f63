#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

// Where everything of a machine stands: its drives on the host, and on the drives the folders that
// the system and the program know by a name. Nothing else on this side spells such a place out.
struct MachineLayout {
  // The layout of a machine folder (an absolute host path) and its user.
  MachineLayout(const std::string& machineFolder, std::string_view userName);

  static constexpr size_t kDriveCount = 26;
  // The host folder in which drives come and go, and the host path of each, from A on, whether or
  // not a folder stands there.
  std::string drivesFolder;
  std::array<std::string, kDriveCount> drives;
  // Windows paths without a backslash at the end.
  std::string programFolder = "C:\\Program Files\\Quarnel";
  std::string tempFolder;
  std::map<int, std::string> specialFolders;  // by CSIDL
  // What a new machine has beside all these; what is missing above a folder is made with it.
  std::vector<std::string> furtherFolders;

  // The host path of a drive; `letter` in any case.
  const std::string& Drive(char letter) const;
  std::optional<std::string> SpecialFolder(int csidl) const;
  // A special folder that every layout has.
  const std::string& KnownFolder(int csidl) const { return specialFolders.at(csidl); }
  std::vector<std::string> FoldersOfNewMachine() const;
};

}  // namespace quarnel
