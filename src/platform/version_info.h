#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace quarnel {

// The fixed part of a file's version record (VS_FIXEDFILEINFO) in readable form.
struct FileVersionInfo {
  std::string structureVersion;  // "1.0"
  std::string fileVersion;       // "3.0.0.4"
  std::string productVersion;
  std::string flags;         // " Debug", " PreRel", " Patched", " Private", " Info", " Special"
  std::string targetSystem;  // "DOS-Win16", "DOS-Win32", "OS/2-16 PM-16", "OS/2-16 PM-32",
                             // "NT-Win32", "Unknown"
  std::string fileType;      // "App", "DLL", "Driver", "Font", "VxD", "Lib", "Unknown"
  std::string fileSubtype;   // the kind of driver or font; empty for other types
};

// The 13 words of a fixed version record.
struct FixedVersionRecord {
  uint32_t signature = 0;
  uint32_t structureVersion = 0;
  uint32_t fileVersionHigh = 0, fileVersionLow = 0;
  uint32_t productVersionHigh = 0, productVersionLow = 0;
  uint32_t flagsMask = 0, flags = 0;
  uint32_t operatingSystem = 0;
  uint32_t type = 0, subtype = 0;
};

// Where a file's version record comes from.
class VersionRecords {
 public:
  virtual ~VersionRecords() = default;
  // The fixed record of a file; nothing when it has none or cannot be read.
  virtual std::optional<FixedVersionRecord> Fixed(std::string_view path) = 0;
};

FileVersionInfo DescribeVersion(const FixedVersionRecord& record);
std::optional<FileVersionInfo> GetFileVersionInfo(VersionRecords& records, std::string_view path);

// Text that the raw bytes of a file hold behind a name of its block "StringFileInfo", whether or
// not the version interface can read it; empty when not found. `goesOn` is called between pieces of
// a large file; when it says no, nothing is found.
std::string GetCompanyName(Files& files, std::string_view path,
                           const std::function<bool()>& goesOn);
std::string GetFileDescription(Files& files, std::string_view path,
                               const std::function<bool()>& goesOn);

// The same search in bytes that are at hand: `name` is "CompanyName" or "FileDescription".
std::string StringFileInfoText(std::string_view bytes, std::string_view name);

// The text with a NUL behind each character, as a wide string stands in raw bytes.
std::string NullPad(std::string_view text);

// Every occurrence of `find` replaced.
std::string ReplaceIt(std::string_view text, std::string_view find, std::string_view replacement);

}  // namespace quarnel
