#include "platform/windows/system_error.h"

#include <algorithm>
#include <iterator>

#include "platform/windows/win32.h"

namespace quarnel {
namespace {

struct Mapping {
  DWORD code;
  ErrorNumber number;
};

// Codes that the headers do not name.
constexpr DWORD kVirusInfected = 225;
constexpr DWORD kDiskQuotaExceeded = 1295;

constexpr Mapping kMappings[] = {
    {ERROR_FILE_NOT_FOUND, ErrorNumber::kFileNotFound},
    {ERROR_PATH_NOT_FOUND, ErrorNumber::kPathNotFound},
    {ERROR_INVALID_DRIVE, ErrorNumber::kPathNotFound},
    {ERROR_BAD_NETPATH, ErrorNumber::kPathNotFound},
    {ERROR_BAD_NET_NAME, ErrorNumber::kPathNotFound},
    {ERROR_DIRECTORY, ErrorNumber::kPathNotFound},  // a file where a folder is meant
    {ERROR_ACCESS_DENIED, ErrorNumber::kPermissionDenied},
    {ERROR_CURRENT_DIRECTORY, ErrorNumber::kPermissionDenied},
    {ERROR_WRITE_PROTECT, ErrorNumber::kPermissionDenied},
    {ERROR_SHARING_VIOLATION, ErrorNumber::kPermissionDenied},
    {ERROR_LOCK_VIOLATION, ErrorNumber::kPermissionDenied},
    {ERROR_NETWORK_ACCESS_DENIED, ErrorNumber::kPermissionDenied},
    {kVirusInfected, ErrorNumber::kPermissionDenied},
    {ERROR_DELETE_PENDING, ErrorNumber::kPermissionDenied},
    {ERROR_USER_MAPPED_FILE, ErrorNumber::kPermissionDenied},
    {ERROR_PRIVILEGE_NOT_HELD, ErrorNumber::kPermissionDenied},
    {ERROR_FILE_EXISTS, ErrorNumber::kFileExists},
    {ERROR_ALREADY_EXISTS, ErrorNumber::kFileExists},
    {ERROR_NOT_SAME_DEVICE, ErrorNumber::kPathFileAccess},
    {ERROR_DIR_NOT_EMPTY, ErrorNumber::kPathFileAccess},
    {ERROR_CANT_RESOLVE_FILENAME, ErrorNumber::kPathFileAccess},  // links in a circle
    {ERROR_INVALID_PARAMETER, ErrorNumber::kBadFileName},
    {ERROR_INVALID_NAME, ErrorNumber::kBadFileName},
    {ERROR_BAD_PATHNAME, ErrorNumber::kBadFileName},
    {ERROR_FILENAME_EXCED_RANGE, ErrorNumber::kBadFileName},
    {ERROR_NO_UNICODE_TRANSLATION, ErrorNumber::kBadFileName},
    {ERROR_HANDLE_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_FILE_TOO_LARGE, ErrorNumber::kDiskFull},
    {kDiskQuotaExceeded, ErrorNumber::kDiskFull},
};

}  // namespace

ErrorNumber NumberOfSystemError(unsigned long code) {
  const auto* found = std::find_if(std::begin(kMappings), std::end(kMappings),
                                   [&](const Mapping& mapping) { return mapping.code == code; });
  return found == std::end(kMappings) ? ErrorNumber::kDeviceError : found->number;
}

void RaiseSystemError(unsigned long code, std::string_view about) {
  throw RuntimeError(NumberOfSystemError(code), about, static_cast<long>(code));
}

}  // namespace quarnel
