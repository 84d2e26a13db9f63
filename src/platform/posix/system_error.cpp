#include "platform/posix/system_error.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>

namespace quarnel {
namespace {

struct Mapping {
  int code;
  ErrorNumber number;
};

constexpr Mapping kMappings[] = {
    {ENOENT, ErrorNumber::kFileNotFound},      {ENOTDIR, ErrorNumber::kPathNotFound},
    {EACCES, ErrorNumber::kPermissionDenied},  {EPERM, ErrorNumber::kPermissionDenied},
    {EROFS, ErrorNumber::kPermissionDenied},   {ETXTBSY, ErrorNumber::kPermissionDenied},
    {EBUSY, ErrorNumber::kPermissionDenied},   {EEXIST, ErrorNumber::kFileExists},
    {EISDIR, ErrorNumber::kPathFileAccess},    {ENOTEMPTY, ErrorNumber::kPathFileAccess},
    {EXDEV, ErrorNumber::kPathFileAccess},     {ELOOP, ErrorNumber::kPathFileAccess},
    {ENAMETOOLONG, ErrorNumber::kBadFileName}, {EINVAL, ErrorNumber::kBadFileName},
    {EILSEQ, ErrorNumber::kBadFileName},       {ENOSPC, ErrorNumber::kDiskFull},
    {EDQUOT, ErrorNumber::kDiskFull},          {EFBIG, ErrorNumber::kDiskFull},
};

}  // namespace

ErrorNumber NumberOfErrno(int code) {
  const auto* found = std::find_if(std::begin(kMappings), std::end(kMappings),
                                   [&](const Mapping& mapping) { return mapping.code == code; });
  return found == std::end(kMappings) ? ErrorNumber::kDeviceError : found->number;
}

void RaiseErrno(int code, std::string_view about) {
  throw RuntimeError(NumberOfErrno(code), about, code);
}

}  // namespace quarnel
