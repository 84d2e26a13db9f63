#include "core/paths.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "controls/host.h"
#include "controls/simple_controls.h"

namespace quarnel {
namespace {

constexpr std::string_view kCurrentVersion = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

std::string_view CutAtNul(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string FolderFromRegistry(Registry& registry, std::string_view valueName) {
  return GetPathWithSlash(
      Trim(QueryText(registry, hive::kLocalMachine, kCurrentVersion, valueName)));
}

// What stands behind the last backslash, or all of a name without one.
std::string_view LastComponent(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

}  // namespace

std::string GetPathWithSlash(std::string_view path) {
  if (Trim(path).empty()) return {};
  std::string result(path);
  if (result.back() != '\\') result += '\\';
  return result;
}

std::string FileName_Parse(std::string_view fullName) {
  const std::string_view name = CutAtNul(fullName);
  const size_t slash = name.rfind('\\');
  return slash == std::string_view::npos ? std::string() : std::string(name.substr(slash + 1));
}

std::string GetFileExtension(std::string_view name) {
  const size_t point = name.rfind('.');
  return point == std::string_view::npos ? std::string() : ToLower(Trim(name.substr(point + 1)));
}

std::string StripNulls(std::string_view text) {
  const size_t nul = text.find('\0');
  return std::string(text.substr(0, nul != std::string_view::npos ? nul : text.find(' ')));
}

std::string GetSpecialFolderPath(Machine& machine, int csidl) {
  return GetPathWithSlash(GetPath(machine, csidl));
}

std::string GetPath(Machine& machine, int csidl) {
  return std::string(CutAtNul(machine.SpecialFolder(csidl).value_or(std::string())));
}

std::string GetProgramFilesPath(Registry& registry) {
  return FolderFromRegistry(registry, "ProgramFilesDir");
}

std::string GetCommonProgramFilesPath(Registry& registry) {
  return FolderFromRegistry(registry, "CommonFilesDir");
}

std::string GetSystemRootPath(Machine& machine, Registry& registry) {
  if (machine.Family() == SystemFamily::kWindowsNt) {
    return GetSpecialFolderPath(machine, csidl::kWindows);
  }
  return FolderFromRegistry(registry, "SystemRoot");
}

std::string GetWindowsSystemFolder(Machine& machine) { return machine.SystemDirectory(); }

std::string DataFolder(Machine& machine) {
  return GetPathWithSlash(GetWindowsSystemFolder(machine));
}

int GetOSVersionInfo(Machine& machine, Host& host, std::string_view title) {
  if (const auto family = machine.Family()) return static_cast<int>(*family);
  host.MsgBox({.text = "Error Getting Version Information", .title = std::string(title)});
  return 0;
}

bool GetVolumeInfo(Machine& machine, std::string_view rootPath, std::string& label,
                   std::string& fileSystem) {
  const auto volume = machine.Volume(rootPath);
  if (!volume) return false;
  label = CutAtNul(volume->label);
  fileSystem = CutAtNul(volume->fileSystem);
  return true;
}

std::string Dir(Files& files, std::string_view path, Search search) {
  if (LastComponent(path).find_first_of("*?") != std::string_view::npos) return {};
  const auto entry = files.Stat(path);
  if (!entry || entry->IsFolder()) return {};
  const uint32_t unseen =
      file_attribute::kSystem | (search == Search::kPlain ? file_attribute::kHidden : 0);
  return (entry->attributes & unseen) != 0 ? std::string() : entry->name;
}

bool FileExists(Files& files, std::string_view path) {
  const std::string_view name = LastComponent(path);
  return !name.empty() && EqualText(Dir(files, path), name);
}

bool DeleteFileRetry(Files& files, Host& host, std::string_view path) {
  constexpr int kAttempts = 8;
  if (path.find('\\') == std::string_view::npos || !FileExists(files, path)) return false;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const bool deleted = IgnoringErrors([&] { files.Delete(path); });
    host.DoEvents();
    if (deleted) return true;
  }
  return false;
}

void IncrementProgressBar(ProgressBar& bar) {
  constexpr double kStep = 3;
  constexpr double kWrap = 99;
  const double value = bar.Value() + kStep;
  bar.SetValue(value >= kWrap ? 0 : value);
}

}  // namespace quarnel
