#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/posix/backends.h"
#include "platform/posix/files/at_path.h"
#include "platform/posix/files/change_place.h"
#include "platform/posix/files/directory_stream.h"
#include "platform/posix/files/held_folders.h"
#include "platform/posix/files/place_operations.h"
#include "platform/posix/files/posix_file.h"
#include "platform/posix/system_error.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

// The way to the folder is looked up once for all its files.
class OpenedFolder : public ListedFolder {
 public:
  explicit OpenedFolder(UniqueFd fd) : fd_(std::move(fd)) {}
  std::unique_ptr<File> Open(std::string_view name) override {
    auto file = OpenForReading(fd_.Get(), HostName(name), name);
    if (!file) throw RuntimeError(ErrorNumber::kFileNotFound, name, ENOENT);
    return file;
  }

 private:
  UniqueFd fd_;
};

class PosixFiles : public Files {
 public:
  explicit PosixFiles(PathMap& paths, Links links = Links::kFollow)
      : paths_(paths), links_(links) {}

  Files& WithoutLinks() override {
    if (links_ == Links::kRefuse) return *this;
    if (!withoutLinks_) withoutLinks_ = std::make_unique<PosixFiles>(paths_, Links::kRefuse);
    return *withoutLinks_;
  }

  std::optional<DirectoryEntry> Look(std::string_view path) override {
    PathMap::Location location;
    // What cannot be a path names nothing.
    if (!IgnoringErrors([&] { location = paths_.Locate(path); })) return std::nullopt;
    if (location.obstacle != 0) RaiseErrno(location.obstacle, path);
    if (!location.exists) return std::nullopt;
    DirectoryEntry entry;
    if (!ReadEntryAt(location, path, entry)) {
      if (errno != ENOENT && errno != ENOTDIR) RaiseErrno(errno, path);
      return std::nullopt;
    }
    if (location.IsDriveRoot()) {
      entry.attributes &= ~file_attribute::kReparsePoint;
    } else {
      entry.name = ShownName(LastComponent(location.host));
    }
    return entry;
  }

  std::vector<DirectoryEntry> List(std::string_view folder) override {
    return List(folder, [](const DirectoryStream&) { return std::optional<uint32_t>(); });
  }

  std::vector<DirectoryEntry> ListBriefly(std::string_view folder) override {
    // A link shows what it leads to, which only a look can tell.
    return List(folder, [](const DirectoryStream& stream) -> std::optional<uint32_t> {
      switch (stream.Type()) {
        case DT_REG:
          return file_attribute::kNormal;
        case DT_DIR:
          return file_attribute::kDirectory;
        default:
          return std::nullopt;
      }
    });
  }

  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override {
    if (mode == OpenMode::kRead && links_ == Links::kRefuse) {
      if (auto file = OpenForReading(ExistingPlace(path), path)) return file;
      throw RuntimeError(ErrorNumber::kFileNotFound, path, ENOENT);
    }
    if (mode == OpenMode::kRead) {
      // Most paths are given as they stand on the disk: those need no search.
      if (auto file = OpenForReading(paths_.Exact(path).host, path)) return file;
      const PathMap::Location location = paths_.Locate(path);
      if (auto file = OpenForReading(location.host, path)) return file;
      RaiseMissing(location, path);
    }
    ChangePlace place = TargetOf(path);
    return OpenForWriting(place, path, mode);
  }

  std::unique_ptr<ListedFolder> OpenFolder(std::string_view folder) override {
    if (links_ == Links::kRefuse) return Files::OpenFolder(folder);
    const std::string host = paths_.Exact(folder).host;
    const AtPath at(host);
    UniqueFd fd(openat(at.Folder(), at.Name(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!fd.Valid()) RaiseErrno(errno, folder);
    return std::make_unique<OpenedFolder>(std::move(fd));
  }

  std::unique_ptr<HeldFolders> HoldFolders() override { return MakeHeldFolders(paths_, links_); }

  void Delete(std::string_view path) override { DeleteAt(PlaceOf(path), path); }

  void DeleteFolder(std::string_view path) override {
    const ChangePlace place = ExistingPlace(path);
    if (!place.IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess, path, ENOTDIR);
    RefuseReadOnly(place, path);
    // Of a link to a folder the link alone goes.
    const int flags = place.IsLink() ? 0 : AT_REMOVEDIR;
    if (unlinkat(place.Folder(), place.Name(), flags) != 0) RaiseErrno(errno, path);
  }

  void CreateFolder(std::string_view path) override {
    const ChangePlace place = PlaceOf(path);
    if (place.Exists()) throw RuntimeError(ErrorNumber::kFileExists, path, EEXIST);
    if (mkdirat(place.Folder(), place.Name(), 0777) != 0) RaiseErrno(errno, path);
  }

  void Move(std::string_view from, std::string_view to) override {
    const ChangePlace source = ExistingPlace(from);
    ChangePlace target = PlaceOf(to);
    if (target.Exists()) {
      // A change of letter case finds the file itself.
      if (!target.IsSameEntry(source)) throw RuntimeError(ErrorNumber::kFileExists, to, EEXIST);
      target.TakeNameOf(paths_, to);
    }
    if (RenameWithoutReplacing(source, target)) return;
    const int code = errno;
    if (code == EINVAL && source.IsFolder()) {  // a folder into itself
      throw RuntimeError(ErrorNumber::kPermissionDenied, from, code);
    }
    if (code != EXDEV || source.IsFolder()) RaiseErrno(code, from);
    Copy(from, to);
    if (unlinkat(source.Folder(), source.Name(), 0) != 0) RaiseErrno(errno, from);
  }

  void ReplaceFile(std::string_view from, std::string_view to) override {
    const ChangePlace source = ExistingPlace(from);
    const ChangePlace target = PlaceOf(to);
    RequireReplaceable(source, target, to);
    SyncFile(source, from);
    RenameAt(source, target, to);
    SyncFolder(target.Folder(), to);
  }

  void Copy(std::string_view from, std::string_view to) override {
    if (links_ == Links::kRefuse) {
      const ChangePlace source = ExistingPlace(from);
      const ChangePlace target = TargetOf(to);
      if (target.IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess, to, EISDIR);
      return CopyFile(source, from, target, to);
    }
    const PathMap::Location source = paths_.Locate(from);
    if (!source.exists) RaiseMissing(source, from);
    ChangePlace target = TargetOf(to);
    if (target.IsFolder()) throw RuntimeError(ErrorNumber::kPathFileAccess, to, EISDIR);
    CopyFile(source.host, from, target, to);
  }

  void SetAttributes(std::string_view path, uint32_t attributes) override {
    SetAttributesAt(TargetOf(path), attributes, path);
  }

  FileTimes Times(std::string_view path) override {
    const ChangePlace place = TargetOf(path);
    RequireExists(place, path);
    return TimesAt(place);
  }

  void SetTimes(std::string_view path, const FileTimes& times) override {
    SetTimesAt(TargetOf(path), times, path);
  }

 private:
  // `known` gives the attributes of the stream's present entry, or nothing to have it looked at.
  template <typename Known>
  std::vector<DirectoryEntry> List(std::string_view folder, Known known) {
    std::string host = paths_.Exact(folder).host;
    // Holds the way to the folder open while it is read by its place below that.
    std::optional<ChangePlace> held;
    if (links_ == Links::kRefuse && !paths_.Exact(folder).IsDriveRoot()) {
      held = TargetOf(folder);
      host = held->ProcPath();
    }
    std::optional<DirectoryStream> stream(std::in_place, host);
    if (!held && (stream->Error() == ENOENT || stream->Error() == ENOTDIR)) {
      const PathMap::Location location = paths_.Locate(folder);
      if (location.obstacle != 0) RaiseErrno(location.obstacle, folder);
      host = location.host;
      stream.emplace(host);
    }
    const AtPath at(host);
    const std::string place = at.ProcPath() + "/";
    std::vector<DirectoryEntry> entries;
    while (const char* name = stream->Next()) {
      DirectoryEntry entry;
      if (const auto attributes = known(*stream)) {
        entry.attributes = *attributes;
      } else if (!ReadEntry(stream->Fd(), name, place + name, entry)) {
        if (errno == ENOENT) continue;  // it vanished since
        entry.unseen = true;
      }
      entry.name = ShownName(name);
      entries.push_back(std::move(entry));
    }
    // A folder that is missing as a whole is a missing path.
    if (stream->Error() == ENOENT) throw RuntimeError(ErrorNumber::kPathNotFound, folder, ENOENT);
    if (stream->Error() != 0) RaiseErrno(stream->Error(), folder);
    SortByName(entries);
    return entries;
  }

  static std::string_view LastComponent(std::string_view host) {
    return host.substr(host.rfind('/') + 1);
  }

  [[noreturn]] static void RaiseMissing(const PathMap::Location& location, std::string_view path) {
    if (location.obstacle != 0) RaiseErrno(location.obstacle, path);
    throw RuntimeError(location.hasFolder ? ErrorNumber::kFileNotFound : ErrorNumber::kPathNotFound,
                       path, ENOENT);
  }

  ChangePlace PlaceOf(std::string_view path) { return ChangePlace::Of(paths_, path, links_); }
  ChangePlace TargetOf(std::string_view path) {
    return ChangePlace::OfTarget(paths_, path, links_);
  }

  // The place of a name that must stand there already.
  ChangePlace ExistingPlace(std::string_view path) {
    ChangePlace place = PlaceOf(path);
    RequireExists(place, path);
    return place;
  }

  bool ReadEntryAt(const PathMap::Location& location, std::string_view path,
                   DirectoryEntry& entry) {
    if (links_ == Links::kFollow || location.IsDriveRoot()) {
      const AtPath at(location.host);
      return ReadEntry(at.Folder(), at.Name(), at.ProcPath(), entry);
    }
    const ChangePlace place = PlaceOf(path);
    return ReadEntry(place.Folder(), place.Name(), place.ProcPath(), entry);
  }

  PathMap& paths_;
  Links links_;
  std::unique_ptr<PosixFiles> withoutLinks_;
};

}  // namespace

std::unique_ptr<Files> MakeFiles(PathMap& paths) { return std::make_unique<PosixFiles>(paths); }

}  // namespace quarnel
