#include <string>

#include "base/runtime_error.h"
#include "platform/windows/backends.h"
#include "platform/windows/files/system_path.h"
#include "platform/windows/win32.h"

namespace quarnel {
namespace {

constexpr DWORD kRecordSignature = 0xFEEF04BD;
// A record's own length field has 16 bits; the system adds room for its texts in ANSI.
constexpr DWORD kLargestRecord = 1 << 20;

class WindowsVersionRecords : public VersionRecords {
 public:
  std::optional<FixedVersionRecord> Fixed(std::string_view path) override {
    std::wstring place;
    if (!IgnoringErrors([&] { place = PlainPath(path); })) return std::nullopt;
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(place.c_str(), &unused);
    if (size == 0 || size > kLargestRecord) return std::nullopt;
    std::string block(size, '\0');
    void* found = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoW(place.c_str(), 0, size, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &found, &length) ||
        length < sizeof(VS_FIXEDFILEINFO)) {
      return std::nullopt;
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    if (fixed.dwSignature != kRecordSignature) return std::nullopt;
    return FixedVersionRecord{
        fixed.dwSignature,     fixed.dwStrucVersion,     fixed.dwFileVersionMS,
        fixed.dwFileVersionLS, fixed.dwProductVersionMS, fixed.dwProductVersionLS,
        fixed.dwFileFlagsMask, fixed.dwFileFlags,        fixed.dwFileOS,
        fixed.dwFileType,      fixed.dwFileSubtype};
  }
};

}  // namespace

std::unique_ptr<VersionRecords> MakeVersionRecords() {
  return std::make_unique<WindowsVersionRecords>();
}

}  // namespace quarnel
