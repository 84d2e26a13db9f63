#include "platform/shortcut.h"

#include <cstdint>

#include "base/little_endian.h"
#include "base/text.h"
#include "base/unicode.h"

namespace quarnel {
namespace {

constexpr size_t kHeaderSize = 0x4C;
constexpr std::string_view kClassId("\x01\x14\x02\0\0\0\0\0\xC0\0\0\0\0\0\0\x46", 16);

// Flags of the header.
constexpr uint32_t kHasItemList = 1 << 0;
constexpr uint32_t kHasLinkInfo = 1 << 1;
constexpr uint32_t kIsUnicode = 1 << 7;
constexpr uint32_t kForceNoLinkInfo = 1 << 8;

// Flags of LinkInfo.
constexpr uint32_t kHasLocalPath = 1 << 0;
constexpr uint32_t kHasNetworkPath = 1 << 1;

std::string AnsiTextAt(std::string_view block, size_t offset) {
  if (offset >= block.size()) return {};
  const std::string_view rest = block.substr(offset);
  return std::string(CutAtNul(rest));
}

// A text that stands in an ANSI form and perhaps in a Unicode one; the offsets are those of the
// fields that tell where, and a field of 0 tells that there is none.
std::string TextOf(std::string_view block, size_t ansiField, size_t wideField, bool hasWide) {
  if (hasWide) {
    const uint32_t offset = U32At(block, wideField);
    if (offset != 0) return ToUtf8(WideTextAt(block, offset));
  }
  const uint32_t offset = U32At(block, ansiField);
  return offset == 0 ? std::string() : AnsiTextAt(block, offset);
}

std::string NetworkShare(std::string_view info) {
  const uint32_t offset = U32At(info, 20);
  if (offset == 0 || offset >= info.size()) return {};
  std::string_view block = info.substr(offset);
  block = block.substr(0, U32At(block, 0));
  std::string share = TextOf(block, 8, 20, U32At(block, 8) > 20);
  if (!share.empty() && !share.ends_with('\\')) share += '\\';
  return share;
}

}  // namespace

std::optional<std::string> ReadShortcutTarget(std::string_view link) {
  if (link.size() < kHeaderSize || U32At(link, 0) != kHeaderSize ||
      link.substr(4, kClassId.size()) != kClassId) {
    return std::nullopt;
  }
  const uint32_t flags = U32At(link, 20);
  if (!(flags & kHasLinkInfo) || (flags & kForceNoLinkInfo)) return std::nullopt;

  size_t start = kHeaderSize;
  if (flags & kHasItemList) start += 2 + size_t{U16At(link, start)};
  const uint32_t size = U32At(link, start);
  if (size == 0 || size > link.size() - start) return std::nullopt;
  const std::string_view info = link.substr(start, size);

  const bool hasWide = U32At(info, 4) >= 0x24;
  const uint32_t infoFlags = U32At(info, 8);
  std::string base;
  if (infoFlags & kHasLocalPath) {
    base = TextOf(info, 16, 28, hasWide);
  } else if (infoFlags & kHasNetworkPath) {
    base = NetworkShare(info);
  }
  if (base.empty()) return std::nullopt;
  return base + TextOf(info, 24, 32, hasWide);
}

std::string MakeShortcut(std::string_view target) {
  const std::u16string wide = ToUtf16(target);
  std::string ansi;
  for (const char16_t unit : wide) ansi += unit < 0x80 ? static_cast<char>(unit) : '?';
  ansi += '\0';

  std::string volume;
  for (const uint32_t word : {0x11U, 3U, 0U, 0x10U})
    PutU32(volume, word);  // a fixed disk, no label
  volume += '\0';

  constexpr size_t kInfoHeader = 0x24;
  const auto ansiAt = static_cast<uint32_t>(kInfoHeader + volume.size());
  const auto suffixAt = static_cast<uint32_t>(ansiAt + ansi.size());
  const uint32_t wideAt = suffixAt + 1;
  const auto wideSuffixAt = static_cast<uint32_t>(wideAt + 2 * wide.size() + 2);

  std::string link;
  PutU32(link, kHeaderSize);
  link += kClassId;
  PutU32(link, kHasLinkInfo | kIsUnicode);
  PutU32(link, 0x20);  // an ordinary file
  link.resize(60);     // times, size and icon stay unknown
  PutU32(link, 1);     // a normal window
  link.resize(kHeaderSize);
  for (const uint32_t word :
       {wideSuffixAt + 2, static_cast<uint32_t>(kInfoHeader), kHasLocalPath,
        static_cast<uint32_t>(kInfoHeader), ansiAt, uint32_t{0}, suffixAt, wideAt, wideSuffixAt}) {
    PutU32(link, word);
  }
  link += volume + ansi;
  link += '\0';
  PutWide(link, wide);
  PutU32(link, 0);  // the path's end and the empty suffix
  PutU32(link, 0);  // no extra data blocks
  return link;
}

}  // namespace quarnel
