#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/files/path_map.h"
#include "platform/posix/unique_fd.h"

// Folders of the machine, held open and proven to lie on one of its drives, wherever the links on
// the way led: so no link inside a machine folder can turn a deletion or a write against the host.
namespace quarnel {

// Whether a folder may be entered by way of a link.
enum class Links { kFollow, kRefuse };

// Whether both tell of one thing on the disk, whatever its names.
bool SameFile(const struct stat& left, const struct stat& right);

// The folder that holds what stands, or would, at a place; not a drive's root.
PathMap::Location FolderOf(const PathMap::Location& place);

// Opens a folder whose way leads over no absolute link, which is what one call of the system can
// prove. Not valid when there is none.
UniqueFd FindDriveFolder(const PathMap::Location& folder, Links links);

// Opens a folder. Raises kPathNotFound when it is missing, and kPermissionDenied when it lies
// outside or behind a link that is refused.
UniqueFd OpenDriveFolder(PathMap& paths, const PathMap::Location& folder, Links links,
                         std::string_view about);

// The same of an absolute host path, with all links on the way followed.
UniqueFd OpenDriveFolder(PathMap& paths, const std::string& host, std::string_view about);

// As the first, but makes what is missing of the way. The folders in which something was made are
// added to `changed`, from the top down. Raises kFileExists when something else is in the way.
UniqueFd MakeDriveFolder(PathMap& paths, const PathMap::Location& folder, Links links,
                         std::string_view about, std::vector<UniqueFd>& changed);

// Returns when the names in an open folder are on the disk.
void SyncFolder(int folder, std::string_view about);
// Returns when all that was written to an open folder's volume is on the disk.
void SyncVolume(int folder, std::string_view about);

}  // namespace quarnel
