#include "platform/posix/machine/pe_reader.h"

#include <algorithm>

#include "base/little_endian.h"

namespace quarnel {
namespace {

constexpr uint32_t kVersionType = 16;   // RT_VERSION
constexpr uint32_t kVersionId = 1;      // VS_VERSION_INFO
constexpr size_t kMaxResource = 65535;  // its own length field has 16 bits
constexpr uint32_t kFixedSignature = 0xFEEF04BD;
constexpr uint32_t kIsDirectory = 0x80000000;  // also: is a name

// Where a program's parts stand in memory and in its file.
struct Image {
  std::string sections;  // the section table
  uint32_t resources = 0;

  // The file offset of an address of the loaded image; nothing when no section's data covers it.
  std::optional<uint64_t> OffsetOf(uint64_t address) const {
    for (size_t at = 0; at + 40 <= sections.size(); at += 40) {
      const uint32_t start = U32At(sections, at + 12);
      const uint32_t size = U32At(sections, at + 16);
      if (address >= start && address - start < size) {
        return U32At(sections, at + 20) + (address - start);
      }
    }
    return std::nullopt;
  }
};

std::optional<Image> ReadImage(const ReadBytes& read) {
  const std::string dos = read(0, 64);
  if (dos.size() < 64 || !dos.starts_with("MZ")) return std::nullopt;
  const uint64_t start = U32At(dos, 60);
  const std::string coff = read(start, 24);
  if (coff.size() < 24 || !coff.starts_with(std::string_view("PE\0\0", 4))) return std::nullopt;

  const size_t optionalSize = U16At(coff, 20);
  const std::string optional = read(start + 24, optionalSize);
  const uint16_t magic = U16At(optional, 0);
  if (magic != 0x10B && magic != 0x20B) return std::nullopt;
  const size_t directories = magic == 0x10B ? 96 : 112;
  if (U32At(optional, directories - 4) < 3) return std::nullopt;

  Image image;
  image.resources = U32At(optional, directories + 16);
  if (image.resources == 0) return std::nullopt;
  image.sections = read(start + 24 + optionalSize, size_t{40} * U16At(coff, 6));
  return image;
}

// Looks an entry up in the resource directory at a file offset: the one with this identifier, else
// the first one when any will do. The result is its offset field, with the directory bit.
std::optional<uint32_t> FindEntry(const ReadBytes& read, uint64_t directory, uint32_t identifier,
                                  bool anyWillDo) {
  const std::string header = read(directory, 16);
  if (header.size() < 16) return std::nullopt;
  const size_t count = size_t{U16At(header, 12)} + U16At(header, 14);
  const std::string entries = read(directory + 16, count * 8);
  for (size_t at = 0; at + 8 <= entries.size(); at += 8) {
    if (U32At(entries, at) == identifier) return U32At(entries, at + 4);
  }
  if (anyWillDo && entries.size() >= 8) return U32At(entries, 4);
  return std::nullopt;
}

}  // namespace

std::optional<std::string> FindVersionResource(const ReadBytes& read) {
  const auto image = ReadImage(read);
  if (!image) return std::nullopt;
  const auto root = image->OffsetOf(image->resources);
  if (!root) return std::nullopt;

  const auto type = FindEntry(read, *root, kVersionType, false);
  if (!type || !(*type & kIsDirectory)) return std::nullopt;
  const auto name = FindEntry(read, *root + (*type & ~kIsDirectory), kVersionId, true);
  if (!name || !(*name & kIsDirectory)) return std::nullopt;
  const auto language = FindEntry(read, *root + (*name & ~kIsDirectory), 0, true);
  if (!language || (*language & kIsDirectory)) return std::nullopt;

  const std::string entry = read(*root + *language, 16);
  if (entry.size() < 16) return std::nullopt;
  const auto data = image->OffsetOf(U32At(entry, 0));
  if (!data) return std::nullopt;
  return read(*data, std::min<size_t>(U32At(entry, 4), kMaxResource));
}

std::optional<FixedVersionRecord> FixedFromVersionResource(std::string_view resource) {
  // Three words, the key "VS_VERSION_INFO" with its NUL, and padding to a multiple of 4 come first.
  constexpr size_t kStart = 40;
  constexpr size_t kSize = 52;
  if (resource.size() < kStart + kSize || U16At(resource, 2) < kSize) return std::nullopt;
  if (WideTextAt(resource, 6) != u"VS_VERSION_INFO") return std::nullopt;
  const auto word = [&](size_t index) { return U32At(resource, kStart + 4 * index); };
  if (word(0) != kFixedSignature) return std::nullopt;
  return FixedVersionRecord{word(0), word(1), word(2), word(3), word(4), word(5),
                            word(6), word(7), word(8), word(9), word(10)};
}

std::optional<FixedVersionRecord> ReadFixedVersion(std::string_view file) {
  const auto read = [file](uint64_t offset, size_t size) {
    if (offset >= file.size()) return std::string();
    return std::string(file.substr(static_cast<size_t>(offset), size));
  };
  const auto resource = FindVersionResource(read);
  if (!resource) return std::nullopt;
  return FixedFromVersionResource(*resource);
}

}  // namespace quarnel
