#include "platform/posix/machine/machine_layout.h"

#include "platform/machine.h"

namespace quarnel {
namespace {

struct SpecialFolder {
  int csidl;
  std::string_view path;  // ~ is the user's profile, @ that of all users
};

constexpr SpecialFolder kSpecialFolders[] = {
    {csidl::kDesktop, "~\\Desktop"},
    {csidl::kPrograms, "~\\Start Menu\\Programs"},
    {csidl::kPersonal, "~\\My Documents"},
    {csidl::kFavorites, "~\\Favorites"},
    {csidl::kStartup, "~\\Start Menu\\Programs\\Startup"},
    {csidl::kRecent, "~\\Recent"},
    {csidl::kSendTo, "~\\SendTo"},
    {csidl::kStartMenu, "~\\Start Menu"},
    {csidl::kMyMusic, "~\\My Documents\\My Music"},
    {csidl::kMyVideo, "~\\My Documents\\My Videos"},
    {16, "~\\Desktop"},  // CSIDL_DESKTOPDIRECTORY
    {csidl::kNetHood, "~\\NetHood"},
    {csidl::kFonts, "C:\\WINDOWS\\Fonts"},
    {csidl::kTemplates, "~\\Templates"},
    {csidl::kCommonStartMenu, "@\\Start Menu"},
    {csidl::kCommonPrograms, "@\\Start Menu\\Programs"},
    {csidl::kCommonStartup, "@\\Start Menu\\Programs\\Startup"},
    {csidl::kCommonDesktopDirectory, "@\\Desktop"},
    {csidl::kAppData, "~\\Application Data"},
    {csidl::kPrintHood, "~\\PrintHood"},
    {csidl::kLocalAppData, "~\\Local Settings\\Application Data"},
    {csidl::kCommonFavorites, "@\\Favorites"},
    {csidl::kInternetCache, "~\\Local Settings\\Temporary Internet Files"},
    {csidl::kCookies, "~\\Cookies"},
    {csidl::kHistory, "~\\Local Settings\\History"},
    {csidl::kCommonAppData, "@\\Application Data"},
    {csidl::kWindows, "C:\\WINDOWS"},
    {csidl::kSystem, "C:\\WINDOWS\\system32"},
    {csidl::kProgramFiles, "C:\\Program Files"},
    {csidl::kMyPictures, "~\\My Documents\\My Pictures"},
    {csidl::kProfile, "~"},
    {csidl::kProgramFilesCommon, "C:\\Program Files\\Common Files"},
    {csidl::kCommonTemplates, "@\\Templates"},
    {csidl::kCommonDocuments, "@\\Documents"},
    {csidl::kCommonAdminTools, "@\\Start Menu\\Programs\\Administrative Tools"},
    {csidl::kAdminTools, "~\\Start Menu\\Programs\\Administrative Tools"},
    {csidl::kCommonMusic, "@\\Documents\\My Music"},
    {csidl::kCommonPictures, "@\\Documents\\My Pictures"},
    {csidl::kCommonVideo, "@\\Documents\\My Videos"},
};

constexpr std::string_view kFurtherFolders[] = {
    "C:\\WINDOWS\\system",
    "C:\\WINDOWS\\system32\\drivers\\etc",
    "C:\\WINDOWS\\Media",
    "C:\\WINDOWS\\Temp",
};

constexpr std::string_view kTempFolder = "~\\Local Settings\\Temp";

std::string Expand(std::string_view path, std::string_view userName) {
  constexpr std::string_view kProfiles = "C:\\Documents and Settings\\";
  const bool own = path.starts_with('~');
  if (!own && !path.starts_with('@')) return std::string(path);
  return std::string(kProfiles).append(own ? userName : "All Users").append(path.substr(1));
}

}  // namespace

MachineLayout::MachineLayout(const std::string& machineFolder, std::string_view userName)
    : drivesFolder(machineFolder),
      tempFolder(Expand(kTempFolder, userName)),
      furtherFolders(std::begin(kFurtherFolders), std::end(kFurtherFolders)) {
  for (size_t i = 0; i < kDriveCount; ++i) {
    drives[i] = drivesFolder + "/drive_" + static_cast<char>('a' + i);
  }
  for (const auto& [csidl, path] : kSpecialFolders) {
    specialFolders.emplace(csidl, Expand(path, userName));
  }
}

const std::string& MachineLayout::Drive(char letter) const {
  return drives.at(static_cast<size_t>((letter | 0x20) - 'a'));
}

std::optional<std::string> MachineLayout::SpecialFolder(int csidl) const {
  const auto found = specialFolders.find(csidl);
  if (found == specialFolders.end()) return std::nullopt;
  return found->second;
}

std::vector<std::string> MachineLayout::FoldersOfNewMachine() const {
  std::vector<std::string> folders = furtherFolders;
  for (const auto& [csidl, path] : specialFolders) folders.push_back(path);
  folders.push_back(programFolder);
  folders.push_back(tempFolder);
  return folders;
}

}  // namespace quarnel
