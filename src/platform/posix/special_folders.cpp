#include "platform/posix/special_folders.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
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
    {csidl::kSystem, kSystemFolder},
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
    kProgramFolder,       "C:\\WINDOWS\\system", "C:\\WINDOWS\\system32\\drivers\\etc",
    "C:\\WINDOWS\\Media", "C:\\WINDOWS\\Temp",
};

constexpr std::string_view kTempFolder = "~\\Local Settings\\Temp";

std::string Expand(std::string_view path, std::string_view userName) {
  constexpr std::string_view kProfiles = "C:\\Documents and Settings\\";
  const bool own = path.starts_with('~');
  if (!own && !path.starts_with('@')) return std::string(path);
  return std::string(kProfiles).append(own ? userName : "All Users").append(path.substr(1));
}

}  // namespace

std::optional<std::string> SpecialFolderPath(int csidl, std::string_view userName) {
  const auto* found =
      std::find_if(std::begin(kSpecialFolders), std::end(kSpecialFolders),
                   [&](const SpecialFolder& folder) { return folder.csidl == csidl; });
  if (found == std::end(kSpecialFolders)) return std::nullopt;
  return Expand(found->path, userName);
}

std::string TempFolderPath(std::string_view userName) { return Expand(kTempFolder, userName); }

std::vector<std::string> FoldersOfNewMachine(std::string_view userName) {
  std::vector<std::string> folders;
  for (const SpecialFolder& folder : kSpecialFolders) {
    folders.push_back(Expand(folder.path, userName));
  }
  folders.insert(folders.end(), std::begin(kFurtherFolders), std::end(kFurtherFolders));
  folders.push_back(TempFolderPath(userName));
  return folders;
}

}  // namespace quarnel
