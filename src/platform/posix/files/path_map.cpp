#include "platform/posix/files/path_map.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/names.h"
#include "platform/posix/files/at_path.h"
#include "platform/posix/files/directory_stream.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

// The longest path of the system, 32,767 characters, at three bytes each.
constexpr size_t kLongestPath = size_t{32767} * 3;
// A folder with more names is read at each lookup instead of being kept.
constexpr size_t kMostNames = size_t{1} << 18;
constexpr size_t kMostBytes = size_t{64} << 20;
constexpr std::string_view kForbidden = "\\:*?\"<>|";

constexpr std::array<bool, 256> kIsForbidden = [] {
  std::array<bool, 256> forbidden{};
  for (const char c : kForbidden) forbidden[static_cast<unsigned char>(c)] = true;
  return forbidden;
}();

bool IsForbidden(char c) { return kIsForbidden[static_cast<unsigned char>(c)]; }

bool IsSlash(char c) { return c == '\\' || c == '/'; }

// The private-use character that stands for `c`, or for the escape when c is 0x7F: U+F000 + c in
// UTF-8.
std::string PrivateUse(char c) {
  const auto code = static_cast<unsigned>(static_cast<unsigned char>(c));
  return {'\xEF', static_cast<char>(0x80 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
}

constexpr char kEscape = 0x7F;
constexpr size_t kPrivateUseLength = 3;

// The character whose private-use form stands at the front of `text`, NUL when there is none.
char PrivateUseAt(std::string_view text) {
  if (text.size() < kPrivateUseLength || text[0] != '\xEF') return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  const auto third = static_cast<unsigned char>(text[2]);
  if ((second & 0xFEU) != 0x80 || (third & 0xC0U) != 0x80) return 0;
  const char c = static_cast<char>((second & 1U) << 6 | (third & 0x3FU));
  return c == kEscape || IsForbidden(c) ? c : '\0';
}

void AppendComponents(std::string_view path, size_t driveLength, std::string& host) {
  while (!path.empty()) {
    const auto end =
        static_cast<size_t>(std::find_if(path.begin(), path.end(), IsSlash) - path.begin());
    const std::string_view name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    if (name.empty() || name == ".") continue;
    if (name == "..") {
      if (host.size() > driveLength) host.resize(host.rfind('/'));
      continue;
    }
    if (std::any_of(name.begin(), name.end(), IsForbidden)) {
      throw RuntimeError(ErrorNumber::kBadFileName, name.substr(0, 260));
    }
    host += '/';
    if (name.find('\xEF') == std::string_view::npos) {
      host += name;
    } else {
      host += HostName(name);
    }
  }
}

}  // namespace

FolderStamp FolderStamp::Of(const struct stat& fresh) {
  // The tick is 10 ms at most. File systems that keep no fractions of a second have steps of up to
  // two seconds.
  constexpr int64_t kMillion = 1'000'000;
  const bool fractions = fresh.st_ctim.tv_nsec != 0;
  const int64_t granularity = fractions ? 20 * kMillion : 3000 * kMillion;
  struct timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  // Cut so that a time from far away cannot overflow.
  const int64_t seconds = std::clamp<int64_t>(now.tv_sec - fresh.st_ctim.tv_sec, -10, 10);
  const int64_t age = seconds * 1000 * kMillion + now.tv_nsec - fresh.st_ctim.tv_nsec;
  return {fresh, age > granularity};
}

bool FolderStamp::StillHolds(const struct stat& fresh) const {
  // Not the time of modification: a program can set that back.
  return trusted && status.st_ino == fresh.st_ino && status.st_dev == fresh.st_dev &&
         status.st_ctim.tv_sec == fresh.st_ctim.tv_sec &&
         status.st_ctim.tv_nsec == fresh.st_ctim.tv_nsec;
}

PathMap::Location PathMap::Exact(std::string_view path) const {
  const auto raiseBadName = [text = path.substr(0, std::min<size_t>(path.find('\0'), 260))] {
    throw RuntimeError(ErrorNumber::kBadFileName, text);
  };
  if (path.empty() || path.size() > kLongestPath || path.find('\0') != std::string_view::npos) {
    raiseBadName();
  }
  const bool isLongForm = path.starts_with("\\\\?\\");
  if (isLongForm) path.remove_prefix(4);
  const bool hasDrive = path.size() >= 2 && path[1] == ':';
  const char drive = hasDrive ? ToLower(path.substr(0, 1))[0] : 'c';
  const bool isShare = path.size() >= 2 && IsSlash(path[0]) && IsSlash(path[1]);
  if (isShare || (isLongForm && !hasDrive) || drive < 'a' || drive > 'z') raiseBadName();
  if (hasDrive) path.remove_prefix(2);
  const bool relative = !hasDrive && !IsSlash(path[0]);
  Location location;
  const std::string& root = layout_.Drive(drive);
  location.driveLength = root.size();
  location.host.reserve(root.size() + path.size() + layout_.programFolder.size() + 2);
  location.host = root;
  if (relative) {
    const std::string_view programFolder = layout_.programFolder;
    AppendComponents(programFolder.substr(2), location.driveLength, location.host);
  }
  AppendComponents(path, location.driveLength, location.host);
  return location;
}

// A folder that is missing, or is none, tells that nothing stands there. Whatever else goes wrong
// tells nothing.
void PathMap::NoteFailure(int code) {
  if (code != 0 && code != ENOENT && code != ENOTDIR && code != ENAMETOOLONG) obstacle_ = code;
}

bool PathMap::LStat(const std::string& host, struct stat& status) {
  const AtPath at(host);
  if (fstatat(at.Folder(), at.Name(), &status, AT_SYMLINK_NOFOLLOW) == 0) return true;
  NoteFailure(errno);
  return false;
}

bool PathMap::FolderStat(const std::string& host, struct stat& status) {
  const AtPath at(host);
  if (fstatat(at.Folder(), at.Name(), &status, 0) == 0) return S_ISDIR(status.st_mode);
  NoteFailure(errno);
  return false;
}

PathMap::Location PathMap::Locate(std::string_view windowsPath) {
  obstacle_ = 0;
  Location location = LocateFrom(Exact(windowsPath));
  if (!location.exists) location.obstacle = obstacle_;
  return location;
}

PathMap::Location PathMap::LocateFrom(Location location) {
  struct stat status = {};
  if (location.IsDriveRoot()) {
    location.exists = location.hasFolder = FolderStat(location.host, status);
    return location;
  }
  const size_t slash = location.host.rfind('/');
  const std::string exactFolder = location.host.substr(0, slash);
  const std::string name = location.host.substr(slash + 1);
  std::optional<std::string> folder = KnownFolder(exactFolder);
  std::optional<Lookup> lookup;
  if (folder) lookup = Find(*folder, name);
  if (!lookup) {
    folders_.erase(exactFolder);
    const Known nearest = NearestKnown(exactFolder, location.driveLength);
    if (!listings_.contains(nearest.host)) {
      // Nothing is known yet; most paths are given as they stand on the disk.
      location.exists = location.hasFolder = LStat(location.host, status);
      if (location.exists) return location;
    }
    Known reached = FolderBelow(nearest, exactFolder);
    if (reached.length < exactFolder.size()) {
      location.host = reached.host + location.host.substr(reached.length);
      return location;
    }
    folder = std::move(reached.host);
    lookup = Find(*folder, name);
  }
  if (!lookup) return location;
  location.hasFolder = true;
  location.exists = lookup->found;
  location.host = *folder + "/" + (lookup->found ? lookup->name : name);
  return location;
}

// Where the folder was found before, unless a better match stands there now.
std::optional<std::string> PathMap::KnownFolder(const std::string& exact) {
  const auto known = folders_.find(exact);
  if (known == folders_.end()) return std::nullopt;
  struct stat status = {};
  if (known->second != exact && FolderStat(exact, status)) return std::nullopt;
  return known->second;
}

// The nearest known folder above a folder; the drive's root at the last.
PathMap::Known PathMap::NearestKnown(const std::string& exact, size_t driveLength) {
  constexpr int kLooksUp = 8;
  size_t above = exact.size();
  for (int look = 0; look < kLooksUp && above > driveLength; ++look) {
    above = exact.rfind('/', above - 1);
    if (above == std::string::npos || above <= driveLength) break;
    if (auto known = KnownFolder(exact.substr(0, above))) return {std::move(*known), above};
  }
  return {exact.substr(0, driveLength), driveLength};
}

// Goes down from a known folder towards the one whose path in the letter case given is `exact`, as
// far as there are folders. What is missing is found missing with one look.
PathMap::Known PathMap::FolderBelow(Known known, const std::string& exact) {
  while (known.length < exact.size()) {
    const size_t end = std::min(exact.find('/', known.length + 1), exact.size());
    const auto lookup = Find(known.host, exact.substr(known.length + 1, end - known.length - 1));
    if (!lookup || !lookup->found) break;
    known.host.append("/").append(lookup->name);
    known.length = end;
    Remember(exact.substr(0, known.length), known.host);
  }
  return known;
}

void PathMap::Remember(const std::string& exact, const std::string& host) {
  MakeRoom(exact.size() + host.size() + 96);
  folders_.insert_or_assign(exact, host);
}

void PathMap::Read(const std::string& folder, Listing& listing) {
  DirectoryStream stream(folder);
  listing.bytes = folder.size() + sizeof(Listing);
  listing.kept = stream.Error() == 0;
  while (const char* name = stream.Next()) {
    if (listing.names.size() >= kMostNames) {
      listing.kept = false;
      break;
    }
    // Of names that differ in case only, the first in order answers for the other spellings.
    auto [entry, isNew] = listing.names.try_emplace(FoldName(name), name);
    if (!isNew) {
      listing.caseVariants = true;
      if (name < entry->second) entry->second = name;
    }
    listing.bytes += 2 * entry->second.size() + 96;
  }
  NoteFailure(stream.Error());
  if (stream.Error() != 0) listing.kept = false;
  if (!listing.kept) listing.names.clear();
}

// What answers for `name` in a folder; nothing when there is no such folder.
std::optional<PathMap::Lookup> PathMap::Find(const std::string& folder, const std::string& name) {
  struct stat status = {};
  const bool isFolder = FolderStat(folder, status);
  auto known = listings_.find(folder);
  if (known != listings_.end() && (!isFolder || !known->second.stamp.StillHolds(status))) {
    cachedBytes_ -= std::min(cachedBytes_, known->second.bytes);
    listings_.erase(known);
    known = listings_.end();
  }
  if (!isFolder) return std::nullopt;
  if (known == listings_.end()) {
    // In a folder that changes all the time a name that stands there needs no listing.
    struct stat entry = {};
    if (LStat(folder + "/" + name, entry)) return Lookup{true, name};
    Listing listing;
    listing.stamp = FolderStamp::Of(status);
    // A listing that the next look would not believe is not worth its making.
    if (!listing.stamp.trusted) return Search(folder, name);
    Read(folder, listing);
    MakeRoom(listing.bytes);
    known = listings_.insert_or_assign(folder, std::move(listing)).first;
  }
  return FindIn(known->second, folder, name);
}

PathMap::Lookup PathMap::FindIn(const Listing& listing, const std::string& folder,
                                const std::string& name) {
  Lookup lookup;
  if (listing.kept) {
    const auto entry = listing.names.find(FoldName(name));
    if (entry == listing.names.end()) return lookup;
    lookup = {true, entry->second};
    if (lookup.name == name || !listing.caseVariants) return lookup;
  }
  struct stat status = {};
  if (LStat(folder + "/" + name, status)) return {true, name};
  return listing.kept ? lookup : Search(folder, name);
}

// Reads the folder for a name that does not stand there in the letter case given.
PathMap::Lookup PathMap::Search(const std::string& folder, const std::string& name) {
  Lookup lookup;
  DirectoryStream stream(folder);
  while (const char* entry = stream.Next()) {
    if (EqualNames(entry, name) && (!lookup.found || entry < lookup.name)) lookup = {true, entry};
  }
  NoteFailure(stream.Error());
  return lookup;
}

void PathMap::MakeRoom(size_t bytes) {
  if (cachedBytes_ + bytes > kMostBytes) {
    folders_.clear();
    listings_.clear();
    cachedBytes_ = 0;
  }
  cachedBytes_ += bytes;
}

const std::vector<PathMap::DriveRoot>& PathMap::Drives() {
  struct stat status = {};
  if (FolderStat(layout_.drivesFolder, status) && drivesStamp_.StillHolds(status)) return drives_;
  drivesStamp_ = FolderStamp::Of(status);
  drives_.clear();
  for (size_t i = 0; i < layout_.drives.size(); ++i) {
    const std::string& own = layout_.drives[i];
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(own.c_str(), nullptr),
                                                           &std::free);
    obstacle_ = 0;
    if (real == nullptr) NoteFailure(errno);
    const bool isFolder = real != nullptr && FolderStat(real.get(), status);
    // One that cannot be looked at now is there all the same, and may answer the next time.
    if (!isFolder && obstacle_ == 0) continue;
    const std::string_view host = real == nullptr ? std::string_view(own) : real.get();
    drives_.push_back({static_cast<char>('A' + i), std::string(host == "/" ? "" : host)});
  }
  return drives_;
}

std::optional<std::string> PathMap::ToWindows(std::string_view hostPath) {
  // A drive can lie within another one: the innermost shows the path.
  const DriveRoot* innermost = nullptr;
  for (const DriveRoot& drive : Drives()) {
    const size_t length = drive.host.size();
    if (hostPath.starts_with(drive.host) &&
        (hostPath.size() == length || hostPath[length] == '/') &&
        (innermost == nullptr || length > innermost->host.size())) {
      innermost = &drive;
    }
  }
  if (innermost == nullptr) return std::nullopt;
  std::string path{innermost->letter, ':'};
  std::string_view rest = hostPath.substr(innermost->host.size());
  while (rest.size() > 1) {
    const size_t end = std::min(rest.find('/', 1), rest.size());
    path.append("\\").append(ShownName(rest.substr(1, end - 1)));
    rest.remove_prefix(end);
  }
  return path.size() == 2 ? path + "\\" : path;
}

std::string ShownName(std::string_view hostName) {
  std::string shown;
  shown.reserve(hostName.size());
  for (size_t i = 0; i < hostName.size(); ++i) {
    if (IsForbidden(hostName[i])) {
      shown += PrivateUse(hostName[i]);
    } else {
      if (PrivateUseAt(hostName.substr(i)) != 0) shown += PrivateUse(kEscape);
      shown += hostName[i];
    }
  }
  return shown;
}

std::string HostName(std::string_view shownName) {
  std::string host;
  host.reserve(shownName.size());
  for (size_t i = 0; i < shownName.size();) {
    const char c = PrivateUseAt(shownName.substr(i));
    if (c == 0) {
      host += shownName[i++];
    } else if (c != kEscape) {
      host += c;
      i += kPrivateUseLength;
    } else {
      // Behind the escape such a character stands for itself; an escape in front of nothing does.
      i += kPrivateUseLength;
      const bool escapes = PrivateUseAt(shownName.substr(i)) != 0;
      host += escapes ? shownName.substr(i, kPrivateUseLength) : PrivateUse(kEscape);
      if (escapes) i += kPrivateUseLength;
    }
  }
  return host;
}

}  // namespace quarnel
