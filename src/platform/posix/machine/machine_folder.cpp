#include "platform/posix/machine/machine_folder.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string_view>
#include <system_error>

#include "base/host_files.h"
#include "base/text.h"
#include "platform/files.h"
#include "platform/posix/backends.h"
#include "platform/posix/files/path_map.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

constexpr std::string_view kIniName = "/machine.ini";

struct DriveTypeName {
  std::string_view name;
  DriveType type;
};

constexpr DriveTypeName kDriveTypes[] = {
    {"removable", DriveType::kRemovable}, {"fixed", DriveType::kFixed},
    {"remote", DriveType::kRemote},       {"cdrom", DriveType::kCdRom},
    {"ramdisk", DriveType::kRamDisk},
};

struct FamilyName {
  std::string_view name;
  SystemFamily family;
};

constexpr FamilyName kFamilies[] = {
    {"nt", SystemFamily::kWindowsNt},
    {"9x", SystemFamily::kWindows9x},
};

template <typename Table>
const auto* FindByName(const Table& table, std::string_view name) {
  const auto* found = std::find_if(std::begin(table), std::end(table),
                                   [&](const auto& entry) { return EqualText(entry.name, name); });
  return found == std::end(table) ? nullptr : found;
}

bool IsUserName(std::string_view name) {
  constexpr size_t kLongest = 64;
  return !name.empty() && name.size() <= kLongest && name == Trim(name) && name != "." &&
         name != ".." && name.find_first_of("\\/:*?\"<>|[]@") == std::string_view::npos &&
         std::none_of(name.begin(), name.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

bool IsSid(std::string_view sid) {
  constexpr size_t kLongest = 184;
  return sid.size() <= kLongest && sid.starts_with("S-1-") &&
         sid.find_first_not_of("0123456789-", 4) == std::string_view::npos && sid.back() != '-';
}

// Takes one entry of machine.ini; false when it makes no sense. Unknown entries are left to later
// versions.
bool TakeEntry(std::string_view section, std::string_view key, std::string_view value,
               MachineFolder& folder) {
  if (EqualText(section, "drives")) {
    const auto* type = FindByName(kDriveTypes, value);
    const std::string letter = ToUpper(key);
    if (type == nullptr || letter.size() != 1 || letter[0] < 'A' || letter[0] > 'Z') return false;
    folder.driveTypes[letter[0]] = type->type;
    return true;
  }
  if (!EqualText(section, "machine")) return true;
  if (EqualText(key, "user")) {
    folder.userName = value;
    return IsUserName(value);
  }
  if (EqualText(key, "sid")) {
    folder.sid = value;
    return IsSid(value);
  }
  if (EqualText(key, "family")) {
    const auto* family = FindByName(kFamilies, value);
    if (family != nullptr) folder.family = family->family;
    return family != nullptr;
  }
  return true;
}

void ReadIni(std::string_view bytes, const std::string& fileName, MachineFolder& folder) {
  std::string_view section;
  for (size_t number = 1; !bytes.empty(); ++number) {
    const size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = Trim(line);
    if (line.empty() || line.starts_with(';') || line.starts_with('#')) continue;
    if (line.starts_with('[') && line.ends_with(']')) {
      section = line.substr(1, line.size() - 2);
      continue;
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos ||
        !TakeEntry(section, Trim(line.substr(0, equals)), Trim(line.substr(equals + 1)), folder)) {
      throw RuntimeError(ErrorNumber::kInvalidCall,
                         fileName + ":" + std::to_string(number) + ": not understood");
    }
  }
}

std::string IniText(const MachineOptions& options) {
  const auto* family =
      std::find_if(std::begin(kFamilies), std::end(kFamilies),
                   [&](const FamilyName& entry) { return entry.family == options.family; });
  return "[machine]\nuser=" + options.userName + "\nsid=" + options.sid +
         "\nfamily=" + std::string(family->name) + "\n[drives]\nC=fixed\n";
}

void FillRegistry(const MachineFolder& folder) {
  const MachineLayout layout = folder.Layout();
  const std::unique_ptr<Registry> registry = MakeRegistry(folder, OpenStore(folder));
  const auto set = [&](std::string_view name, std::string_view value) {
    constexpr std::string_view kVersionKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
    return RegCreateKeyValue(*registry, hive::kLocalMachine, kVersionKey, name, std::string(value));
  };
  const std::string protectedStorage =
      "Software\\Microsoft\\Protected Storage System Provider\\" + folder.sid;
  for (const RegistryStatus status :
       {set("ProgramFilesDir", layout.KnownFolder(csidl::kProgramFiles)),
        set("CommonFilesDir", layout.KnownFolder(csidl::kProgramFilesCommon)),
        set("SystemRoot", layout.KnownFolder(csidl::kWindows)),
        CreateNewKey(*registry, hive::kCurrentUser, protectedStorage)}) {
    if (status != RegistryStatus::kSuccess) {
      throw RuntimeError(ErrorNumber::kDeviceError, folder.RegistryFile(),
                         static_cast<long>(status));
    }
  }
}

// Everything of a machine but its final place.
void FillMachine(const std::string& path, const MachineOptions& options) {
  const MachineLayout layout(path, options.userName);
  if (mkdir(layout.Drive('C').c_str(), 0777) != 0) RaiseErrno(errno, path);
  WriteHostFile(path + std::string(kIniName), IniText(options));
  PathMap paths(layout);
  const std::unique_ptr<Files> files = MakeFiles(paths);
  for (const std::string& folder : layout.FoldersOfNewMachine()) {
    CreateFolders(*files, folder);
  }
  FillRegistry(ReadMachineFolder(path));
}

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return home;
  const passwd* entry = getpwuid(getuid());
  return entry == nullptr ? "/" : entry->pw_dir;
}

}  // namespace

MachineFolder ReadMachineFolder(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                         &std::free);
  if (real == nullptr) throw RuntimeError(ErrorNumber::kPathNotFound, path, errno);
  MachineFolder folder;
  folder.path = real.get();
  const std::string ini = folder.path + std::string(kIniName);
  if (access(ini.c_str(), F_OK) != 0) {
    throw RuntimeError(ErrorNumber::kPathNotFound, path + " is no machine folder", errno);
  }
  const MachineOptions defaults;
  folder.userName = defaults.userName;
  folder.sid = defaults.sid;
  constexpr uint64_t kLargestIni = uint64_t{1} << 20;
  ReadIni(ReadHostFile(ini, kLargestIni), ini, folder);
  return folder;
}

std::string MachineFolderFor(const std::string& argument) {
  if (!argument.empty()) return argument;
  const char* named = std::getenv("QUARNEL_MACHINE");
  if (named != nullptr && *named != '\0') return named;
  const char* data = std::getenv("XDG_DATA_HOME");
  const std::string base =
      data != nullptr && *data == '/' ? std::string(data) : HomeFolder() + "/.local/share";
  std::string folder = base + "/quarnel/machine";
  if (access((folder + std::string(kIniName)).c_str(), F_OK) != 0) CreateMachine(folder, {});
  return folder;
}

void CreateMachine(const std::string& folder, const MachineOptions& options) {
  if (!IsUserName(options.userName)) {
    throw RuntimeError(ErrorNumber::kInvalidCall, "no user name: " + options.userName);
  }
  if (!IsSid(options.sid)) {
    throw RuntimeError(ErrorNumber::kInvalidCall, "no security identifier: " + options.sid);
  }
  namespace fs = std::filesystem;
  std::error_code error;
  // Absolute first: of a bare name that does not exist yet, the canonical form has no parent.
  fs::path target = fs::absolute(folder, error);
  if (!error) target = fs::weakly_canonical(target, error);
  if (error) RaiseErrno(error.value(), folder);
  if (!target.has_filename()) target = target.parent_path();
  if (fs::exists(target, error) && !fs::is_empty(target, error)) {
    throw RuntimeError(ErrorNumber::kFileExists, folder);
  }
  fs::create_directories(target.parent_path(), error);
  if (error) RaiseErrno(error.value(), folder);
  // It is made beside its place and then moved there, so that no half of a machine is ever opened.
  const std::string unfinished = target.string() + ".new-" + std::to_string(getpid());
  if (mkdir(unfinished.c_str(), 0777) != 0) RaiseErrno(errno, unfinished);
  try {
    FillMachine(unfinished, options);
    if (rename(unfinished.c_str(), target.c_str()) != 0) {
      const int code = errno == ENOTEMPTY ? EEXIST : errno;
      RaiseErrno(code, folder);
    }
  } catch (const RuntimeError&) {
    fs::remove_all(unfinished, error);
    throw;
  }
}

std::string HostPathOf(const std::string& folder, std::string_view windowsPath) {
  PathMap paths(ReadMachineFolder(folder).Layout());
  return paths.Locate(windowsPath).host;
}

}  // namespace quarnel
