#pragma once

#include <string>
#include <string_view>

#include "platform/machine.h"
#include "platform/registry.h"

// Path helpers that every subsystem uses. Paths are plain strings with
// backslashes; folder results keep no trailing backslash unless stated.
namespace quarnel {

// Empty if the trimmed path is empty; unchanged if it ends in a backslash; else with one added.
std::string GetPathWithSlash(std::string_view path);
// What stands behind the last backslash; cut at a NUL first; empty for a name without a backslash.
std::string FileName_Parse(std::string_view fullName);
// What stands behind the last point, trimmed and in lower case; empty without a point.
std::string GetFileExtension(std::string_view name);
// Cut at the first NUL, else at the first blank.
std::string StripNulls(std::string_view text);

// A special folder with a backslash at its end; empty when the machine has none.
std::string GetSpecialFolderPath(Machine& machine, int csidl);
// The same without the backslash.
std::string GetPath(Machine& machine, int csidl);
std::string GetProgramFilesPath(Registry& registry);
std::string GetCommonProgramFilesPath(Registry& registry);
std::string GetSystemRootPath(Machine& machine, Registry& registry);
std::string GetWindowsSystemFolder(Machine& machine);
// The system folder with its backslash: where signature and data files lie.
std::string DataFolder(Machine& machine);
// Label and file system of a volume, cut at NULs; false when it does not answer.
bool GetVolumeInfo(Machine& machine, std::string_view rootPath, std::string& label,
                   std::string& fileSystem);

}  // namespace quarnel
