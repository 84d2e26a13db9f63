#include "platform/machine.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "platform/windows/backends.h"
#include "platform/windows/files/system_path.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace quarnel {
namespace {

struct DriveTypeNumber {
  UINT number;
  DriveType type;
};

constexpr DriveTypeNumber kDriveTypes[] = {
    {DRIVE_REMOVABLE, DriveType::kRemovable}, {DRIVE_FIXED, DriveType::kFixed},
    {DRIVE_REMOTE, DriveType::kRemote},       {DRIVE_CDROM, DriveType::kCdRom},
    {DRIVE_RAMDISK, DriveType::kRamDisk},
};

DriveType TypeOf(const wchar_t* root) {
  const UINT number = GetDriveTypeW(root);
  const auto* found =
      std::find_if(std::begin(kDriveTypes), std::end(kDriveTypes),
                   [&](const DriveTypeNumber& entry) { return entry.number == number; });
  return found == std::end(kDriveTypes) ? DriveType::kUnknown : found->type;
}

std::string WithoutSlash(std::wstring path) {
  while (path.ends_with(L'\\')) path.pop_back();
  return Narrow(path);
}

class WindowsMachine : public Machine {
 public:
  std::optional<std::string> SpecialFolder(int csidl) override {
    constexpr int kHighest = 0xFF;  // what stands above are wishes, such as to make the folder
    if (csidl < 0 || csidl > kHighest) return std::nullopt;
    wchar_t path[MAX_PATH] = {};
    if (!SHGetSpecialFolderPathW(nullptr, path, csidl, FALSE) || path[0] == 0) return std::nullopt;
    return WithoutSlash(path);
  }

  std::string SystemDirectory() override {
    wchar_t path[MAX_PATH] = {};
    GetSystemDirectoryW(path, MAX_PATH);
    return WithoutSlash(path);
  }

  std::string ProgramFolder() override {
    const std::wstring& path = ExecutablePath();
    return WithoutSlash(path.substr(0, path.rfind(L'\\')));
  }

  std::optional<std::string> TempFolder() override {
    wchar_t path[MAX_PATH + 1] = {};
    const DWORD size = GetTempPathW(MAX_PATH + 1, path);
    if (size == 0 || size > MAX_PATH) return std::nullopt;
    return WithoutSlash(path);
  }

  std::optional<SystemFamily> Family() override {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExW(&version)) return std::nullopt;
    return static_cast<SystemFamily>(version.dwPlatformId);
  }

  std::string UserName() override { return AccountOfUser(); }

  std::vector<Drive> Drives() override {
    wchar_t roots[4 * 26 + 1] = {};
    GetLogicalDriveStringsW(static_cast<DWORD>(std::size(roots)) - 1, roots);
    std::vector<Drive> drives;
    for (const wchar_t* root = roots; *root != 0; root += std::wstring_view(root).size() + 1) {
      const bool ready =
          GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0) != 0;
      drives.push_back({static_cast<char>(*root & ~0x20), TypeOf(root), ready});
    }
    return drives;
  }

  std::optional<VolumeInfo> Volume(std::string_view root) override {
    wchar_t label[MAX_PATH + 1] = {};
    wchar_t fileSystem[MAX_PATH + 1] = {};
    const std::wstring path = Wide(root);
    if (!GetVolumeInformationW(path.c_str(), label, MAX_PATH + 1, nullptr, nullptr, nullptr,
                               fileSystem, MAX_PATH + 1)) {
      return std::nullopt;
    }
    ULARGE_INTEGER free = {};
    ULARGE_INTEGER total = {};
    GetDiskFreeSpaceExW(path.c_str(), &free, &total, nullptr);
    return VolumeInfo{Narrow(label), Narrow(fileSystem), total.QuadPart, free.QuadPart};
  }
};

}  // namespace

std::string AccountOfUser() {
  constexpr DWORD kLongestAccount = 257;
  wchar_t name[kLongestAccount] = {};
  DWORD size = kLongestAccount;
  return GetUserNameW(name, &size) ? Narrow(name) : std::string();
}

std::unique_ptr<Machine> MakeMachine() { return std::make_unique<WindowsMachine>(); }

}  // namespace quarnel
