#include "core/paths.h"

#include "base/text.h"

namespace quarnel {
namespace {

constexpr std::string_view kCurrentVersion = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

std::string FolderFromRegistry(Registry& registry, std::string_view valueName) {
  return GetPathWithSlash(
      Trim(QueryText(registry, hive::kLocalMachine, kCurrentVersion, valueName)));
}

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

bool GetVolumeInfo(Machine& machine, std::string_view rootPath, std::string& label,
                   std::string& fileSystem) {
  const auto volume = machine.Volume(rootPath);
  if (!volume) return false;
  label = CutAtNul(volume->label);
  fileSystem = CutAtNul(volume->fileSystem);
  return true;
}

}  // namespace quarnel
