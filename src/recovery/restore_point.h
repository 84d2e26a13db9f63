#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/date_time.h"
#include "platform/files.h"
#include "platform/machine.h"

// The files of a restore point: they lie in one folder and share a stem.
namespace quarnel {

namespace restore_point {
inline constexpr std::string_view kRegistry = "_REGBK.bkp";
inline constexpr std::string_view kFiles = "_FILESBK.bkp";
inline constexpr std::string_view kFileDetails = "_FILESBK_DET.bkp";
inline constexpr std::string_view kCookies = "_COOKIESBK.bkp";
inline constexpr std::string_view kCookieDetails = "_COOKIESBK_DET.bkp";
inline constexpr std::string_view kManifest = "_MANIFEST.bkp";

// Between the fields of the text files.
inline constexpr std::string_view kSeparator = "[[-]]";
}  // namespace restore_point

// The described folder of all restore points, without a backslash at its end. One made by a user
// who may not write there lies in a folder of his own; all of them are looked for in both.
std::string BackupFolder(Machine& machine);
std::vector<std::string> BackupFolders(Machine& machine);

// The stem of a restore point that is made at this moment: the seconds of the day, "_", and the
// date and time in digits, which the list of restore points shows.
std::string StemOf(DateTime moment);

// The path of one of a restore point's files, in the described folder or wherever it stands.
std::string RestorePointFile(Machine& machine, std::string_view stem, std::string_view ending);
std::string RestorePointFile(Files& files, Machine& machine, std::string_view stem,
                             std::string_view ending);

// The root below which a plain restore puts everything, and the place there of an archive's entry.
std::string RestoreRoot(Machine& machine);
std::string PlaceBelowRoot(Machine& machine, std::string_view entry);

}  // namespace quarnel
