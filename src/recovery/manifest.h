#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/registry.h"
#include "signatures/sha256.h"

// The manifest of a restore point: a record of every item that the point can bring back, exact to
// the byte, beside the other files of the point. It tells what was damaged since, and a strict
// restore follows it alone.
//
// Format, version 1. Text in lines that end with CR LF. A line is the SHA-256 of the rest of the
// line (64 hexadecimal digits), a blank, and fields with a tab between them. In a field "%" and
// every byte below 32 stand as "%" and two hexadecimal digits. What is hashed is the stem, a tab,
// and the fields as they stand, so that no line of another restore point is taken for this one's.
//
//   quarnel-manifest  1  STEM  ITEMS            first; ITEMS counts the lines up to the last
//   key    HIVE PATH                            a key, every key before those below it
//   value  HIVE PATH NAME TYPE BYTES            a value: type in decimal, bytes in hexadecimal
//   text   HIVE PATH NAME DIGEST                a line of the point's registry text, by its SHA-256
//   file   KIND PATH SIZE DIGEST ATTRIBUTES CREATED ACCESSED MODIFIED ENTRY OFFSET
//   end    DIGEST                               last; of all the bytes before this line
//
// HIVE is the handle's eight hexadecimal digits. KIND names the archive, "files" or "cookies";
// ENTRY and OFFSET are where it holds the file's bytes as they are. ATTRIBUTES are the system's
// bits in hexadecimal. Times are counts of 100 nanoseconds since the start of 1970, in UTC.
namespace quarnel {

struct KeyItem {
  uint32_t hive = 0;
  std::string path;

  bool operator==(const KeyItem&) const = default;
};

struct ValueItem {
  uint32_t hive = 0;
  std::string path;
  std::string name;
  RawValue value;
};

struct TextItem {
  uint32_t hive = 0;
  std::string path;
  std::string name;
  Sha256Digest digest{};  // of the line without its end
};

enum class ArchiveKind { kFiles, kCookies };

struct FileItem {
  ArchiveKind kind = ArchiveKind::kFiles;
  std::string path;  // in full
  uint64_t size = 0;
  Sha256Digest digest{};
  uint32_t attributes = 0;
  FileTimes times;
  std::string entry;
  uint64_t offset = 0;
};

struct Manifest {
  std::string stem;
  std::vector<KeyItem> keys;
  std::vector<ValueItem> values;
  std::vector<TextItem> texts;
  std::vector<FileItem> files;
};

std::string ManifestText(const Manifest& manifest);

// What could be read of a manifest.
struct ManifestReading {
  static constexpr size_t kMostNamed = 100;

  // The intact items.
  Manifest manifest;
  // What is wrong with the rest, as far as it can be told, and how many faults there are: the first
  // of them are named. A text of any size takes little more room than its intact items.
  std::vector<std::string> damage;
  size_t faults = 0;

  void Fault(std::string what);
};

// Reads the text of the manifest of restore point `stem`.
ManifestReading ReadManifest(std::string_view text, std::string_view stem);

// A registry item as a person reads it.
std::string ItemText(uint32_t hive, std::string_view path, std::string_view valueName);
std::string ItemText(uint32_t hive, std::string_view path);

}  // namespace quarnel
