#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "controls/controls_fwd.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"

// Path helpers and the file tests that every subsystem uses. Paths are plain strings with
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
// The platform number, 1 or 2. When the system does not tell: 0, after the message "Error Getting
// Version Information".
int GetOSVersionInfo(Machine& machine, Host& host, std::string_view title);
// Label and file system of a volume, cut at NULs; false when it does not answer.
bool GetVolumeInfo(Machine& machine, std::string_view rootPath, std::string& label,
                   std::string& fileSystem);

// Which names a directory search gives beside plain files.
enum class Search { kPlain, kHidden };
// The name that a directory search for `path` gives: the last component as the disk has it, or
// empty. Hidden, system and folder names are not given by a plain search, and a name with a
// wildcard never is.
std::string Dir(Files& files, std::string_view path, Search search = Search::kPlain);
// The test of existence that the whole program uses: Dir gives the path's own last component,
// letter case folded.
bool FileExists(Files& files, std::string_view path);

// Deletes up to 8 times in a row, processing events after each attempt; true if a delete ran
// without failing. False without an attempt when the path has no backslash or names no existing
// file.
bool DeleteFileRetry(Files& files, Host& host, std::string_view path);

// Adds 3 to a bar, and wraps to 0 when it has reached 99.
void IncrementProgressBar(ProgressBar& bar);

}  // namespace quarnel
