#include "signatures/compiler.h"

#include <algorithm>
#include <array>
#include <span>
#include <unordered_map>

#include "base/text.h"
#include "core/lines.h"
#include "signatures/cipher.h"
#include "signatures/complement.h"
#include "signatures/signature_files.h"
#include "signatures/source_rules.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// What stands in the source files, line by line. A source's name is that of its file but for the
// extension.
struct SourceFormat {
  std::string_view source;
  std::string_view output;
  std::string SignatureSources::*text;
  char separator;
  std::span<const FieldRule> fields;
  // The field that holds the threat's name; none for sources without threats.
  std::optional<size_t> nameField;
};

constexpr std::array<FieldRule, 7> kRegistryFields = {{{"company", CheckListText},
                                                       {"name", CheckListText},
                                                       {"type code", CheckTypeCode},
                                                       {"hive code", CheckHiveCode},
                                                       {"key", CheckAnything},
                                                       {"value name", CheckAnything},
                                                       {"value data", CheckAnything}}};
constexpr std::array<FieldRule, 7> kFileFields = {{{"company", CheckListText},
                                                   {"name", CheckListText},
                                                   {"type code", CheckTypeCode},
                                                   {"folder code", CheckFolderCode},
                                                   {"path", CheckAnything},
                                                   {"hash", CheckOptionalHash},
                                                   {"identifier", CheckAnything}}};
constexpr std::array<FieldRule, 3> kProgramFields = {
    {{"hash", CheckHash}, {"type code", CheckTypeCode}, {"name", CheckListText}}};
constexpr std::array<FieldRule, 1> kCookieFields = {{{"pattern", CheckPattern}}};
constexpr std::array<FieldRule, 2> kActiveXFields = {
    {{"name", CheckPlainField}, {"class identifier", CheckClassId}}};

using Sources = SignatureSources;
namespace name = signature_file;
const std::array<SourceFormat, 5> kFormats = {{
    {"QNLRSig.txt", name::kRegistry, &Sources::registry, ',', kRegistryFields, 1},
    {"QNLFSig.txt", name::kFiles, &Sources::files, ',', kFileFields, 1},
    {"QNLESig.txt", name::kPrograms, &Sources::programs, '^', kProgramFields, 2},
    {"QNLBlkCoo.txt", name::kBlockedCookies, &Sources::blockedCookies, ',', kCookieFields, {}},
    {"QNLImmData.txt", name::kActiveX, &Sources::activeX, ',', kActiveXFields, {}},
}};
constexpr std::string_view kLevelsSource = "QNLSigLevel.ini";

// Editors of some systems put a mark in front of UTF-8 text.
std::string_view WithoutMark(std::string_view text) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (text.starts_with(kMark)) text.remove_prefix(kMark.size());
  return text;
}

std::vector<std::string_view> SplitLine(std::string_view line, char separator) {
  std::vector<std::string_view> fields;
  size_t begin = 0;
  for (size_t end = line.find(separator); end != std::string_view::npos;
       end = line.find(separator, begin)) {
    fields.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  fields.push_back(line.substr(begin));
  return fields;
}

// Compiles the sources one after the other into one set.
class Compiler {
 public:
  void AddFormat(const SourceFormat& format, std::string_view text);
  void AddLevels(std::string_view text);
  CompiledSet Finish();

 private:
  void Refuse(std::string_view file, size_t line, std::string reason) {
    set_.errors.push_back({std::string(file), line, std::move(reason)});
  }
  // Sources with more than these are not worth the reading.
  bool HasManyErrors() const { return set_.errors.size() >= kMostSourceErrors; }
  // The spelling under which the threat stands already; nothing when it is written so, or new.
  std::optional<std::string_view> OtherSpelling(std::string_view threat) const;
  void AddThreat(std::string_view threat);

  CompiledSet set_;
  std::unordered_map<std::string, std::string_view> threats_;  // by folded name
  std::string threatLines_;
};

// The reason why a line cannot stand in its file; empty when it can.
std::string LineFault(const SourceFormat& format, std::string_view line,
                      std::span<const std::string_view> fields) {
  if (fields.size() != format.fields.size()) {
    return std::to_string(fields.size()) + " fields separated by \"" + format.separator +
           "\" instead of " + std::to_string(format.fields.size());
  }
  for (size_t i = 0; i < fields.size(); ++i) {
    if (std::string fault = format.fields[i].check(fields[i]); !fault.empty()) {
      return "field " + std::to_string(i + 1) + " (" + std::string(format.fields[i].name) +
             "): " + fault;
    }
  }
  if (format.output == name::kRegistry) {
    if (std::string fault = KeyFault(fields[4], fields[5]); !fault.empty()) return fault;
  }
  const bool enciphered =
      FindSignatureFile(format.output)->encoding == SignatureEncoding::kCountedCipher;
  return enciphered ? CipherFault(line) : ComplementFault(line);
}

void Compiler::AddFormat(const SourceFormat& format, std::string_view text) {
  const bool enciphered =
      FindSignatureFile(format.output)->encoding == SignatureEncoding::kCountedCipher;
  std::string body;
  size_t count = 0;
  LineReader lines(WithoutMark(text));
  for (size_t number = 1; const auto line = HasManyErrors() ? std::nullopt : lines.Next();
       ++number) {
    if (line->empty() || line->front() == '#') continue;
    const std::vector<std::string_view> fields = SplitLine(*line, format.separator);
    if (std::string fault = LineFault(format, *line, fields); !fault.empty()) {
      Refuse(format.source, number, std::move(fault));
      continue;
    }
    if (format.nameField) {
      const std::string_view threat = fields[*format.nameField];
      if (const auto other = OtherSpelling(threat)) {
        Refuse(format.source, number,
               "the name is written \"" + std::string(*other) + "\" elsewhere");
        continue;
      }
      AddThreat(threat);
    }
    body.append(enciphered ? Encrypt(*line) : *line).append(kLineEnd);
    ++count;
  }
  if (enciphered) {
    body.insert(0, std::to_string(count).append(kLineEnd));
  } else {
    body = ComplementBytes(body);
  }
  set_.files.push_back({std::string(format.output), std::move(body)});
}

std::optional<std::string_view> Compiler::OtherSpelling(std::string_view threat) const {
  const auto known = threats_.find(ToUpper(threat));
  if (known == threats_.end() || known->second == threat) return std::nullopt;
  return known->second;
}

void Compiler::AddThreat(std::string_view threat) {
  if (threat.empty() || !threats_.try_emplace(ToUpper(threat), threat).second) return;
  threatLines_.append(threat).append(kLineEnd);
}

void Compiler::AddLevels(std::string_view text) {
  text = WithoutMark(text);
  bool inLevels = false;
  LineReader lines(text);
  for (size_t number = 1; const auto line = HasManyErrors() ? std::nullopt : lines.Next();
       ++number) {
    const std::string_view entry = Trim(*line);
    if (entry.starts_with('[')) {
      inLevels = EqualText(entry, "[Level]");
    } else if (inLevels && !entry.empty() && entry[0] != ';' && entry[0] != '#') {
      if (std::string fault = LevelFault(entry); !fault.empty()) {
        Refuse(kLevelsSource, number, std::move(fault));
      }
    }
  }
  set_.files.push_back({std::string(name::kLevels), std::string(text)});
}

CompiledSet Compiler::Finish() {
  set_.files.push_back({std::string(name::kList), std::move(threatLines_)});
  // Only its presence counts.
  set_.files.push_back({std::string(name::kCriticalProcesses), {}});
  if (!set_.errors.empty()) set_.files.clear();
  return std::move(set_);
}

// The deciphered lines, without the blank that makes an odd length even.
std::string ShowLines(std::string_view bytes, bool counted) {
  std::string text;
  LineReader lines(bytes);
  if (counted) lines.Next();
  std::string plain;
  while (const auto line = lines.Next()) {
    DecryptInto(*line, plain);
    if (plain.ends_with(' ')) plain.pop_back();
    text.append(plain) += '\n';
  }
  return text;
}

// The fields of a complemented file, as many in a line as its source has.
std::string ShowFields(std::string_view bytes, size_t fieldsInLine) {
  const std::string plain = ComplementBytes(bytes);
  FieldReader fields(plain);
  std::string text;
  size_t count = 0;
  while (const auto field = fields.Next()) {
    if (count % fieldsInLine != 0) text += ',';
    text += *field;
    if (++count % fieldsInLine == 0) text += '\n';
  }
  if (count % fieldsInLine != 0) text += '\n';
  return text;
}

}  // namespace

std::span<const SourceFile> SourceFiles() {
  static const auto kFiles = [] {
    std::array<SourceFile, kFormats.size() + 1> files;
    std::transform(kFormats.begin(), kFormats.end(), files.begin(), [](const SourceFormat& format) {
      return SourceFile{format.source, format.text};
    });
    files.back() = {kLevelsSource, &Sources::levels};
    return files;
  }();
  return kFiles;
}

CompiledSet CompileSet(const SignatureSources& sources) {
  Compiler compiler;
  for (const SourceFormat& format : kFormats) compiler.AddFormat(format, sources.*format.text);
  compiler.AddLevels(sources.levels);
  return compiler.Finish();
}

std::optional<std::string> ShowSignatureFile(std::string_view name, std::string_view bytes) {
  const SignatureFile* file = FindSignatureFile(name);
  if (file == nullptr) return std::nullopt;
  switch (file->encoding) {
    case SignatureEncoding::kCountedCipher:
      return ShowLines(bytes, true);
    case SignatureEncoding::kCipher:
      return ShowLines(bytes, false);
    case SignatureEncoding::kComplement:
      return ShowFields(bytes, file->name == name::kActiveX ? kActiveXFields.size() : 1);
    case SignatureEncoding::kPlain:
      break;
  }
  return std::string(bytes);
}

}  // namespace quarnel
