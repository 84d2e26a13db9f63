#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/posix/files/drive_folder.h"
#include "platform/posix/files/path_map.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {

// A name at which something is about to be changed, in an open folder on a drive of the machine.
// All operations raise RuntimeError.
class ChangePlace {
 public:
  // The name itself, which may be a link. Raises kPathNotFound when its folder is missing,
  // kPathFileAccess for the root of a drive, kPermissionDenied when the folder lies outside or
  // behind a link that is refused.
  static ChangePlace Of(PathMap& paths, std::string_view windowsPath, Links links);
  // The same, with a link taken to its target, or refused.
  static ChangePlace OfTarget(PathMap& paths, std::string_view windowsPath, Links links);
  // A host name in a folder that the caller keeps open.
  static ChangePlace In(int folder, std::string name, std::string_view about);

  int Folder() const { return folder_; }
  const char* Name() const { return name_.c_str(); }
  // The same place for calls that have no "at" form.
  std::string ProcPath() const;

  bool Exists() const { return exists_; }
  const struct stat& Status() const { return status_; }  // of the name itself
  bool IsLink() const { return exists_ && S_ISLNK(status_.st_mode); }
  bool IsFolder() const { return isFolder_; }  // also a link to one
  // Whether both are one name, letter case folded, of one thing.
  bool IsSameEntry(const ChangePlace& other) const;
  // Takes the name's letter case from this path instead of what the disk has.
  void TakeNameOf(const PathMap& paths, std::string_view windowsPath);

 private:
  static ChangePlace In(UniqueFd folder, std::string name, std::string_view about);

  UniqueFd holder_;  // of the folder, where it is this place's own
  int folder_ = -1;
  std::string name_;
  struct stat status_ = {};
  bool exists_ = false;
  bool isFolder_ = false;
};

// Gives the entry at `target` the name of `source`; false with errno when it failed, EEXIST when
// the target is there. A target that is the source in another letter case is no obstacle.
bool RenameWithoutReplacing(const ChangePlace& source, const ChangePlace& target);

}  // namespace quarnel
