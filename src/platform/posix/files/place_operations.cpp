#include "platform/posix/files/place_operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "base/runtime_error.h"
#include "platform/posix/files/attributes.h"
#include "platform/posix/files/posix_file.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

FileTime TimeFromSystem(const struct timespec& time) {
  return FileTime(std::chrono::duration_cast<FileTime::duration>(
      std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec)));
}

// One that is not known leaves what the file has.
struct timespec TimeForSystem(FileTime time) {
  if (time == FileTime()) return {0, UTIME_OMIT};
  const auto sinceEpoch = time.time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
  return {seconds.count(), std::chrono::nanoseconds(sinceEpoch - seconds).count()};
}

bool IsReadOnly(const struct stat& status) {
  return !S_ISLNK(status.st_mode) && (status.st_mode & S_IWUSR) == 0;
}

}  // namespace

bool ReadEntry(int folder, const char* name, const std::string& path, DirectoryEntry& entry) {
  struct stat status = {};
  if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  const bool isLink = S_ISLNK(status.st_mode);
  struct stat target = {};
  if (isLink && fstatat(folder, name, &target, 0) == 0) status = target;
  uint32_t attributes = 0;
  if (S_ISDIR(status.st_mode)) attributes |= file_attribute::kDirectory;
  if (IsReadOnly(status)) attributes |= file_attribute::kReadOnly;
  // Only files and folders carry extended attributes.
  if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) attributes |= StoredAttributes(path);
  if (isLink) attributes |= file_attribute::kReparsePoint;
  entry.attributes = attributes == 0 ? file_attribute::kNormal : attributes;
  entry.size = S_ISREG(status.st_mode) ? static_cast<uint64_t>(status.st_size) : 0;
  entry.modified = TimeFromSystem(status.st_mtim);
  return true;
}

void RequireExists(const ChangePlace& place, std::string_view about) {
  if (!place.Exists()) throw RuntimeError(ErrorNumber::kFileNotFound, about, ENOENT);
}

void RefuseReadOnly(const ChangePlace& place, std::string_view about) {
  if (place.Exists() && IsReadOnly(place.Status())) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, EACCES);
  }
}

void DeleteAt(const ChangePlace& place, std::string_view about) {
  RequireExists(place, about);
  if (place.IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess, about, EISDIR);
  RefuseReadOnly(place, about);
  if (unlinkat(place.Folder(), place.Name(), 0) != 0) RaiseErrno(errno, about);
}

void SetAttributesAt(const ChangePlace& place, uint32_t attributes, std::string_view about) {
  RequireExists(place, about);
  const mode_t mode = place.Status().st_mode & 07777;
  const bool readOnly = (attributes & file_attribute::kReadOnly) != 0;
  mode_t present = mode;
  const auto setMode = [&](mode_t value) {
    if (value == present) return;
    if (fchmodat(place.Folder(), place.Name(), value, AT_SYMLINK_NOFOLLOW) != 0) {
      RaiseErrno(errno, about);
    }
    present = value;
  };
  // The extended attribute of a file that may not be written cannot be set.
  setMode(mode | S_IWUSR);
  StoreAttributes(place.ProcPath(), attributes);
  if (readOnly) setMode(mode & ~mode_t{0222});
}

FileTimes TimesAt(const ChangePlace& place) {
  return {.accessed = TimeFromSystem(place.Status().st_atim),
          .modified = TimeFromSystem(place.Status().st_mtim)};
}

void SetTimesAt(const ChangePlace& place, const FileTimes& times, std::string_view about) {
  RequireExists(place, about);
  const struct timespec both[] = {TimeForSystem(times.accessed), TimeForSystem(times.modified)};
  if (utimensat(place.Folder(), place.Name(), both, AT_SYMLINK_NOFOLLOW) != 0) {
    RaiseErrno(errno, about);
  }
}

void RequireReplaceable(const ChangePlace& source, const ChangePlace& target,
                        std::string_view about) {
  if (source.IsFolder() || target.IsFolder()) {
    throw RuntimeError(ErrorNumber::kPathFileAccess, about, EISDIR);
  }
  RefuseReadOnly(target, about);
}

void RenameAt(const ChangePlace& source, const ChangePlace& target, std::string_view about) {
  const mode_t mode = source.Status().st_mode & 07777;
  const mode_t runnable = mode | (mode & 0444) >> 2;
  if (IsProgramName(target.Name()) && runnable != mode &&
      fchmodat(source.Folder(), source.Name(), runnable, AT_SYMLINK_NOFOLLOW) != 0) {
    RaiseErrno(errno, about);
  }
  if (renameat(source.Folder(), source.Name(), target.Folder(), target.Name()) != 0) {
    RaiseErrno(errno, about);
  }
}

}  // namespace quarnel
