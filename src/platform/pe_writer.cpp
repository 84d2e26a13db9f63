#include "platform/pe_writer.h"

#include "base/little_endian.h"
#include "base/unicode.h"

namespace quarnel {
namespace {

constexpr uint32_t kFileAlignment = 0x200;
constexpr uint32_t kCodeAddress = 0x1000;
constexpr uint32_t kResourceAddress = 0x2000;

void AlignTo(std::string& bytes, size_t alignment) {
  bytes.resize((bytes.size() + alignment - 1) / alignment * alignment);
}

// One node of the version resource: length, value length, 1 for text, key, value, children.
// Each part begins at a multiple of 4; the length does not count what pads the node itself.
std::string Node(std::u16string_view key, std::string_view value, bool isText,
                 const std::string& children = {}) {
  std::string node;
  PutU16(node, 0);
  PutU16(node, static_cast<uint32_t>(isText ? value.size() / 2 : value.size()));
  PutU16(node, isText ? 1 : 0);
  PutWide(node, key);
  PutU16(node, 0);
  AlignTo(node, 4);
  node += value;
  if (!children.empty()) AlignTo(node, 4);
  node += children;
  SetU16(node, 0, static_cast<uint32_t>(node.size()));
  return node;
}

std::string StringNode(std::u16string_view key, std::string_view text) {
  std::string value;
  PutWide(value, ToUtf16(text));
  PutU16(value, 0);
  std::string node = Node(key, value, true);
  AlignTo(node, 4);
  return node;
}

std::string VersionResource(const ProgramVersion& version) {
  const FixedVersionRecord& record = version.fixed;
  std::string fixed;
  for (const uint32_t word :
       {record.signature, record.structureVersion, record.fileVersionHigh, record.fileVersionLow,
        record.productVersionHigh, record.productVersionLow, record.flagsMask, record.flags,
        record.operatingSystem, record.type, record.subtype, uint32_t{0}, uint32_t{0}}) {
    PutU32(fixed, word);
  }
  // US English in Unicode, as the key and as the translation say.
  const std::string strings = StringNode(u"CompanyName", version.companyName) +
                              StringNode(u"FileDescription", version.fileDescription);
  const std::string table = Node(u"040904B0", {}, true, strings);
  std::string translation;
  PutU16(translation, 0x409);
  PutU16(translation, 0x4B0);
  return Node(u"VS_VERSION_INFO", fixed, false,
              Node(u"StringFileInfo", {}, true, table) +
                  Node(u"VarFileInfo", {}, true, Node(u"Translation", translation, false)));
}

// A directory with one entry.
void PutDirectory(std::string& bytes, uint32_t identifier, uint32_t offset) {
  PutU32(bytes, 0);
  PutU32(bytes, 0);
  PutU32(bytes, 0);
  PutU16(bytes, 0);
  PutU16(bytes, 1);
  PutU32(bytes, identifier);
  PutU32(bytes, offset);
}

std::string ResourceSection(const std::string& resource) {
  constexpr uint32_t kSubdirectory = 0x80000000;
  std::string bytes;
  PutDirectory(bytes, 16, kSubdirectory | 24);
  PutDirectory(bytes, 1, kSubdirectory | 48);
  PutDirectory(bytes, 0x409, 72);
  PutU32(bytes, kResourceAddress + 88);
  PutU32(bytes, static_cast<uint32_t>(resource.size()));
  PutU32(bytes, 0);
  PutU32(bytes, 0);
  return bytes + resource;
}

struct Section {
  std::string_view name;  // 8 characters
  uint32_t address;
  uint32_t size;
  uint32_t fileOffset;
  uint32_t flags;
};

uint32_t Aligned(uint32_t size, uint32_t alignment) {
  return (size + alignment - 1) / alignment * alignment;
}

void PutSection(std::string& bytes, const Section& section) {
  bytes += section.name;
  PutU32(bytes, section.size);
  PutU32(bytes, section.address);
  PutU32(bytes, Aligned(section.size, kFileAlignment));
  PutU32(bytes, section.fileOffset);
  PutU32(bytes, 0);
  PutU32(bytes, 0);
  PutU32(bytes, 0);
  PutU32(bytes, section.flags);
}

void PutOptionalHeader(std::string& bytes, bool wide, uint32_t codeSize, uint32_t resourceSize) {
  const auto putSize = [&](uint32_t value) {
    PutU32(bytes, value);
    if (wide) PutU32(bytes, 0);
  };
  PutU16(bytes, wide ? 0x20B : 0x10B);
  PutU16(bytes, 0);
  PutU32(bytes, Aligned(codeSize, kFileAlignment));
  PutU32(bytes, Aligned(resourceSize, kFileAlignment));
  PutU32(bytes, 0);
  PutU32(bytes, kCodeAddress);  // entry point
  PutU32(bytes, kCodeAddress);
  if (!wide) PutU32(bytes, kResourceAddress);
  putSize(0x400000);  // preferred base
  PutU32(bytes, 0x1000);
  PutU32(bytes, kFileAlignment);
  for (const uint32_t half : {4U, 0U, 0U, 0U, 4U, 0U})
    PutU16(bytes, half);  // system and image versions
  PutU32(bytes, 0);
  PutU32(bytes, kResourceAddress + Aligned(resourceSize, 0x1000));  // size in memory
  PutU32(bytes, kFileAlignment);                                    // size of all headers
  PutU32(bytes, 0);
  PutU16(bytes, 3);      // a console program
  PutU16(bytes, 0x100);  // data is not executable
  for (const uint32_t size : {0x100000U, 0x1000U, 0x100000U, 0x1000U})
    putSize(size);  // stack, heap
  PutU32(bytes, 0);
  PutU32(bytes, 16);
  for (uint32_t directory = 0; directory < 16; ++directory) {
    PutU32(bytes, directory == 2 ? kResourceAddress : 0);
    PutU32(bytes, directory == 2 ? resourceSize : 0);
  }
}

}  // namespace

FixedVersionRecord ApplicationRecord(uint16_t major, uint16_t minor, uint16_t revision,
                                     uint16_t build) {
  FixedVersionRecord record;
  record.signature = 0xFEEF04BD;
  record.structureVersion = 0x10000;
  record.fileVersionHigh = record.productVersionHigh = uint32_t{major} << 16 | minor;
  record.fileVersionLow = record.productVersionLow = uint32_t{revision} << 16 | build;
  record.flagsMask = 0x3F;
  record.operatingSystem = 0x40004;
  record.type = 1;
  return record;
}

std::string MakeProgram(const ProgramVersion& version) {
  const std::string code = "\x31\xC0\xC3";  // xor eax, eax; ret
  const std::string resources = ResourceSection(VersionResource(version));
  const auto codeSize = static_cast<uint32_t>(code.size());
  const auto resourceSize = static_cast<uint32_t>(resources.size());

  std::string file = "MZ";
  file.resize(60);
  PutU32(file, 64);
  file += std::string_view("PE\0\0", 4);
  PutU16(file, version.wide ? 0x8664 : 0x14C);
  PutU16(file, 2);  // sections
  PutU32(file, 0);
  PutU32(file, 0);
  PutU32(file, 0);
  PutU16(file, version.wide ? 240 : 224);
  PutU16(file, version.wide ? 0x23 : 0x103);  // executable, without relocations
  PutOptionalHeader(file, version.wide, codeSize, resourceSize);
  PutSection(file, {std::string_view(".text\0\0\0", 8), kCodeAddress, codeSize, kFileAlignment,
                    0x60000020});
  PutSection(file, {std::string_view(".rsrc\0\0\0", 8), kResourceAddress, resourceSize,
                    2 * kFileAlignment, 0x40000040});
  for (const std::string& part : {code, resources}) {
    AlignTo(file, kFileAlignment);
    file += part;
  }
  AlignTo(file, kFileAlignment);
  return file;
}

}  // namespace quarnel
