#include "platform/posix/files/held_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <unordered_set>
#include <utility>

#include "base/runtime_error.h"
#include "platform/names.h"
#include "platform/posix/files/change_place.h"
#include "platform/posix/files/directory_stream.h"
#include "platform/posix/files/place_operations.h"
#include "platform/posix/files/posix_file.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

// For some files the disk is not asked to take all that other programs wrote.
constexpr size_t kSome = 8;

// Tells that a folder has no name of another letter case without reading the folder again. Only
// sums of the names are kept, since a folder may have a million.
class NamesSeen {
 public:
  // False for a name that did not stand there in any letter case when the folder was read, and was
  // not added since.
  bool MayHave(std::string_view name) const { return sums_.contains(SumOf(name)); }
  void Add(std::string_view name) { sums_.insert(SumOf(name)); }

 private:
  static size_t SumOf(std::string_view name) { return std::hash<std::string>()(FoldName(name)); }

  std::unordered_set<size_t> sums_;
};

class PosixHeldFolder : public HeldFolder {
 public:
  // `above` are folders on the way in which one was made for it.
  PosixHeldFolder(UniqueFd folder, std::string path, std::vector<UniqueFd> above)
      : folder_(std::move(folder)), path_(std::move(path)), above_(std::move(above)) {
    struct stat status = {};
    if (fstat(folder_.Get(), &status) != 0) RaiseErrno(errno, path_);
    volume_ = status.st_dev;
    if (above_.empty()) return;
    changed_ = true;
    names_.emplace();  // nothing stands in a new folder
    // More of them are not asked one by one.
    if (above_.size() > kSome) above_.erase(above_.begin() + kSome + 1, above_.end());
  }

  std::optional<DirectoryEntry> Stat(std::string_view name) override {
    std::optional<DirectoryEntry> entry;
    IgnoringErrors([&] {
      const ChangePlace place = PlaceOf(name);
      DirectoryEntry found;
      if (!place.Exists()) return;
      if (!ReadEntry(place.Folder(), place.Name(), place.ProcPath(), found)) return;
      found.name = ShownName(place.Name());
      entry = std::move(found);
    });
    return entry;
  }

  std::unique_ptr<File> OpenForReading(std::string_view name) override {
    const ChangePlace place = PlaceOf(name);
    const std::string about = About(name);
    RequireExists(place, about);
    if (auto file = quarnel::OpenForReading(place, about)) return file;
    throw RuntimeError(ErrorNumber::kFileNotFound, about, ENOENT);
  }

  std::unique_ptr<File> Create(std::string_view name) override {
    const ChangePlace place = PlaceOf(name);
    const std::string about = About(name);
    if (place.Exists()) DeleteAt(place, about);
    auto file = OpenForWriting(place, about, OpenMode::kCreate);
    Note(place.Name());
    unflushed_.emplace_back(place.Name());
    return file;
  }

  void Delete(std::string_view name) override {
    const ChangePlace place = PlaceOf(name);
    DeleteAt(place, About(name));
    changed_ = true;
    std::erase(unflushed_, place.Name());
  }

  void SetAttributes(std::string_view name, uint32_t attributes) override {
    const ChangePlace place = PlaceOf(name);
    RefuseLink(place, name);
    SetAttributesAt(place, attributes, About(name));
  }

  void SetTimes(std::string_view name, const FileTimes& times) override {
    const ChangePlace place = PlaceOf(name);
    RefuseLink(place, name);
    SetTimesAt(place, times, About(name));
  }

  void PutInPlace(std::string_view from, std::string_view to) override {
    const ChangePlace source = PlaceOf(from);
    const ChangePlace target = PlaceOf(to);
    RequireExists(source, About(from));
    RequireReplaceable(source, target, About(to));
    RenameAt(source, target, About(to));
    Note(target.Name());
    std::replace(unflushed_.begin(), unflushed_.end(), std::string(source.Name()),
                 std::string(target.Name()));
  }

  dev_t Volume() const { return volume_; }
  bool Changed() const { return changed_; }
  // How many waits FlushEach takes, or more than kSome.
  size_t Waits() const { return changed_ ? unflushed_.size() + above_.size() + 1 : 0; }

  void FlushEach() {
    if (!changed_) return;
    for (const std::string& name : unflushed_) {
      BeginSync(ChangePlace::In(folder_.Get(), name, path_));
    }
    for (const std::string& name : unflushed_) {
      const std::string about = About(ShownName(name));
      const ChangePlace place = ChangePlace::In(folder_.Get(), name, about);
      RequireExists(place, about);
      SyncFile(place, about);
    }
    SyncFolder(folder_.Get(), path_);
    for (const UniqueFd& folder : above_) SyncFolder(folder.Get(), path_);
    Forget();
  }

  void FlushVolume() {
    SyncVolume(folder_.Get(), path_);
    Forget();
  }

  // All is on the disk.
  void Forget() {
    unflushed_.clear();
    above_.clear();
    changed_ = false;
  }

 private:
  std::string About(std::string_view name) const { return PathIn(path_, name); }

  // As it was given where it stands so, else in the letter case that the folder has it in.
  ChangePlace PlaceOf(std::string_view name) {
    RequireName(name);
    const std::string host = HostName(name);
    ChangePlace place = ChangePlace::In(folder_.Get(), host, name);
    if (place.Exists()) return place;
    if (!names_) ReadNames();
    if (!names_->MayHave(host)) return place;
    std::optional<std::string> other;
    DirectoryStream stream(ProcPath());
    while (const char* entry = stream.Next()) {
      if (EqualNames(entry, host) && (!other || entry < *other)) other = entry;
    }
    return other ? ChangePlace::In(folder_.Get(), *other, name) : std::move(place);
  }

  // A folder that may be entered and not read has no other letter cases.
  void ReadNames() {
    names_.emplace();
    DirectoryStream stream(ProcPath());
    while (const char* entry = stream.Next()) names_->Add(entry);
  }

  std::string ProcPath() const { return "/proc/self/fd/" + std::to_string(folder_.Get()); }

  void Note(std::string_view name) {
    if (names_) names_->Add(name);
    changed_ = true;
  }

  void RefuseLink(const ChangePlace& place, std::string_view name) const {
    if (place.IsLink()) throw RuntimeError(ErrorNumber::kPermissionDenied, About(name), ELOOP);
  }

  UniqueFd folder_;
  std::string path_;
  dev_t volume_ = 0;
  std::optional<NamesSeen> names_;  // from the first name that was missing
  // What Flush has to see onto the disk.
  bool changed_ = false;
  std::vector<std::string> unflushed_;  // host names of files
  std::vector<UniqueFd> above_;
};

class PosixHeldFolders : public HeldFolders {
 public:
  PosixHeldFolders(PathMap& paths, Links links) : paths_(paths), links_(links) {}

  HeldFolder* Find(const std::string& path) override {
    if (HeldFolder* known = Known(path)) return known;
    HeldFolder* found = nullptr;
    IgnoringErrors([&] {
      const PathMap::Location place = paths_.Locate(path);
      found = &Hold(path, place, OpenDriveFolder(paths_, place, links_, path), {});
    });
    return found;
  }

  HeldFolder& Make(const std::string& path) override {
    if (HeldFolder* known = Known(path)) return *known;
    const PathMap::Location place = paths_.Locate(path);
    std::vector<UniqueFd> changed;
    UniqueFd folder = MakeDriveFolder(paths_, place, links_, path, changed);
    return Hold(path, place, std::move(folder), std::move(changed));
  }

  size_t Count() const override { return folders_.size(); }

  void Flush() override {
    size_t waits = 0;
    for (const auto& [path, folder] : folders_) waits += folder->Waits();
    std::vector<dev_t> done;
    for (const auto& [path, folder] : folders_) {
      if (waits <= kSome) {
        folder->FlushEach();
      } else if (std::find(done.begin(), done.end(), folder->Volume()) != done.end()) {
        folder->Forget();
      } else if (folder->Changed()) {
        done.push_back(folder->Volume());
        folder->FlushVolume();
      }
    }
  }

 private:
  HeldFolder* Known(const std::string& path) {
    const auto known = byPath_.find(path);
    return known == byPath_.end() ? nullptr : known->second;
  }

  // Two spellings of a path share the folder, and so what is known of its names.
  HeldFolder& Hold(const std::string& path, const PathMap::Location& place, UniqueFd folder,
                   std::vector<UniqueFd> above) {
    auto& held = folders_[place.host];
    if (!held) {
      held = std::make_unique<PosixHeldFolder>(std::move(folder), path, std::move(above));
    }
    byPath_[path] = held.get();
    return *held;
  }

  PathMap& paths_;
  Links links_;
  std::map<std::string, std::unique_ptr<PosixHeldFolder>> folders_;  // by host path
  std::map<std::string, PosixHeldFolder*> byPath_;
};

}  // namespace

std::unique_ptr<HeldFolders> MakeHeldFolders(PathMap& paths, Links links) {
  return std::make_unique<PosixHeldFolders>(paths, links);
}

}  // namespace quarnel
