#include "platform/files.h"

#include <string>
#include <utility>

#include "platform/held_folders.h"
#include "platform/windows/backends.h"
#include "platform/windows/files/held_way.h"
#include "platform/windows/files/system_path.h"
#include "platform/windows/files/windows_file.h"
#include "platform/windows/system_error.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/winapi.h"

namespace quarnel {
namespace {

constexpr DWORD kSettable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                            FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_TEMPORARY;

// The system counts from 1601, FileTime from 1970.
constexpr int64_t kEpoch = 116444736000000000;

FileTime TimeFromSystem(const FILETIME& time) {
  ULARGE_INTEGER count;
  count.LowPart = time.dwLowDateTime;
  count.HighPart = time.dwHighDateTime;
  return FileTime(FileTime::duration(static_cast<int64_t>(count.QuadPart) - kEpoch));
}

FILETIME TimeForSystem(FileTime time) {
  ULARGE_INTEGER count;
  count.QuadPart = static_cast<ULONGLONG>(time.time_since_epoch().count() + kEpoch);
  return {count.LowPart, count.HighPart};
}

// What searches, attribute queries and open files tell alike.
template <typename Facts>
void TakeFacts(const Facts& facts, DirectoryEntry& entry) {
  entry.attributes = facts.dwFileAttributes;
  entry.size = entry.IsFolder() ? 0 : uint64_t{facts.nFileSizeHigh} << 32 | facts.nFileSizeLow;
  entry.modified = TimeFromSystem(facts.ftLastWriteTime);
}

// Shows the target in the place of a link to it; a link to nothing shows itself.
void FollowLink(const std::wstring& path, DirectoryEntry& entry) {
  const KernelHandle target(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION facts;
  if (!target.Valid() || !GetFileInformationByHandle(target.Get(), &facts)) return;
  TakeFacts(facts, entry);
  entry.attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
}

// `path` gives the place of the entry found.
template <typename Path>
DirectoryEntry EntryOf(const WIN32_FIND_DATAW& found, const Path& path) {
  DirectoryEntry entry;
  TakeFacts(found, entry);
  if (IsLink(found)) FollowLink(path(), entry);
  entry.name = Narrow(found.cFileName);
  return entry;
}

// Nothing, where the system says so.
std::optional<DirectoryEntry> Absent(DWORD code, std::string_view path) {
  const auto error = [&] {
    return RuntimeError(NumberOfSystemError(code), path, static_cast<long>(code));
  };
  if (!TellsAbsence(error()) && code != ERROR_NO_MORE_FILES) throw error();
  return std::nullopt;
}

bool IsDots(const wchar_t* name) {
  return name[0] == L'.' && (name[1] == 0 || (name[1] == L'.' && name[2] == 0));
}

SearchHandle BeginSearch(const std::wstring& pattern, WIN32_FIND_DATAW& found) {
  const bool fast = Newer().fastSearches;
  return SearchHandle(
      FindFirstFileExW(pattern.c_str(), fast ? kFindExInfoBasic : FindExInfoStandard, &found,
                       FindExSearchNameMatch, nullptr, fast ? kFindFirstExLargeFetch : 0));
}

class WindowsFiles : public Files {
 public:
  // Whether folders may be entered by way of a link; where the way is held already, only what bears
  // a path's name may not be one.
  enum class Links { kFollow, kRefuse, kWayIsHeld };
  explicit WindowsFiles(Links links = Links::kFollow) : links_(links) {}

  Files& WithoutLinks() override {
    if (links_ == Links::kRefuse) return *this;
    if (!withoutLinks_) withoutLinks_ = std::make_unique<WindowsFiles>(Links::kRefuse);
    return *withoutLinks_;
  }

  std::optional<DirectoryEntry> Look(std::string_view path) override {
    std::wstring place;
    // What cannot be a path names nothing.
    if (!IgnoringErrors([&] { place = SystemPath(path); })) return std::nullopt;
    HeldWay way;
    try {
      way = WayTo(place, path);
    } catch (const RuntimeError& error) {
      if (TellsAbsence(error)) return std::nullopt;
      throw;
    }
    if (!IsRoot(place)) {
      WIN32_FIND_DATAW found;
      // Unlike an attribute query, a search tells the name's own letter case.
      const SearchHandle search(FindFirstFileW(place.c_str(), &found));
      if (search.Valid()) return EntryOf(found, [&] { return place; });
      if (GetLastError() != ERROR_ACCESS_DENIED) return Absent(GetLastError(), path);
    }
    // A root has no name, and some folders may not be searched.
    WIN32_FILE_ATTRIBUTE_DATA facts;
    if (!GetFileAttributesExW(place.c_str(), GetFileExInfoStandard, &facts)) {
      return Absent(GetLastError(), path);
    }
    DirectoryEntry entry;
    TakeFacts(facts, entry);
    if (!IsRoot(place))
      entry.name = Narrow(std::wstring_view(place).substr(place.rfind(L'\\') + 1));
    return entry;
  }

  std::vector<DirectoryEntry> List(std::string_view folder) override {
    const std::wstring base = SystemPath(folder);
    const HeldWay way = WayTo(base, folder, HeldWay::End::kItself);
    const std::wstring place = IsRoot(base) ? base : base + L'\\';
    std::vector<DirectoryEntry> entries;
    WIN32_FIND_DATAW found;
    const SearchHandle search = BeginSearch(place + L'*', found);
    if (!search.Valid()) {
      const DWORD code = GetLastError();
      const DWORD attributes = AttributesAt(base);
      const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
      const bool isFolder = isThere && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      // The root of an empty drive has not even "." in it.
      if (isFolder && code == ERROR_FILE_NOT_FOUND) return entries;
      if ((isThere && !isFolder) || code == ERROR_FILE_NOT_FOUND) {
        throw RuntimeError(ErrorNumber::kPathNotFound, folder, static_cast<long>(code));
      }
      RaiseSystemError(code, folder);
    }
    do {
      if (IsDots(found.cFileName)) continue;
      entries.push_back(EntryOf(found, [&] { return place + found.cFileName; }));
    } while (FindNextFileW(search.Get(), &found));
    if (const DWORD code = GetLastError(); code != ERROR_NO_MORE_FILES) {
      RaiseSystemError(code, folder);
    }
    SortByName(entries);
    return entries;
  }

  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path);
    return OpenWindowsFile(place, path, mode, links_ != Links::kFollow);
  }

  void Delete(std::string_view path) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path);
    RefuseReadOnly(place, path);
    if (!DeleteFileW(place.c_str())) RaiseAt(place, GetLastError(), path);
  }

  void DeleteFolder(std::string_view path) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path);
    const DWORD attributes = RefuseReadOnly(place, path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      throw RuntimeError(ErrorNumber::kPathFileAccess, path, ERROR_DIRECTORY);
    }
    // Of a link to a folder the link alone goes.
    if (!RemoveDirectoryW(place.c_str())) RaiseSystemError(GetLastError(), path);
  }

  void CreateFolder(std::string_view path) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path);
    if (!CreateDirectoryW(place.c_str(), nullptr)) {
      RaiseSystemError(GetLastError(), path);
    }
  }

  void Move(std::string_view from, std::string_view to) override {
    const std::wstring source = SystemPath(from);
    const std::wstring target = SystemPath(to);
    const HeldWay wayFrom = WayTo(source, from);
    const HeldWay wayTo = WayTo(target, to);
    if (MoveFileExW(source.c_str(), target.c_str(), 0)) return;
    const DWORD code = GetLastError();
    const bool isFolder = IsFolderAt(source);
    if (isFolder && code == ERROR_INVALID_PARAMETER) {  // a folder into itself
      throw RuntimeError(ErrorNumber::kPermissionDenied, from, static_cast<long>(code));
    }
    if (isFolder || code != ERROR_NOT_SAME_DEVICE) RaiseSystemError(code, from);
    if (links_ != Links::kFollow && IsLinkAt(source)) RaiseSystemError(ERROR_ACCESS_DENIED, from);
    // Not left to the system, which calls it a success when the source stays.
    if (!CopyFileW(source.c_str(), target.c_str(), TRUE)) RaiseSystemError(GetLastError(), from);
    SetFileAttributesW(source.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (!DeleteFileW(source.c_str())) RaiseSystemError(GetLastError(), from);
  }

  void ReplaceFile(std::string_view from, std::string_view to) override {
    SyncFile(SystemPath(from), from);
    Replace(from, to, MOVEFILE_WRITE_THROUGH);
  }

  std::unique_ptr<HeldFolders> HoldFolders() override;

  // As ReplaceFile, without a wait for the disk.
  void PutInPlace(std::string_view from, std::string_view to) { Replace(from, to, 0); }

  void Copy(std::string_view from, std::string_view to) override {
    const std::wstring source = SystemPath(from);
    const std::wstring target = SystemPath(to);
    const HeldWay wayFrom = WayTo(source, from, HeldWay::End::kItself);
    const HeldWay wayTo = WayTo(target, to);
    if (links_ != Links::kFollow && IsLinkAt(target)) RaiseSystemError(ERROR_ACCESS_DENIED, to);
    if (IsFolderAt(source)) throw RuntimeError(ErrorNumber::kPathFileAccess, from);
    if (IsFolderAt(target)) throw RuntimeError(ErrorNumber::kPathFileAccess, to);
    const DWORD before = RefuseReadOnly(target, to);
    const bool isHidden = before != INVALID_FILE_ATTRIBUTES &&
                          (before & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0;
    // The system puts no copy over a hidden file.
    if (isHidden) SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (!CopyFileW(source.c_str(), target.c_str(), FALSE)) {
      const DWORD code = GetLastError();
      if (isHidden) SetFileAttributesW(target.c_str(), before);
      RaiseSystemError(code, from);
    }
    // Not every file system hands the attributes over to a file that was there.
    const DWORD wanted = AttributesAt(source) & kSettable;
    if ((AttributesAt(target) & kSettable) != wanted) SetFileAttributesW(target.c_str(), wanted);
  }

  void SetAttributes(std::string_view path, uint32_t attributes) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path, HeldWay::End::kItself);
    const DWORD wanted = attributes & kSettable;
    // Zero would leave all as it is.
    if (!SetFileAttributesW(place.c_str(), wanted == 0 ? FILE_ATTRIBUTE_NORMAL : wanted)) {
      RaiseSystemError(GetLastError(), path);
    }
  }

  FileTimes Times(std::string_view path) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path, HeldWay::End::kItself);
    const KernelHandle file = OpenForTimes(place, FILE_READ_ATTRIBUTES);
    FILETIME created;
    FILETIME accessed;
    FILETIME modified;
    if (!file.Valid() || !GetFileTime(file.Get(), &created, &accessed, &modified)) {
      RaiseSystemError(GetLastError(), path);
    }
    return {TimeFromSystem(created), TimeFromSystem(accessed), TimeFromSystem(modified)};
  }

  void SetTimes(std::string_view path, const FileTimes& times) override {
    const std::wstring place = SystemPath(path);
    const HeldWay way = WayTo(place, path, HeldWay::End::kItself);
    const KernelHandle file = OpenForTimes(place, FILE_WRITE_ATTRIBUTES);
    // Zero leaves a time as it is.
    const auto forSystem = [](FileTime time) {
      return time == FileTime() ? FILETIME{} : TimeForSystem(time);
    };
    const FILETIME created = forSystem(times.created);
    const FILETIME accessed = forSystem(times.accessed);
    const FILETIME modified = forSystem(times.modified);
    if (!file.Valid() || !SetFileTime(file.Get(), &created, &accessed, &modified)) {
      RaiseSystemError(GetLastError(), path);
    }
  }

 private:
  // Puts a file in the place of another.
  void Replace(std::string_view from, std::string_view to, DWORD flags) {
    const std::wstring source = SystemPath(from);
    const std::wstring target = SystemPath(to);
    const HeldWay way = WayTo(target, to);
    RefuseReadOnly(target, to);
    if (IsFolderAt(source) || IsFolderAt(target)) {
      throw RuntimeError(ErrorNumber::kPathFileAccess, to);
    }
    if (!MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | flags)) {
      RaiseSystemError(GetLastError(), to);
    }
  }

  static KernelHandle OpenForTimes(const std::wstring& place, DWORD access) {
    return KernelHandle(CreateFileW(place.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  }

  // What has to be held while something is done at a place; nothing where links are followed.
  HeldWay WayTo(const std::wstring& place, std::string_view about,
                HeldWay::End end = HeldWay::End::kFolder) const {
    if (links_ == Links::kRefuse) return HeldWay(place, end, about);
    if (links_ == Links::kWayIsHeld && end == HeldWay::End::kItself && IsLinkAt(place)) {
      throw RuntimeError(ErrorNumber::kPermissionDenied, about, ERROR_ACCESS_DENIED);
    }
    return {};
  }

  Links links_;
  std::unique_ptr<WindowsFiles> withoutLinks_;
  std::unique_ptr<WindowsFiles> wayIsHeld_;
};

// The way is held once for all files of a folder.
class WindowsHeldFolder : public HeldFolderByPath {
 public:
  WindowsHeldFolder(WindowsFiles& files, const std::string& path, WindowsFiles::Links links)
      : HeldFolderByPath(files, path), files_(files) {
    if (links == WindowsFiles::Links::kRefuse) {
      way_ = HeldWay(SystemPath(path), HeldWay::End::kItself, path);
    }
  }

 private:
  void Replace(const std::string& from, const std::string& to) override {
    files_.PutInPlace(from, to);
  }

  WindowsFiles& files_;
  HeldWay way_;
};

std::unique_ptr<HeldFolders> WindowsFiles::HoldFolders() {
  if (!wayIsHeld_) wayIsHeld_ = std::make_unique<WindowsFiles>(Links::kWayIsHeld);
  return std::make_unique<HeldFoldersByPath>(*this, [this](const std::string& path) {
    return std::make_unique<WindowsHeldFolder>(*wayIsHeld_, path, links_);
  });
}

}  // namespace

std::unique_ptr<Files> MakeFiles() { return std::make_unique<WindowsFiles>(); }

}  // namespace quarnel
