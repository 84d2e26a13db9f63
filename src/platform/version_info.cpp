#include "platform/version_info.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/little_endian.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "base/unicode.h"

namespace quarnel {
namespace {

struct NamedNumber {
  uint32_t number;
  std::string_view name;
};

constexpr NamedNumber kFlags[] = {{0x01, " Debug"},   {0x02, " PreRel"}, {0x04, " Patched"},
                                  {0x08, " Private"}, {0x10, " Info"},   {0x20, " Special"}};
constexpr NamedNumber kSystems[] = {{0x10001, "DOS-Win16"},
                                    {0x10004, "DOS-Win32"},
                                    {0x20002, "OS/2-16 PM-16"},
                                    {0x30003, "OS/2-16 PM-32"},
                                    {0x40004, "NT-Win32"}};
constexpr uint32_t kDriver = 3;
constexpr uint32_t kFont = 4;
constexpr NamedNumber kTypes[] = {{1, "App"},      {2, "DLL"}, {kDriver, "Driver"},
                                  {kFont, "Font"}, {5, "VxD"}, {7, "Lib"}};
constexpr NamedNumber kDrivers[] = {{1, "Printer drv"}, {2, "Keyboard drv"},    {3, "Language drv"},
                                    {4, "Display drv"}, {5, "Mouse drv"},       {6, "Network drv"},
                                    {7, "System drv"},  {8, "Installable drv"}, {9, "Sound drv"},
                                    {10, "Comm drv"}};
constexpr NamedNumber kFonts[] = {{1, "Raster Font"}, {2, "Vector Font"}, {3, "TrueType Font"}};

template <size_t Size>
std::string NameOf(const NamedNumber (&table)[Size], uint32_t number) {
  for (const NamedNumber& entry : table) {
    if (entry.number == number) return std::string(entry.name);
  }
  return "Unknown";
}

std::string VersionText(uint32_t high, uint32_t low) {
  const auto part = [](uint32_t number) { return std::to_string(number & 0xFFFF); };
  return part(high >> 16) + "." + part(high) + "." + part(low >> 16) + "." + part(low);
}

// How far behind the beginning of the block a name may stand: a block's length field has 16 bits.
constexpr size_t kMaxBlock = 65536;
constexpr size_t kPiece = size_t{256} * 1024;

// Finds the text behind a name in bytes that come piece by piece. Each byte is looked at a fixed
// number of times, whatever the bytes hold, and little more than a piece is kept.
class StringFileInfoSearch {
 public:
  explicit StringFileInfoSearch(std::string_view name)
      : block_(NullPad("StringFileInfo") + std::string(2, '\0')),
        name_(NullPad(name) + std::string(2, '\0')) {}

  // True when the search is over.
  bool Feed(std::string_view piece, bool last) {
    bytes_ += piece;
    while (true) {
      const size_t name = bytes_.find(name_, position_);
      if (name == std::string::npos) break;
      if (!InBlock(name)) {
        position_ = name + 1;
        continue;
      }
      if (!last && bytes_.size() - name < kMaxBlock) {
        position_ = name;
        return false;
      }
      text_ = TextBehind(name);
      return true;
    }
    Forget();
    return last;
  }

  const std::string& Text() const { return text_; }

 private:
  // A node's length, value length and type stand before its name.
  static constexpr size_t kNodeHeader = 6;

  // Whether a block begins before this position and may reach it.
  bool InBlock(size_t name) {
    while (nextBlock_ < name) {
      // No further than needed: looking at the rest again for each name would take for ever.
      const auto before = std::string_view(bytes_).substr(0, name + block_.size() - 1);
      const size_t found = before.find(block_, nextBlock_);
      if (found == std::string_view::npos) {
        nextBlock_ = name;
        break;
      }
      blockBegin_ = forgotten_ + found;
      hasBlock_ = true;
      nextBlock_ = found + 1;
    }
    return hasBlock_ && forgotten_ + name - blockBegin_ < kMaxBlock;
  }

  std::string TextBehind(size_t name) const {
    const std::string_view rest = std::string_view(bytes_).substr(name + name_.size(), kMaxBlock);
    if (name >= kNodeHeader) {
      // Behind a node that ends with its name there is no value, but the next node.
      const size_t length = U16At(bytes_, name - kNodeHeader);
      const size_t bare = kNodeHeader + name_.size();
      if (length >= bare && length < bare + 4 && U16At(bytes_, name - 4) == 0) return {};
    }
    // At most one word of padding stands before the value.
    return ToUtf8(WideTextAt(rest, U16At(rest, 0) == 0 ? 2 : 0));
  }

  // Drops all but what the beginning of a name or block may still be.
  void Forget() {
    const size_t keep = std::max(name_.size(), block_.size()) + kNodeHeader;
    if (bytes_.size() <= keep) return;
    const size_t end = bytes_.size() - keep;
    InBlock(end);
    const auto moved = [end](size_t position) { return position > end ? position - end : 0; };
    position_ = moved(std::max(position_, bytes_.size() - name_.size() + 1));
    nextBlock_ = moved(nextBlock_);
    bytes_.erase(0, end);
    forgotten_ += end;
  }

  const std::string block_, name_;
  std::string bytes_;       // what is not forgotten yet
  uint64_t forgotten_ = 0;  // the number of bytes that came before
  size_t position_ = 0;     // where the next name is looked for
  size_t nextBlock_ = 0;    // where the next beginning of a block is looked for
  bool hasBlock_ = false;
  uint64_t blockBegin_ = 0;  // of the last block seen, from the first byte of all
  std::string text_;
};

std::string TextOfFile(Files& files, std::string_view path, std::string_view name,
                       const std::function<bool()>& goesOn) {
  try {
    const auto file = files.Open(path, OpenMode::kRead);
    StringFileInfoSearch search(name);
    std::string piece(kPiece, '\0');
    while (true) {
      const size_t size = file->Read(piece);
      if (search.Feed(std::string_view(piece).substr(0, size), size == 0)) break;
      if (size == piece.size() && goesOn && !goesOn()) return {};
    }
    return search.Text();
  } catch (const RuntimeError&) {
    return {};
  }
}

}  // namespace

FileVersionInfo DescribeVersion(const FixedVersionRecord& record) {
  FileVersionInfo info;
  info.structureVersion = std::to_string(record.structureVersion >> 16) + "." +
                          std::to_string(record.structureVersion & 0xFFFF);
  info.fileVersion = VersionText(record.fileVersionHigh, record.fileVersionLow);
  info.productVersion = VersionText(record.productVersionHigh, record.productVersionLow);
  for (const NamedNumber& flag : kFlags) {
    if (record.flags & flag.number) info.flags += flag.name;
  }
  info.targetSystem = NameOf(kSystems, record.operatingSystem);
  info.fileType = NameOf(kTypes, record.type);
  if (record.type == kDriver) info.fileSubtype = NameOf(kDrivers, record.subtype);
  if (record.type == kFont) info.fileSubtype = NameOf(kFonts, record.subtype);
  return info;
}

std::optional<FileVersionInfo> GetFileVersionInfo(VersionRecords& records, std::string_view path) {
  const auto record = records.Fixed(path);
  if (!record) return std::nullopt;
  return DescribeVersion(*record);
}

std::string GetCompanyName(Files& files, std::string_view path,
                           const std::function<bool()>& goesOn) {
  return TextOfFile(files, path, "CompanyName", goesOn);
}

std::string GetFileDescription(Files& files, std::string_view path,
                               const std::function<bool()>& goesOn) {
  return TextOfFile(files, path, "FileDescription", goesOn);
}

std::string StringFileInfoText(std::string_view bytes, std::string_view name) {
  StringFileInfoSearch search(name);
  search.Feed(bytes, true);
  return search.Text();
}

std::string NullPad(std::string_view text) {
  std::string padded;
  for (const char c : text) {
    padded += c;
    padded += '\0';
  }
  return padded;
}

std::string ReplaceIt(std::string_view text, std::string_view find, std::string_view replacement) {
  return Replace(text, find, replacement);
}

}  // namespace quarnel
