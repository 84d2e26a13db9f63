#include "platform/posix/files/posix_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/posix/files/at_path.h"
#include "platform/posix/files/attributes.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

class PosixFile : public File {
 public:
  // `size` is how large the file is at this moment; 0 when that is of no use.
  PosixFile(UniqueFd fd, std::string_view about, uint64_t size = 0)
      : fd_(std::move(fd)), about_(about), left_(size) {}

  size_t Read(std::span<char> buffer) override {
    // A piece that was cut short at the size which the file had ends it. Most files are read in
    // one piece, and this saves the second call; the next one looks again.
    if (std::exchange(ended_, false)) return 0;
    for (;;) {
      const ssize_t count = read(fd_.Get(), buffer.data(), buffer.size());
      if (count < 0) {
        if (errno != EINTR) RaiseErrno(errno, about_);
        continue;
      }
      const auto bytes = static_cast<size_t>(count);
      ended_ = bytes > 0 && bytes == left_ && bytes < buffer.size();
      left_ -= std::min<uint64_t>(left_, bytes);
      return bytes;
    }
  }

  void Write(std::string_view bytes) override {
    ForgetEnd();
    while (!bytes.empty()) {
      const ssize_t count = write(fd_.Get(), bytes.data(), bytes.size());
      if (count >= 0) {
        bytes.remove_prefix(static_cast<size_t>(count));
      } else if (errno != EINTR) {
        RaiseErrno(errno, about_);
      }
    }
  }

  void Seek(uint64_t position) override {
    ForgetEnd();
    if (position > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) {
      throw RuntimeError(ErrorNumber::kInvalidCall, about_);
    }
    if (lseek(fd_.Get(), static_cast<off_t>(position), SEEK_SET) < 0) RaiseErrno(errno, about_);
  }

  uint64_t Size() override {
    struct stat status = {};
    if (fstat(fd_.Get(), &status) != 0) RaiseErrno(errno, about_);
    return static_cast<uint64_t>(status.st_size);
  }

  void Flush() override {
    if (fsync(fd_.Get()) != 0) RaiseErrno(errno, about_);
  }

 private:
  void ForgetEnd() {
    ended_ = false;
    left_ = 0;
  }

  UniqueFd fd_;
  std::string about_;
  uint64_t left_;  // bytes to the size that the file had; 0 when that is not known
  bool ended_ = false;
};

struct stat StatusOfPlainFile(const UniqueFd& fd, std::string_view about) {
  if (!fd.Valid()) RaiseErrno(errno, about);
  struct stat status = {};
  if (fstat(fd.Get(), &status) != 0) RaiseErrno(errno, about);
  if (S_ISDIR(status.st_mode)) RaiseErrno(EISDIR, about);
  if (!S_ISREG(status.st_mode)) RaiseErrno(ENXIO, about);
  return status;
}

// Where a file that is to be read stands.
struct Source {
  int folder;
  const char* name;
  std::string procPath;
  int flags;  // O_NOFOLLOW where a link is refused
};

Source SourceAt(const AtPath& at) { return {at.Folder(), at.Name(), at.ProcPath(), 0}; }
Source SourceAt(const ChangePlace& place) {
  return {place.Folder(), place.Name(), place.ProcPath(), O_NOFOLLOW};
}

// Not valid when nothing stands there.
UniqueFd OpenSource(const Source& source, std::string_view about, uint64_t& size) {
  // Opening a pipe would wait for its other end.
  UniqueFd fd(openat(source.folder, source.name,
                     O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | source.flags));
  if (!fd.Valid() && errno == ELOOP && source.flags != 0) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, ELOOP);
  }
  if (!fd.Valid() && (errno == ENOENT || errno == ENOTDIR)) return fd;
  size = static_cast<uint64_t>(StatusOfPlainFile(fd, about).st_size);
  // Files are read from front to end; a small one is there with the first look anyway.
  constexpr uint64_t kLarge = uint64_t{128} << 10;
  if (size > kLarge) posix_fadvise(fd.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  return fd;
}

UniqueFd OpenTarget(const ChangePlace& place, std::string_view about, int flags) {
  if (place.Exists() && (place.Status().st_mode & S_IWUSR) == 0 && !place.IsFolder()) {
    // Said here because the superuser would be let through.
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, EACCES);
  }
  constexpr int kAlways = O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const mode_t mode = IsProgramName(place.Name()) ? 0777 : 0666;
  UniqueFd fd(openat(place.Folder(), place.Name(), flags | kAlways, mode));
  StatusOfPlainFile(fd, about);
  return fd;
}

void CopyBytes(int from, int to, std::string_view about) {
  for (;;) {
    const ssize_t count =
        copy_file_range(from, nullptr, to, nullptr, std::numeric_limits<int>::max(), 0);
    if (count == 0) return;
    if (count > 0 || errno == EINTR) continue;
    if (errno == ENOSPC || errno == EIO || errno == EDQUOT || errno == EFBIG) {
      RaiseErrno(errno, about);
    }
    break;  // these file systems cannot do it by themselves
  }
  PosixFile source(UniqueFd(dup(from)), about);
  PosixFile target(UniqueFd(dup(to)), about);
  std::vector<char> buffer(size_t{1} << 18);
  while (const size_t count = source.Read(buffer)) target.Write({buffer.data(), count});
}

std::unique_ptr<File> OpenForReading(const Source& source, std::string_view about) {
  uint64_t size = 0;
  UniqueFd fd = OpenSource(source, about, size);
  if (!fd.Valid()) return nullptr;
  return std::make_unique<PosixFile>(std::move(fd), about, size);
}

void CopyFile(const Source& from, std::string_view about, const ChangePlace& target,
              std::string_view aboutTarget) {
  uint64_t size = 0;
  const UniqueFd source = OpenSource(from, about, size);
  const struct stat status = StatusOfPlainFile(source, about);
  if (target.Exists() && target.Status().st_dev == status.st_dev &&
      target.Status().st_ino == status.st_ino) {
    // Emptying the target would lose the content.
    throw RuntimeError(ErrorNumber::kPermissionDenied, aboutTarget);
  }
  const UniqueFd copy = OpenTarget(target, aboutTarget, O_WRONLY | O_TRUNC);
  try {
    CopyBytes(source.Get(), copy.Get(), aboutTarget);
    StoreAttributes(target.ProcPath(), StoredAttributes(from.procPath));
    const struct timespec times[] = {{0, UTIME_OMIT}, status.st_mtim};
    if (futimens(copy.Get(), times) != 0) RaiseErrno(errno, aboutTarget);
    if ((status.st_mode & S_IWUSR) == 0 && fchmod(copy.Get(), status.st_mode & 0555) != 0) {
      RaiseErrno(errno, aboutTarget);
    }
  } catch (const RuntimeError&) {
    unlinkat(target.Folder(), target.Name(), 0);
    throw;
  }
}

}  // namespace

bool IsProgramName(std::string_view name) { return EndsWithText(name, ".exe"); }

std::unique_ptr<File> OpenForReading(const std::string& host, std::string_view about) {
  const AtPath at(host);
  return OpenForReading(SourceAt(at), about);
}

std::unique_ptr<File> OpenForReading(const ChangePlace& place, std::string_view about) {
  return OpenForReading(SourceAt(place), about);
}

std::unique_ptr<File> OpenForReading(int folder, const std::string& name, std::string_view about) {
  return OpenForReading(Source{.folder = folder, .name = name.c_str(), .procPath = {}, .flags = 0},
                        about);
}

std::unique_ptr<File> OpenForWriting(const ChangePlace& place, std::string_view about,
                                     OpenMode mode) {
  const int flags = mode == OpenMode::kAppend   ? O_WRONLY | O_APPEND
                    : mode == OpenMode::kCreate ? O_RDWR | O_TRUNC
                                                : O_RDWR;
  return std::make_unique<PosixFile>(OpenTarget(place, about, flags), about);
}

void CopyFile(const std::string& host, std::string_view about, const ChangePlace& target,
              std::string_view aboutTarget) {
  const AtPath at(host);
  CopyFile(SourceAt(at), about, target, aboutTarget);
}

void CopyFile(const ChangePlace& source, std::string_view about, const ChangePlace& target,
              std::string_view aboutTarget) {
  CopyFile(SourceAt(source), about, target, aboutTarget);
}

void BeginSync([[maybe_unused]] const ChangePlace& place) {
#ifdef SYNC_FILE_RANGE_WRITE
  const UniqueFd fd(openat(place.Folder(), place.Name(),
                           O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  // Where it does not work, the wait that follows takes longer.
  if (fd.Valid()) (void)sync_file_range(fd.Get(), 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
}

void SyncFile(const ChangePlace& place, std::string_view about) {
  const UniqueFd fd(openat(place.Folder(), place.Name(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  StatusOfPlainFile(fd, about);
  if (fsync(fd.Get()) != 0) RaiseErrno(errno, about);
}

}  // namespace quarnel
