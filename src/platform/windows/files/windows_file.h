#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/windows/win32.h"

namespace quarnel {

// Nobody is locked out, as a scan looks at files that are in use, and removal deletes them.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Opens a file at a path of SystemPath. All raise RuntimeError; `about` is the path as the caller
// knows it.
std::unique_ptr<File> OpenWindowsFile(const std::wstring& path, std::string_view about,
                                      OpenMode mode, bool refuseLinks);

// Returns when a file's content is on the disk.
void SyncFile(const std::wstring& path, std::string_view about);

// The attributes of what stands at a path, of a link itself; INVALID_FILE_ATTRIBUTES when nothing
// does.
DWORD AttributesAt(const std::wstring& path);
bool IsFolderAt(const std::wstring& path);

// Raises kPermissionDenied for a read-only file or folder, else gives the attributes. The system
// itself lets some users through, and not every version of it refuses everything.
DWORD RefuseReadOnly(const std::wstring& path, std::string_view about);

// Raises for a code of GetLastError from a call on this path. The system refuses a folder where a
// file is meant as it refuses what one has no right to; here these are told apart.
[[noreturn]] void RaiseAt(const std::wstring& path, DWORD code, std::string_view about);

}  // namespace quarnel
