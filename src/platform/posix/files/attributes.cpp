#include "platform/posix/files/attributes.h"

#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

#include "base/hex.h"
#include "platform/files.h"
#include "platform/posix/system_error.h"

namespace quarnel {
namespace {

constexpr const char* kName = "user.quarnel.attributes";
constexpr uint32_t kStored = file_attribute::kHidden | file_attribute::kSystem |
                             file_attribute::kArchive | file_attribute::kTemporary;

}  // namespace

uint32_t StoredAttributes(const std::string& hostPath) {
  std::array<char, 16> buffer{};
  const ssize_t length = getxattr(hostPath.c_str(), kName, buffer.data(), buffer.size());
  if (length <= 2) return 0;
  const std::string_view text(buffer.data(), static_cast<size_t>(length));
  if (!text.starts_with("0x")) return 0;
  uint32_t attributes = 0;
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data() + 2, end, attributes, 16);
  return error == std::errc() && last == end ? attributes & kStored : 0;
}

void StoreAttributes(const std::string& hostPath, uint32_t attributes) {
  attributes &= kStored;
  // A file system without extended attributes refuses, which is no failure of the caller's.
  const auto raise = [&hostPath] {
    if (errno != ENOTSUP && errno != EPERM) RaiseErrno(errno, hostPath);
  };
  if (attributes == 0) {
    if (lremovexattr(hostPath.c_str(), kName) != 0 && errno != ENODATA) raise();
    return;
  }
  const std::string text = "0x" + HexNumber(attributes);
  if (lsetxattr(hostPath.c_str(), kName, text.data(), text.size(), 0) != 0) raise();
}

}  // namespace quarnel
