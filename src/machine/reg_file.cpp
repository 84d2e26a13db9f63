#include "machine/reg_file.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/hex.h"
#include "base/little_endian.h"
#include "base/text.h"
#include "base/unicode.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kVersion5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kVersion4 = "REGEDIT4";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

constexpr Hive kShortNames[] = {
    {hive::kClassesRoot, "HKCR"}, {hive::kCurrentUser, "HKCU"},   {hive::kLocalMachine, "HKLM"},
    {hive::kUsers, "HKU"},        {hive::kCurrentConfig, "HKCC"},
};

// What is thrown within this file only.
struct ParseFailure {
  RegError error;
};

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  std::vector<RegStep> Parse() {
    ReadHeader();
    while (position_ < text_.size()) ReadLine();
    return std::move(steps_);
  }

 private:
  [[noreturn]] void Fail(std::string reason) const {
    throw ParseFailure{{line_, std::move(reason)}};
  }

  char Peek() const { return position_ < text_.size() ? text_[position_] : '\n'; }
  bool AtLineEnd() const { return Peek() == '\n' || Peek() == '\r'; }
  std::string_view Rest() const { return text_.substr(position_); }

  bool Accept(std::string_view word) {
    if (!StartsWithText(Rest(), word)) return false;
    position_ += word.size();
    return true;
  }

  void SkipBlanks() {
    while (position_ < text_.size() && (Peek() == ' ' || Peek() == '\t')) ++position_;
  }

  void SkipLineEnd() {
    if (!Accept("\r\n")) position_ = std::min(position_ + 1, text_.size());
    ++line_;
  }

  // The rest of the line up to its end, which is passed.
  std::string_view TakeLine() {
    const size_t end = std::min(text_.find_first_of("\r\n", position_), text_.size());
    const std::string_view line = text_.substr(position_, end - position_);
    position_ = end;
    SkipLineEnd();
    return line;
  }

  void ExpectLineEnd() {
    SkipBlanks();
    if (!AtLineEnd() && Peek() != ';') Fail("more on the line than a value");
    TakeLine();
  }

  void ReadHeader() {
    const std::string_view line = Trim(text_.substr(0, text_.find_first_of("\r\n")));
    isVersion4_ = line == kVersion4;
    if (!isVersion4_ && line != kVersion5) Fail("not the first line of a registry file");
    TakeLine();
  }

  void ReadLine() {
    SkipBlanks();
    if (AtLineEnd()) return SkipLineEnd();
    if (Peek() == ';' || Peek() == '#') {
      TakeLine();
    } else if (Peek() == '[') {
      ReadKey();
    } else if (Peek() == '"' || Peek() == '@') {
      ReadValue();
    } else {
      Fail("neither a key, a value nor a comment");
    }
  }

  void ReadKey() {
    const size_t line = line_;
    const std::string_view header = TakeLine();
    // A key's name may hold brackets: the last one ends it.
    const size_t end = header.rfind(']');
    if (end == std::string_view::npos) FailAt(line, "a key without its closing bracket");
    std::string_view name = header.substr(1, end - 1);
    const bool isDeletion = name.starts_with('-');
    if (isDeletion) name.remove_prefix(1);
    auto key = ParseKeyPath(name);
    if (!key) FailAt(line, "a key below no known root");
    if (isDeletion && key->path.empty()) FailAt(line, "a root key cannot be deleted");
    RegStep step;
    step.action = isDeletion ? RegStep::Action::kDeleteKey : RegStep::Action::kMakeKey;
    step.key = *key;
    step.line = line;
    steps_.push_back(std::move(step));
    key_ = isDeletion ? std::nullopt : std::move(key);
  }

  void ReadValue() {
    if (!key_) Fail("a value without a key");
    RegStep step;
    step.action = RegStep::Action::kSetValue;
    step.key = *key_;
    step.line = line_;
    if (!Accept("@")) step.name = ReadQuoted();
    SkipBlanks();
    if (!Accept("=")) Fail("a value without \"=\"");
    SkipBlanks();
    if (Accept("-")) {
      step.action = RegStep::Action::kDeleteValue;
    } else if (Peek() == '"') {
      step.value = RawFromValue(ReadQuoted());
    } else if (Accept("dword:")) {
      step.value = RawFromValue(ReadNumber());
    } else if (Accept("hex")) {
      step.value = ReadBytes();
    } else {
      Fail("data of no known kind");
    }
    ExpectLineEnd();
    steps_.push_back(std::move(step));
  }

  // A text in quotes. It may hold ends of lines.
  std::string ReadQuoted() {
    const size_t start = line_;
    std::string text;
    for (++position_; position_ < text_.size(); ++position_) {
      const char c = text_[position_];
      if (c == '"') {
        ++position_;
        return text;
      }
      if (c == '\n') ++line_;
      const char next = position_ + 1 < text_.size() ? text_[position_ + 1] : '\0';
      if (c == '\\' && (next == '\\' || next == '"')) ++position_;
      text += text_[position_];
    }
    FailAt(start, "a text without its closing quote");
  }

  uint32_t ReadNumber() {
    constexpr int kMostDigits = 8;
    uint32_t number = 0;
    int digits = 0;
    for (; HexDigit(Peek()) >= 0; ++position_, ++digits) {
      number = number << 4 | static_cast<uint32_t>(HexDigit(Peek()));
    }
    if (digits == 0 || digits > kMostDigits) Fail("not a number of 1 to 8 hexadecimal digits");
    return number;
  }

  // "(TYPE):01,02,..." or ":01,02,...". A backslash at the end of a line goes on with the next.
  RawValue ReadBytes() {
    RawValue value{ValueType::kBinary, {}};
    if (Accept("(")) {
      value.type = static_cast<ValueType>(ReadNumber());
      if (!Accept(")")) Fail("a type without its closing bracket");
    }
    if (!Accept(":")) Fail("data of no known kind");
    SkipContinuation();
    while (!AtLineEnd() && Peek() != ';') {
      const int high = HexDigit(Peek());
      if (high < 0) Fail("not a hexadecimal byte");
      ++position_;
      const int low = HexDigit(Peek());
      if (low >= 0) ++position_;
      value.data += static_cast<char>(low < 0 ? high : high * 16 + low);
      SkipContinuation();
      if (!Accept(",")) break;
      SkipContinuation();
      if (HexDigit(Peek()) < 0) Fail("a comma without a byte behind it");
    }
    const bool isText = value.type == ValueType::kString ||
                        value.type == ValueType::kExpandString ||
                        value.type == ValueType::kMultiString;
    if (isVersion4_ && isText) {
      // This version has the bytes of the text itself.
      std::string wide;
      PutWide(wide, ToUtf16(value.data));
      value.data = std::move(wide);
    }
    return value;
  }

  void SkipContinuation() {
    SkipBlanks();
    while (Peek() == '\\') {
      ++position_;
      SkipBlanks();
      if (!AtLineEnd()) Fail("a backslash that ends no line");
      SkipLineEnd();
      SkipBlanks();
    }
  }

  [[noreturn]] static void FailAt(size_t line, std::string reason) {
    throw ParseFailure{{line, std::move(reason)}};
  }

  std::string_view text_;
  size_t position_ = 0;
  size_t line_ = 1;
  bool isVersion4_ = false;
  std::optional<KeyPath> key_;
  std::vector<RegStep> steps_;
};

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

// The text of a string value when its quoted form reads back as the same bytes.
std::optional<std::string> PlainText(const RawValue& value) {
  if (value.type != ValueType::kString) return std::nullopt;
  auto text = std::get<std::string>(*ValueFromRaw(value));
  const bool isPlain = std::none_of(text.begin(), text.end(),
                                    [](char c) { return static_cast<unsigned char>(c) < 0x20; });
  if (!isPlain || RawFromValue(text).data != value.data) return std::nullopt;
  return text;
}

std::string LowerHex(uint32_t number, size_t digits) { return ToLower(HexNumber(number, digits)); }

// "hex:..." with lines of at most 80 characters, of which `used` are taken on the first.
std::string ByteList(const RawValue& value, size_t used) {
  constexpr size_t kLineLength = 77;
  std::string text = "hex";
  if (value.type != ValueType::kBinary) {
    const auto type = static_cast<uint32_t>(value.type);
    text.append("(").append(LowerHex(type, 1)).append(")");
  }
  text += ':';
  used += text.size();
  for (size_t i = 0; i < value.data.size(); ++i) {
    if (used > kLineLength - 3) {
      text += "\\\r\n  ";
      used = 2;
    }
    text += LowerHex(static_cast<unsigned char>(value.data[i]), 2);
    if (i + 1 < value.data.size()) text += ',';
    used += 3;
  }
  return text;
}

std::string StepText(const RegStep& step) {
  switch (step.action) {
    case RegStep::Action::kMakeKey:
      return "\r\n[" + KeyPathText(step.key) + "]";
    case RegStep::Action::kDeleteKey:
      return "\r\n[-" + KeyPathText(step.key) + "]";
    case RegStep::Action::kDeleteValue:
      return (step.name.empty() ? "@" : Quoted(step.name)) + "=-";
    case RegStep::Action::kSetValue:
      break;
  }
  return ValueLine(step.name, step.value);
}

std::string DecodedText(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Mark)) return std::string(bytes.substr(kUtf8Mark.size()));
  if (!bytes.starts_with(kUtf16Mark)) return std::string(bytes);
  std::string text;
  // Line by line, since what is ill-formed in one must not change how another one reads.
  std::u16string line;
  for (size_t i = kUtf16Mark.size(); i + 1 < bytes.size(); i += 2) {
    line += static_cast<char16_t>(U16At(bytes, i));
    if (line.back() != u'\n') continue;
    text += ToUtf8(line);
    line.clear();
  }
  return text + ToUtf8(line);
}

}  // namespace

std::optional<KeyPath> ParseKeyPath(std::string_view text) {
  const size_t end = std::min(text.find('\\'), text.size());
  const std::string_view root = text.substr(0, end);
  KeyPath key{0, std::string(text.substr(std::min(end + 1, text.size())))};
  while (key.path.ends_with('\\')) key.path.pop_back();
  for (const std::span<const Hive> names : {Hives(), std::span<const Hive>(kShortNames)}) {
    for (const Hive& hive : names) {
      if (!EqualText(root, hive.name)) continue;
      key.root = hive.handle;
      return key;
    }
  }
  return std::nullopt;
}

std::string KeyPathText(const KeyPath& key) {
  std::string text(HiveName(key.root));
  if (!key.path.empty()) text.append("\\").append(key.path);
  return text;
}

RegFile ParseRegFile(std::string_view bytes) {
  RegFile file;
  const std::string text = DecodedText(bytes);
  try {
    file.steps = Parser(text).Parse();
  } catch (const ParseFailure& failure) {
    file.error = failure.error;
  }
  return file;
}

std::string ValueLine(std::string_view name, const RawValue& value) {
  std::string line = name.empty() ? "@" : Quoted(name);
  line += '=';
  if (const auto text = PlainText(value)) return line + Quoted(*text);
  if (value.type == ValueType::kDword && value.data.size() == 4) {
    return line + "dword:" + LowerHex(U32At(value.data, 0), 8);
  }
  return line + ByteList(value, line.size());
}

std::string PrintRegFile(std::span<const RegStep> steps) {
  std::string bytes(kUtf16Mark);
  PutWide(bytes, ToUtf16(std::string(kVersion5) + "\r\n"));
  for (const RegStep& step : steps) PutWide(bytes, ToUtf16(StepText(step) + "\r\n"));
  return bytes;
}

}  // namespace quarnel
