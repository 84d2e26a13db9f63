#pragma once

#include <memory>

#include "platform/held_folders.h"
#include "platform/posix/files/drive_folder.h"

namespace quarnel {

// `paths` must outlive what is made.
std::unique_ptr<HeldFolders> MakeHeldFolders(PathMap& paths, Links links);

}  // namespace quarnel
