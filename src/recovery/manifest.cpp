#include "recovery/manifest.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "base/hex.h"
#include "base/text.h"
#include "core/lines.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kName = "quarnel-manifest";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kLastLine = "end";
constexpr size_t kDigestDigits = 64;

constexpr std::array<std::string_view, 2> kKindNames = {"files", "cookies"};

std::string Escaped(std::string_view field) {
  std::string text;
  for (const char c : field) {
    if (static_cast<unsigned char>(c) < 0x20 || c == '%') {
      text += '%' + HexText(std::string_view(&c, 1));
    } else {
      text += c;
    }
  }
  return text;
}

std::string Unescaped(std::string_view field) {
  std::string text;
  for (size_t i = 0; i < field.size(); ++i) {
    const auto byte = field[i] == '%' ? BytesFromHex(field.substr(i + 1, 2)) : std::nullopt;
    if (byte && byte->size() == 1) {
      text += *byte;
      i += 2;
    } else {
      text += field[i];
    }
  }
  return text;
}

std::string HiveText(uint32_t hive) {
  const std::array<char, 4> bytes = {static_cast<char>(hive >> 24), static_cast<char>(hive >> 16),
                                     static_cast<char>(hive >> 8), static_cast<char>(hive)};
  return HexText(std::string_view(bytes.data(), bytes.size()));
}

std::string NumberText(FileTime time) { return std::to_string(time.time_since_epoch().count()); }

class Writer {
 public:
  explicit Writer(std::string_view stem) : stem_(stem) {}

  void Line(const std::vector<std::string>& fields) {
    std::vector<std::string> escaped;
    escaped.reserve(fields.size());
    for (const std::string& field : fields) escaped.push_back(Escaped(field));
    const std::string rest = Join(escaped, "\t");
    text_ += HexText(LineDigest(stem_, rest)) + " " + rest + "\r\n";
  }
  std::string& Text() { return text_; }

  static Sha256Digest LineDigest(std::string_view stem, std::string_view rest) {
    return Sha256Of(Join({std::string(stem), std::string(rest)}, "\t"));
  }

 private:
  std::string stem_;
  std::string text_;
};

// Fields one after the other; the first that is wrong makes all wrong.
class Fields {
 public:
  explicit Fields(const std::vector<std::string>& fields) : fields_(fields) {}

  std::string Text() {
    if (next_ >= fields_.size()) {
      good_ = false;
      return {};
    }
    return Unescaped(fields_[next_++]);
  }
  template <typename Number>
  Number Count(int base = 10) {
    const std::string text = Text();
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    good_ = good_ && error == std::errc() && end == text.data() + text.size();
    return number;
  }
  uint32_t Hexadecimal() { return Count<uint32_t>(16); }
  FileTime Time() { return FileTime(FileTime::duration(Count<int64_t>())); }
  std::string Bytes() {
    auto bytes = BytesFromHex(Text());
    good_ = good_ && bytes;
    return bytes ? *std::move(bytes) : std::string();
  }
  Sha256Digest Digest() {
    const std::string bytes = Bytes();
    Sha256Digest digest{};
    good_ = good_ && bytes.size() == digest.size();
    if (good_) std::copy(bytes.begin(), bytes.end(), digest.begin());
    return digest;
  }
  ArchiveKind Kind() {
    const auto* const name = std::find(kKindNames.begin(), kKindNames.end(), Text());
    good_ = good_ && name != kKindNames.end();
    return static_cast<ArchiveKind>(name - kKindNames.begin());
  }
  // Whether all were there and right, and no more.
  bool Good() const { return good_ && next_ == fields_.size(); }

 private:
  const std::vector<std::string>& fields_;
  size_t next_ = 0;
  bool good_ = true;
};

// Takes one item; false for a line that is none.
bool TakeItem(const std::vector<std::string>& all, Manifest& manifest) {
  Fields fields(all);
  const std::string kind = fields.Text();
  // The braces see to it that the fields are taken in their order.
  if (kind == "key") {
    KeyItem item{fields.Hexadecimal(), fields.Text()};
    if (fields.Good()) manifest.keys.push_back(std::move(item));
  } else if (kind == "value") {
    ValueItem item{fields.Hexadecimal(),
                   fields.Text(),
                   fields.Text(),
                   {static_cast<ValueType>(fields.Count<uint32_t>()), fields.Bytes()}};
    if (fields.Good()) manifest.values.push_back(std::move(item));
  } else if (kind == "text") {
    TextItem item{fields.Hexadecimal(), fields.Text(), fields.Text(), fields.Digest()};
    if (fields.Good()) manifest.texts.push_back(std::move(item));
  } else if (kind == "file") {
    FileItem item{
        fields.Kind(),   fields.Text(),           fields.Count<uint64_t>(),
        fields.Digest(), fields.Hexadecimal(),    {fields.Time(), fields.Time(), fields.Time()},
        fields.Text(),   fields.Count<uint64_t>()};
    if (fields.Good()) manifest.files.push_back(std::move(item));
  } else {
    return false;
  }
  return fields.Good();
}

// What a damaged line was about, as far as it still tells. No more of it is looked at than any item
// needs to be named.
std::string About(std::string_view rest) {
  constexpr size_t kLongestName = 4096;
  const std::vector<std::string> fields = Split(rest.substr(0, kLongestName), "\t");
  const auto field = [&](size_t index) {
    return index < fields.size() ? Unescaped(fields[index]) : std::string();
  };
  const std::string kind = field(0);
  if (kind == "file") return field(2);
  if (kind == "key" || kind == "value" || kind == "text") {
    uint32_t hive = 0;
    const std::string digits = field(1);
    std::from_chars(digits.data(), digits.data() + digits.size(), hive, 16);
    return kind == "key" ? ItemText(hive, field(2)) : ItemText(hive, field(2), field(3));
  }
  return Trim(kind).empty() ? std::string() : Join(fields, " ");
}

}  // namespace

std::string ItemText(uint32_t hive, std::string_view path) {
  return std::string(HiveName(hive)) + "\\" + std::string(path);
}

std::string ItemText(uint32_t hive, std::string_view path, std::string_view valueName) {
  return RegistryTraceText(HiveName(hive), path, valueName);
}

std::string ManifestText(const Manifest& manifest) {
  Writer writer(manifest.stem);
  const size_t items =
      manifest.keys.size() + manifest.values.size() + manifest.texts.size() + manifest.files.size();
  writer.Line({std::string(kName), std::string(kVersion), manifest.stem, std::to_string(items)});
  for (const KeyItem& key : manifest.keys) writer.Line({"key", HiveText(key.hive), key.path});
  for (const ValueItem& item : manifest.values) {
    writer.Line({"value", HiveText(item.hive), item.path, item.name,
                 std::to_string(static_cast<uint32_t>(item.value.type)), HexText(item.value.data)});
  }
  for (const TextItem& text : manifest.texts) {
    writer.Line({"text", HiveText(text.hive), text.path, text.name, HexText(text.digest)});
  }
  for (const FileItem& file : manifest.files) {
    writer.Line({"file", std::string(kKindNames[static_cast<size_t>(file.kind)]), file.path,
                 std::to_string(file.size), HexText(file.digest), HiveText(file.attributes),
                 NumberText(file.times.created), NumberText(file.times.accessed),
                 NumberText(file.times.modified), file.entry, std::to_string(file.offset)});
  }
  const std::string digest = HexText(Sha256Of(writer.Text()));
  writer.Line({std::string(kLastLine), digest});
  return std::move(writer.Text());
}

void ManifestReading::Fault(std::string what) {
  if (damage.size() < kMostNamed) damage.push_back(std::move(what));
  ++faults;
}

ManifestReading ReadManifest(std::string_view text, std::string_view stem) {
  ManifestReading reading;
  reading.manifest.stem = stem;
  std::optional<size_t> wanted;
  size_t items = 0;
  bool ended = false;
  bool wholeFits = false;
  LineReader lines(text);
  for (size_t begin = 0, number = 1; const auto line = lines.Next();
       begin = lines.Position(), ++number) {
    const std::string_view digest = line->substr(0, kDigestDigits);
    const std::string_view rest = line->substr(std::min(kDigestDigits + 1, line->size()));
    const auto fault = [&] {
      const bool named = reading.faults < ManifestReading::kMostNamed;
      std::string about = named ? About(rest) : std::string();
      if (about.empty()) about = "line " + std::to_string(number) + " of the manifest";
      reading.Fault(std::move(about));
    };
    // A damaged line may hold anything, so it is not taken apart.
    if (rest.empty() || digest != HexText(Writer::LineDigest(stem, rest))) {
      fault();
      continue;
    }
    const std::vector<std::string> fields = Split(rest, "\t");
    if (fields[0] == kName) {
      Fields head(fields);
      const bool known = head.Text() == kName && head.Text() == kVersion && head.Text() == stem;
      wanted = head.Count<size_t>();
      if (known && head.Good()) continue;
      reading.Fault("a manifest of an unknown version");
      return reading;
    }
    if (fields[0] == kLastLine) {
      ended = true;
      wholeFits = fields.size() == 2 && fields[1] == HexText(Sha256Of(text.substr(0, begin)));
    } else if (TakeItem(fields, reading.manifest)) {
      ++items;
    } else {
      fault();
    }
  }
  if (!wanted) reading.Fault("the head of the manifest");
  if (!ended) reading.Fault("the end of the manifest");
  if (wanted && *wanted > items + reading.faults) {
    reading.Fault(std::to_string(*wanted - items) + " items that the manifest had");
  }
  if (reading.faults == 0 && !wholeFits) reading.Fault("the order of the manifest's lines");
  return reading;
}

}  // namespace quarnel
