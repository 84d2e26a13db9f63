#include "scan/folders.h"

#include <algorithm>
#include <array>

#include "core/paths.h"

namespace quarnel {
namespace {

struct FolderCode {
  int csidl;
  std::string_view below = {};
};

// Code 1 is the first line.
constexpr std::array<FolderCode, 43> kFolderCodes = {{
    {csidl::kAppData},
    {csidl::kInternetCache},
    {csidl::kAppData, "Microsoft\\CD Burning\\"},
    {csidl::kCommonAdminTools},
    {csidl::kCommonAppData},
    {csidl::kCommonDesktopDirectory},
    {csidl::kCommonDocuments},
    {csidl::kCommonFavorites},
    {csidl::kProgramFilesCommon},
    {csidl::kCommonMusic},
    {csidl::kCommonPictures},
    {csidl::kCommonPrograms},
    {csidl::kCommonStartMenu},
    {csidl::kCommonStartup},
    {csidl::kCommonTemplates},
    {csidl::kCommonVideo},
    {csidl::kCookies},
    {csidl::kDesktop},
    {csidl::kFavorites},
    {csidl::kFonts},
    {csidl::kHistory},
    {csidl::kLocalAppData},
    {csidl::kProfile, "Local Settings\\"},
    {csidl::kWindows, "Media\\"},
    {csidl::kMyMusic},
    {csidl::kMyPictures},
    {csidl::kMyVideo},
    {csidl::kNetHood},
    {csidl::kPersonal},
    {csidl::kPrintHood},
    {csidl::kProgramFiles},
    {csidl::kPrograms},
    {csidl::kRecent},
    {csidl::kSendTo},
    {csidl::kStartMenu},
    {csidl::kStartup},
    {csidl::kWindows},
    {csidl::kProfile, "Local Settings\\Temp\\"},
    {csidl::kTemplates},
    {csidl::kProfile},
    {csidl::kInternetCache},
    {csidl::kSystem},
    {csidl::kAdminTools},
}};

}  // namespace

std::vector<std::string> GetFolder(Machine& machine, int code) {
  if (code < 1 || code > static_cast<int>(kFolderCodes.size())) return {std::string()};
  const FolderCode& folder = kFolderCodes[static_cast<size_t>(code - 1)];
  return {GetSpecialFolderPath(machine, folder.csidl) + std::string(folder.below)};
}

std::vector<std::string> GetRegistryFolder(Machine& machine, Registry& registry,
                                           std::string_view token) {
  if (token == "PROGRAM_FILES") return {GetProgramFilesPath(registry)};
  if (token == "PROGRAM_FILES_COMMON") return {GetCommonProgramFilesPath(registry)};
  if (token == "SYSTEM_DIRECTORY") {
    const std::string root = GetSystemRootPath(machine, registry);
    return {root + "System\\", root + "System32\\"};
  }
  if (token == "ROOT") return {GetSystemRootPath(machine, registry).substr(0, 3)};
  if (token == "DOWNLOADED_PROGRAM_FILES") {
    return {GetSpecialFolderPath(machine, csidl::kPersonal) + "download\\"};
  }
  if (token == "WINDOWS") return {GetSpecialFolderPath(machine, csidl::kWindows)};
  return {std::string()};
}

std::string GetCurrentUser(Machine& machine) { return machine.UserName(); }

}  // namespace quarnel
