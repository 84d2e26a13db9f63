#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/posix/machine/machine_layout.h"

namespace quarnel {

// What tells one state of a folder from another. Trusted when every later change of the folder must
// show as another time of change: the system's clock for file times moves in ticks, and a change
// within the tick of the last one leaves the time as it was.
struct FolderStamp {
  struct stat status = {};
  bool trusted = false;

  // Takes the state that `fresh` shows now; what is read from the folder after this call belongs to
  // it.
  static FolderStamp Of(const struct stat& fresh);
  bool StillHolds(const struct stat& fresh) const;
};

// Windows paths onto the host tree of a machine folder, in any letter case and with either slash.
//
// A component is looked for in its exact letter case first and with letter case folded after that,
// so every host name can be reached, also two that differ in case only. Characters that a Windows
// name cannot hold are shown as U+F000 + character and mapped back on access; a host name that
// holds such a private-use character itself shows it behind U+F07F. "." and ".." are resolved in
// the text and never lead out of the drive. A path without a drive starts at the program's folder.
//
// Lookups that miss are answered from listings of the folders, each kept until the folder's time of
// change differs. The memory for listings and the length of a path are bounded.
class PathMap {
 public:
  explicit PathMap(MachineLayout layout) : layout_(std::move(layout)) {}

  struct Location {
    std::string host;        // the host path; what is missing of it stands as it was given
    size_t driveLength = 0;  // the length of its part that is the drive's root
    bool exists = false;     // something stands there, be it a link to nothing
    bool hasFolder = false;  // the folder that holds it, or would, exists
    int obstacle = 0;        // why nobody can tell that it does not exist; the system's code

    bool IsDriveRoot() const { return host.size() == driveLength; }
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
    std::string host;   // canonical host path without a slash at the end
  };
  // The drives that the machine folder has now, by letter.
  const std::vector<DriveRoot>& Drives();

  const MachineLayout& Layout() const { return layout_; }

 private:
  struct Listing {
    FolderStamp stamp;
    bool kept = false;          // its names are here; else every lookup reads the folder
    bool caseVariants = false;  // some names differ in letter case only
    size_t bytes = 0;           // about what it holds in memory
    std::unordered_map<std::string, std::string> names;  // by folded name
  };

  struct Lookup {
    bool found = false;
    std::string name;  // as it stands on the disk
  };

  struct Known {
    std::string host;
    size_t length = 0;  // of its path in the letter case given
  };

  std::optional<std::string> KnownFolder(const std::string& exact);
  Known NearestKnown(const std::string& exact, size_t driveLength);
  Known FolderBelow(Known known, const std::string& exact);
  void Remember(const std::string& exact, const std::string& host);
  Location LocateFrom(Location location);
  void Read(const std::string& folder, Listing& listing);
  std::optional<Lookup> Find(const std::string& folder, const std::string& name);
  Lookup FindIn(const Listing& listing, const std::string& folder, const std::string& name);
  Lookup Search(const std::string& folder, const std::string& name);
  bool LStat(const std::string& host, struct stat& status);
  bool FolderStat(const std::string& host, struct stat& status);
  void NoteFailure(int code);
  void MakeRoom(size_t bytes);

  MachineLayout layout_;
  std::vector<DriveRoot> drives_;
  FolderStamp drivesStamp_;
  // Where folders were found, by their host path in the letter case that callers gave.
  std::unordered_map<std::string, std::string> folders_;
  std::unordered_map<std::string, Listing> listings_;  // by host path
  size_t cachedBytes_ = 0;
  int obstacle_ = 0;  // what the present lookup could not look at
};

// A host name as it is shown in a Windows path, and back.
std::string ShownName(std::string_view hostName);
std::string HostName(std::string_view shownName);

}  // namespace quarnel
