#include "platform/windows/files/held_way.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "platform/windows/system_error.h"

namespace quarnel {
namespace {

// Where the first name stands behind the root of a drive or share.
size_t BehindRoot(const std::wstring& path) {
  constexpr std::wstring_view kDrive = LR"(\\?\C:\)";
  constexpr std::wstring_view kShares = LR"(\\?\UNC\)";
  if (!path.starts_with(kShares)) return kDrive.size();
  size_t position = kShares.size();
  for (int part = 0; part < 2; ++part) position = path.find(L'\\', position) + 1;
  return position;
}

KernelHandle OpenWithoutDeletion(const std::wstring& path) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  KernelHandle handle;
  // What is shared counts only for those who may read. Some folders may be entered and not listed.
  for (const DWORD access : {DWORD{FILE_LIST_DIRECTORY}, DWORD{FILE_READ_ATTRIBUTES}}) {
    handle.Reset(
        CreateFileW(path.c_str(), access, kShare, nullptr, OPEN_EXISTING, kFlags, nullptr));
    if (handle.Valid() || GetLastError() != ERROR_ACCESS_DENIED) break;
  }
  return handle;
}

}  // namespace

bool IsLink(const WIN32_FIND_DATAW& found) {
  return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
         (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
          found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

bool IsLinkAt(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return false;
  }
  WIN32_FIND_DATAW found;
  const SearchHandle search(FindFirstFileW(path.c_str(), &found));
  return !search.Valid() || IsLink(found);
}

HeldWay::HeldWay(const std::wstring& path, End end, std::string_view about) {
  for (size_t begin = BehindRoot(path); begin < path.size();) {
    const size_t slash = path.find(L'\\', begin);
    const bool isLast = slash == std::wstring::npos;
    if (isLast && end == End::kFolder) return;
    const std::wstring place = path.substr(0, slash);
    KernelHandle handle = OpenWithoutDeletion(place);
    if (!handle.Valid()) {
      const DWORD code = GetLastError();
      if (isLast && code == ERROR_FILE_NOT_FOUND) return;
      if (code == ERROR_FILE_NOT_FOUND) {
        throw RuntimeError(ErrorNumber::kPathNotFound, about, static_cast<long>(code));
      }
      RaiseSystemError(code, about);
    }
    handles_.push_back(std::move(handle));
    // Asked only now that nothing else can take its place.
    if (IsLinkAt(place)) {
      throw RuntimeError(ErrorNumber::kPermissionDenied, about, ERROR_ACCESS_DENIED);
    }
    if (isLast) return;
    begin = slash + 1;
  }
}

}  // namespace quarnel
