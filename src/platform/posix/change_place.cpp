#include "platform/posix/change_place.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/posix/at_path.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

constexpr int kFolderOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

bool SameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// Whether an open folder is the root of a drive or lies below one, told by walking up.
bool LiesOnDrive(int folder, PathMap& paths) {
  std::vector<struct stat> roots;
  for (const PathMap::DriveRoot& drive : paths.Drives()) {
    struct stat status = {};
    if (stat(drive.host.empty() ? "/" : drive.host.c_str(), &status) == 0) roots.push_back(status);
  }
  UniqueFd holder;
  struct stat below = {};
  for (int level = folder;;) {
    struct stat status = {};
    if (fstat(level, &status) != 0) return false;
    const auto isRoot = [&](const struct stat& root) { return SameFile(root, status); };
    if (std::any_of(roots.begin(), roots.end(), isRoot)) return true;
    if (level != folder && SameFile(below, status)) return false;  // the root of the host
    below = status;
    UniqueFd above(openat(level, "..", kFolderOnly));
    if (!above.Valid()) return false;
    holder = std::move(above);
    level = holder.Get();
  }
}

UniqueFd OpenFolder(int above, const char* name, int flags, std::string_view about) {
  UniqueFd folder(openat(above, name, kFolderOnly | flags));
  if (folder.Valid()) return folder;
  const int code = errno;
  struct stat status = {};
  const bool isLink = (flags & O_NOFOLLOW) != 0 && code == ENOTDIR &&
                      fstatat(above, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                      S_ISLNK(status.st_mode);
  if (isLink) throw RuntimeError(ErrorNumber::kPermissionDenied, about, ELOOP);
  if (code == ENOENT) throw RuntimeError(ErrorNumber::kPathNotFound, about, ENOENT);
  RaiseErrno(code, about);
}

UniqueFd OpenFolder(const std::string& host, std::string_view about) {
  const AtPath at(host);
  return OpenFolder(at.Folder(), at.Name(), 0, about);
}

// Goes down from a drive's root by one folder at a time, none of which may be a link.
UniqueFd OpenFolderWithoutLinks(const std::string& host, size_t driveLength,
                                std::string_view about) {
  UniqueFd folder = OpenFolder(host.substr(0, driveLength), about);
  for (size_t begin = driveLength + 1; begin < host.size();) {
    const size_t end = std::min(host.find('/', begin), host.size());
    folder = OpenFolder(folder.Get(), host.substr(begin, end - begin).c_str(), O_NOFOLLOW, about);
    begin = end + 1;
  }
  return folder;
}

}  // namespace

ChangePlace ChangePlace::In(UniqueFd folder, std::string_view name, PathMap& paths,
                            std::string_view about) {
  ChangePlace place;
  place.name_ = name;
  place.folder_ = std::move(folder);
  if (!LiesOnDrive(place.Folder(), paths)) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, EXDEV);
  }
  place.exists_ = fstatat(place.Folder(), place.Name(), &place.status_, AT_SYMLINK_NOFOLLOW) == 0;
  if (!place.exists_ && errno != ENOENT) RaiseErrno(errno, about);
  struct stat target = {};
  place.isFolder_ = place.exists_ && fstatat(place.Folder(), place.Name(), &target, 0) == 0 &&
                    S_ISDIR(target.st_mode);
  return place;
}

ChangePlace ChangePlace::Of(PathMap& paths, std::string_view windowsPath, Links links) {
  const PathMap::Location location = paths.Locate(windowsPath);
  if (location.IsDriveRoot()) {
    throw RuntimeError(location.exists ? ErrorNumber::kPathFileAccess : ErrorNumber::kPathNotFound,
                       windowsPath);
  }
  const size_t slash = location.host.rfind('/');
  const std::string folder = location.host.substr(0, slash);
  return In(links == Links::kFollow
                ? OpenFolder(folder, windowsPath)
                : OpenFolderWithoutLinks(folder, location.driveLength, windowsPath),
            location.host.substr(slash + 1), paths, windowsPath);
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
  const std::string host = real.get();
  const size_t slash = host.rfind('/');
  return In(OpenFolder(host.substr(0, slash), windowsPath), host.substr(slash + 1), paths,
            windowsPath);
}

std::string ChangePlace::ProcPath() const {
  return "/proc/self/fd/" + std::to_string(Folder()) + "/" + name_;
}

bool ChangePlace::IsSameEntry(const ChangePlace& other) const {
  struct stat mine = {};
  struct stat others = {};
  return exists_ && other.exists_ && EqualText(name_, other.name_) &&
         SameFile(status_, other.status_) && fstat(Folder(), &mine) == 0 &&
         fstat(other.Folder(), &others) == 0 && SameFile(mine, others);
}

void ChangePlace::TakeNameOf(const PathMap& paths, std::string_view windowsPath) {
  const std::string host = paths.Exact(windowsPath).host;
  name_ = host.substr(host.rfind('/') + 1);
}

void ChangePlace::SyncFolder() const {
  const UniqueFd fd(openat(Folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A file system that cannot sync a folder keeps its names in its own way.
  if (fd.Valid() && fsync(fd.Get()) != 0 && errno != EINVAL) RaiseErrno(errno, name_);
}

void ChangePlace::SyncVolume() const {
  const UniqueFd fd(openat(Folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.Valid() || syncfs(fd.Get()) != 0) RaiseErrno(errno, name_);
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
