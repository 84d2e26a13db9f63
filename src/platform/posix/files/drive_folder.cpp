#include "platform/posix/files/drive_folder.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "base/runtime_error.h"
#include "platform/posix/files/at_path.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

constexpr int kFolderOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

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

void RequireOnDrive(int folder, PathMap& paths, std::string_view about) {
  if (!LiesOnDrive(folder, paths)) throw RuntimeError(ErrorNumber::kPermissionDenied, about, EXDEV);
}

UniqueFd OpenHost(const std::string& host) {
  const AtPath at(host);
  return UniqueFd(openat(at.Folder(), at.Name(), kFolderOnly));
}

UniqueFd OpenRoot(const PathMap::Location& place) {
  return OpenHost(place.host.substr(0, place.driveLength));
}

[[noreturn]] void RaiseUnopened(int code, std::string_view about) {
  if (code == ENOENT) throw RuntimeError(ErrorNumber::kPathNotFound, about, ENOENT);
  RaiseErrno(code, about);
}

// Goes down by one folder. Not valid, with errno, when that cannot be entered; raises for a link
// that is refused.
UniqueFd Enter(int above, const std::string& name, Links links, std::string_view about) {
  const bool refuses = links == Links::kRefuse;
  UniqueFd folder(openat(above, name.c_str(), kFolderOnly | (refuses ? O_NOFOLLOW : 0)));
  const int code = errno;
  struct stat status = {};
  if (!folder.Valid() && refuses && code == ENOTDIR &&
      fstatat(above, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode)) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, ELOOP);
  }
  errno = code;
  return folder;
}

// Goes down from the drive's root. `missing` makes a folder that is not there in the one above,
// which may be taken from it.
template <typename Missing>
UniqueFd WalkDown(const PathMap::Location& place, Links links, std::string_view about,
                  Missing&& missing) {
  UniqueFd folder = OpenRoot(place);
  if (!folder.Valid()) RaiseUnopened(errno, about);
  const std::string& host = place.host;
  for (size_t begin = place.driveLength + 1; begin < host.size();) {
    const size_t end = std::min(host.find('/', begin), host.size());
    const std::string name = host.substr(begin, end - begin);
    UniqueFd next = Enter(folder.Get(), name, links, about);
    if (!next.Valid()) next = missing(folder, name, errno);
    folder = std::move(next);
    begin = end + 1;
  }
  return folder;
}

}  // namespace

bool SameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

PathMap::Location FolderOf(const PathMap::Location& place) {
  return {.host = place.host.substr(0, place.host.rfind('/')), .driveLength = place.driveLength};
}

UniqueFd FindDriveFolder(const PathMap::Location& folder, Links links) {
  UniqueFd root = OpenRoot(folder);
  if (!root.Valid() || folder.IsDriveRoot()) return root;
  struct open_how how = {};
  how.flags = kFolderOnly;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  if (links == Links::kRefuse) how.resolve |= RESOLVE_NO_SYMLINKS;
  const char* below = folder.host.c_str() + folder.driveLength + 1;
  return UniqueFd(static_cast<int>(syscall(SYS_openat2, root.Get(), below, &how, sizeof(how))));
}

UniqueFd OpenDriveFolder(PathMap& paths, const PathMap::Location& folder, Links links,
                         std::string_view about) {
  if (UniqueFd found = FindDriveFolder(folder, links); found.Valid()) return found;
  // Where the system has no such call, or a link leads over the host's root; and to tell why not.
  if (links == Links::kFollow) return OpenDriveFolder(paths, folder.host, about);
  return WalkDown(folder, links, about, [&](UniqueFd&, const std::string&, int code) -> UniqueFd {
    RaiseUnopened(code, about);
  });
}

UniqueFd OpenDriveFolder(PathMap& paths, const std::string& host, std::string_view about) {
  UniqueFd folder = OpenHost(host);
  if (!folder.Valid()) RaiseUnopened(errno, about);
  RequireOnDrive(folder.Get(), paths, about);
  return folder;
}

UniqueFd MakeDriveFolder(PathMap& paths, const PathMap::Location& folder, Links links,
                         std::string_view about, std::vector<UniqueFd>& changed) {
  if (UniqueFd found = FindDriveFolder(folder, links); found.Valid()) return found;
  const auto prove = [&](int reached) {
    if (links == Links::kFollow) RequireOnDrive(reached, paths, about);
  };
  bool isNew = false;
  UniqueFd made = WalkDown(folder, links, about,
                           [&](UniqueFd& above, const std::string& name, int code) -> UniqueFd {
                             if (code == ENOTDIR)
                               throw RuntimeError(ErrorNumber::kFileExists, about, code);
                             if (code != ENOENT) RaiseErrno(code, about);
                             if (!isNew) prove(above.Get());
                             isNew = true;
                             // Another program may have made it in between.
                             if (mkdirat(above.Get(), name.c_str(), 0777) != 0 && errno != EEXIST) {
                               RaiseErrno(errno, about);
                             }
                             UniqueFd next = Enter(above.Get(), name, Links::kRefuse, about);
                             if (!next.Valid()) RaiseUnopened(errno, about);
                             changed.push_back(std::move(above));
                             return next;
                           });
  if (!isNew) prove(made.Get());
  return made;
}

void SyncFolder(int folder, std::string_view about) {
  const UniqueFd fd(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A file system that cannot sync a folder keeps its names in its own way.
  if (fd.Valid() && fsync(fd.Get()) != 0 && errno != EINVAL) RaiseErrno(errno, about);
}

void SyncVolume(int folder, std::string_view about) {
  const UniqueFd fd(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.Valid() || syncfs(fd.Get()) != 0) RaiseErrno(errno, about);
}

}  // namespace quarnel
