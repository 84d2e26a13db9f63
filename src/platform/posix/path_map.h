#pragma once

#include <sys/stat.h>

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarnel {

// Windows paths onto the host tree of a machine folder, in any letter case and with either slash.
//
// A component is looked for in its exact letter case first and with ASCII case folded after that,
// so every host name can be reached, also two that differ in case only. Characters that a Windows
// name cannot hold are shown as U+F000 + character and mapped back on access; a host name that
// holds such a private-use character itself shows it behind U+F07F. "." and ".." are resolved in
// the text and never lead out of the drive. A path without a drive starts at the program's folder.
//
// Lookups that miss are answered from listings of the folders, kept until the folder's time of
// change differs. Copes with hostile input: the memory for listings and the length of a path are
// bounded.
class PathMap {
 public:
  // `machineFolder` is an absolute host path.
  explicit PathMap(std::string machineFolder);

  struct Location {
    std::string host;        // the host path; the name of a missing last component as given
    bool exists = false;     // something stands there, be it a link to nothing
    bool hasFolder = false;  // the folder that holds it exists
    size_t driveLength = 0;  // the length of the part of `host` that is the drive's root
  };

  // Raises kBadFileName for a text that cannot be a path.
  Location Locate(std::string_view windowsPath);

  // The host path with each component in the letter case given, without a look at the disk. Raises
  // kBadFileName.
  Location Exact(std::string_view windowsPath) const;

  // The Windows path of an absolute, canonical host path; nothing when it lies on no drive.
  std::optional<std::string> ToWindows(std::string_view hostPath);

  struct DriveRoot {
    char letter = 'C';  // upper case
    std::string host;   // canonical host path
  };
  // The drives that the machine folder has now, by letter.
  const std::vector<DriveRoot>& Drives();

  const std::string& MachineFolder() const { return machineFolder_; }

 private:
  struct Path;
  struct Listing {
    struct stat status = {};
    bool trusted = false;   // no change can hide behind an equal time of change
    bool tooLarge = false;  // not kept; every lookup reads the folder
    std::unordered_map<std::string, std::string> names;  // folded name to one name as it stands
  };

  Path Parse(std::string_view windowsPath) const;
  const std::string* Folder(const Path& path, size_t components);
  Listing* ListingOf(const std::string& hostFolder);
  std::optional<std::string> FindName(const std::string& hostFolder, const std::string& name);
  void MakeRoom(size_t names);

  std::string machineFolder_;
  std::vector<DriveRoot> drives_;
  struct timespec drivesChanged_ = {};
  // By the path of a folder as callers write it: where it was found last.
  std::unordered_map<std::string, std::string> folders_;
  std::unordered_map<std::string, Listing> listings_;  // by host path
  size_t listedNames_ = 0;
};

// A host name as it is shown in a Windows path, and back.
std::string ShownName(std::string_view hostName);
std::string HostName(std::string_view shownName);

}  // namespace quarnel
