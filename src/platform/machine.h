#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

// Numbers of special folders (CSIDL), as the shell gives them.
namespace csidl {
inline constexpr int kDesktop = 0, kPrograms = 2, kPersonal = 5, kFavorites = 6, kStartup = 7,
                     kRecent = 8, kSendTo = 9, kStartMenu = 11, kMyMusic = 13, kMyVideo = 14,
                     kNetHood = 19, kFonts = 20, kTemplates = 21, kCommonStartMenu = 22,
                     kCommonPrograms = 23, kCommonStartup = 24, kCommonDesktopDirectory = 25,
                     kAppData = 26, kPrintHood = 27, kLocalAppData = 28, kCommonFavorites = 31,
                     kInternetCache = 32, kCookies = 33, kHistory = 34, kCommonAppData = 35,
                     kWindows = 36, kSystem = 37, kProgramFiles = 38, kMyPictures = 39,
                     kProfile = 40, kProgramFilesCommon = 43, kCommonTemplates = 45,
                     kCommonDocuments = 46, kCommonAdminTools = 47, kAdminTools = 48,
                     kCommonMusic = 53, kCommonPictures = 54, kCommonVideo = 55;
}  // namespace csidl

enum class DriveType {
  kUnknown = 0,
  kRemovable = 1,
  kFixed = 2,
  kRemote = 3,
  kCdRom = 4,
  kRamDisk = 5
};

struct Drive {
  char letter = 'C';
  DriveType type = DriveType::kUnknown;
  bool ready = false;
};

struct VolumeInfo {
  std::string label;
  std::string fileSystem;
  uint64_t totalBytes = 0;
  uint64_t freeBytes = 0;
};

// The line of the operating system, by its platform number.
enum class SystemFamily { kWindows9x = 1, kWindowsNt = 2 };

// What the program asks about the machine and its user. Folders come without a backslash at the
// end.
class Machine {
 public:
  virtual ~Machine() = default;
  // The path of a special folder; nothing when the machine has none of that number.
  virtual std::optional<std::string> SpecialFolder(int csidl) = 0;
  virtual std::string SystemDirectory() = 0;
  // The folder in which the running program lies.
  virtual std::string ProgramFolder() = 0;
  virtual std::optional<std::string> TempFolder() = 0;
  // Nothing when the system does not tell.
  virtual std::optional<SystemFamily> Family() = 0;
  virtual std::string UserName() = 0;
  virtual std::vector<Drive> Drives() = 0;
  // Label and file system of the volume at "C:\"; nothing when it is not ready.
  virtual std::optional<VolumeInfo> Volume(std::string_view root) = 0;
};

}  // namespace quarnel
