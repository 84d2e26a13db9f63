#include "platform/posix/files/change_place.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/names.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

std::string LastNameOf(const PathMap::Location& place) {
  return place.host.substr(place.host.rfind('/') + 1);
}

}  // namespace

ChangePlace ChangePlace::In(int folder, std::string name, std::string_view about) {
  ChangePlace place;
  place.folder_ = folder;
  place.name_ = std::move(name);
  place.exists_ = fstatat(folder, place.Name(), &place.status_, AT_SYMLINK_NOFOLLOW) == 0;
  if (!place.exists_ && errno != ENOENT) RaiseErrno(errno, about);
  place.isFolder_ = place.exists_ && S_ISDIR(place.status_.st_mode);
  struct stat target = {};
  if (place.IsLink() && fstatat(folder, place.Name(), &target, 0) == 0) {
    place.isFolder_ = S_ISDIR(target.st_mode);
  }
  return place;
}

ChangePlace ChangePlace::In(UniqueFd folder, std::string name, std::string_view about) {
  ChangePlace place = In(folder.Get(), std::move(name), about);
  place.holder_ = std::move(folder);
  return place;
}

ChangePlace ChangePlace::Of(PathMap& paths, std::string_view windowsPath, Links links) {
  // Most paths are given as they stand on the disk: those need no search.
  const PathMap::Location exact = paths.Exact(windowsPath);
  if (!exact.IsDriveRoot()) {
    if (UniqueFd folder = FindDriveFolder(FolderOf(exact), links); folder.Valid()) {
      ChangePlace place = In(std::move(folder), LastNameOf(exact), windowsPath);
      if (place.Exists()) return place;
    }
  }
  const PathMap::Location location = paths.Locate(windowsPath);
  if (location.IsDriveRoot()) {
    throw RuntimeError(location.exists ? ErrorNumber::kPathFileAccess : ErrorNumber::kPathNotFound,
                       windowsPath);
  }
  return In(OpenDriveFolder(paths, FolderOf(location), links, windowsPath), LastNameOf(location),
            windowsPath);
}

ChangePlace ChangePlace::OfTarget(PathMap& paths, std::string_view windowsPath, Links links) {
  ChangePlace place = Of(paths, windowsPath, links);
  if (!place.IsLink()) return place;
  if (links == Links::kRefuse) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, windowsPath, ELOOP);
  }
  const std::unique_ptr<char, decltype(&std::free)> real(
      realpath(place.ProcPath().c_str(), nullptr), &std::free);
  if (real == nullptr) RaiseErrno(errno, windowsPath);
  const std::string target = real.get();
  const size_t slash = target.rfind('/');
  return In(OpenDriveFolder(paths, slash == 0 ? "/" : target.substr(0, slash), windowsPath),
            target.substr(slash + 1), windowsPath);
}

std::string ChangePlace::ProcPath() const {
  return "/proc/self/fd/" + std::to_string(Folder()) + "/" + name_;
}

bool ChangePlace::IsSameEntry(const ChangePlace& other) const {
  struct stat mine = {};
  struct stat others = {};
  return exists_ && other.exists_ && EqualNames(name_, other.name_) &&
         SameFile(status_, other.status_) && fstat(Folder(), &mine) == 0 &&
         fstat(other.Folder(), &others) == 0 && SameFile(mine, others);
}

void ChangePlace::TakeNameOf(const PathMap& paths, std::string_view windowsPath) {
  const std::string host = paths.Exact(windowsPath).host;
  name_ = host.substr(host.rfind('/') + 1);
}

bool RenameWithoutReplacing(const ChangePlace& source, const ChangePlace& target) {
  if (!target.Exists()) {
    if (renameat2(source.Folder(), source.Name(), target.Folder(), target.Name(),
                  RENAME_NOREPLACE) == 0) {
      return true;
    }
    // EINVAL is what a file system without this kind of renaming says.
    if (errno != EINVAL) return false;
  }
  return renameat(source.Folder(), source.Name(), target.Folder(), target.Name()) == 0;
}

}  // namespace quarnel
