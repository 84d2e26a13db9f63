#include "core/ini_text.h"

#include <algorithm>

#include "base/text.h"
#include "core/lines.h"

namespace quarnel {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view TrimBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The form in which a name or a value stands in its line.
std::string OneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
  return line;
}

std::string NameForm(std::string_view name) { return std::string(TrimBlanks(OneLine(name))); }

// The name in a section's own line. It ends at the last bracket, so that a name with a bracket in
// it reads back as it was written.
std::optional<std::string_view> SectionName(std::string_view line) {
  if (!line.starts_with('[')) return std::nullopt;
  const size_t end = line.rfind(']');
  if (end == std::string_view::npos) return std::nullopt;
  return TrimBlanks(line.substr(1, end - 1));
}

bool IsEntry(std::string_view line) { return !line.empty() && line.front() != ';'; }

// The place of the "=" behind this key in a line; npos when the line is another key's. A key may
// hold a "=" itself, as addresses do: it fits a line that begins with all of it.
size_t EqualsSignBehind(std::string_view line, std::string_view key) {
  if (!IsEntry(line)) return std::string_view::npos;
  const size_t first = line.find('=');
  if (first == std::string_view::npos) return first;
  if (EqualText(TrimBlanks(line.substr(0, first)), key)) return first;
  if (key.find('=') == std::string_view::npos || !StartsWithText(line, key)) {
    return std::string_view::npos;
  }
  const size_t behind = line.find_first_not_of(" \t", key.size());
  return behind != std::string_view::npos && line[behind] == '=' ? behind : std::string_view::npos;
}

}  // namespace

// One line of the text: what counts of it, and where it begins and ends.
struct IniText::Line {
  std::string_view content;
  size_t begin, end, next;
  size_t At(size_t offsetInContent, std::string_view text) const {
    return static_cast<size_t>(content.data() - text.data()) + offsetInContent;
  }
};

// The lines of the text from one place to another.
class IniText::Lines {
 public:
  Lines(std::string_view text, size_t begin, size_t end)
      : base_(begin), reader_(text.substr(begin, end - begin)) {}

  std::optional<Line> Next() {
    const size_t begin = base_ + reader_.Position();
    const auto line = reader_.Next();
    if (!line) return std::nullopt;
    std::string_view content = *line;
    if (begin == 0 && content.starts_with(kByteOrderMark)) {
      content.remove_prefix(kByteOrderMark.size());
    }
    return Line{TrimBlanks(content), begin, begin + line->size(), base_ + reader_.Position()};
  }

 private:
  size_t base_;
  LineReader reader_;
};

std::optional<IniText::SectionSpan> IniText::FindSection(std::string_view name) const {
  const std::string wanted = NameForm(name);
  std::optional<SectionSpan> found;
  Lines lines(text_, 0, text_.size());
  while (const auto line = lines.Next()) {
    const auto section = SectionName(line->content);
    if (!section) continue;
    if (found) {
      found->end = line->begin;
      return found;
    }
    if (EqualText(*section, wanted)) found = SectionSpan{line->begin, line->next, text_.size()};
  }
  return found;
}

std::optional<IniText::KeySpan> IniText::FindKey(std::string_view section,
                                                 std::string_view key) const {
  const auto span = FindSection(section);
  if (!span) return std::nullopt;
  const std::string wanted = NameForm(key);
  Lines lines(text_, span->body, span->end);
  while (const auto line = lines.Next()) {
    const size_t equals = EqualsSignBehind(line->content, wanted);
    if (equals == std::string_view::npos) continue;
    return KeySpan{line->begin, line->At(equals + 1, text_), line->end, line->next};
  }
  return std::nullopt;
}

std::optional<std::string> IniText::Value(std::string_view section, std::string_view key) const {
  const auto span = FindKey(section, key);
  if (!span) return std::nullopt;
  std::string_view value =
      TrimBlanks(std::string_view(text_).substr(span->value, span->end - span->value));
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == '"' || value.front() == '\'');
  if (quoted) value = value.substr(1, value.size() - 2);
  return std::string(value);
}

std::vector<std::string> IniText::Entries(std::string_view section) const {
  std::vector<std::string> entries;
  const auto span = FindSection(section);
  if (!span) return entries;
  Lines lines(text_, span->body, span->end);
  while (const auto line = lines.Next()) {
    if (!IsEntry(line->content)) continue;
    const size_t equals = line->content.find('=');
    std::string& entry = entries.emplace_back(TrimBlanks(line->content.substr(0, equals)));
    if (equals == std::string_view::npos) continue;
    entry += '=';
    entry += TrimBlanks(line->content.substr(equals + 1));
  }
  return entries;
}

std::vector<std::string> IniText::SectionNames() const {
  std::vector<std::string> names;
  Lines lines(text_, 0, text_.size());
  while (const auto line = lines.Next()) {
    if (const auto section = SectionName(line->content)) names.emplace_back(*section);
  }
  return names;
}

std::string_view IniText::LineEnd() const {
  const size_t end = text_.find_first_of("\r\n");
  if (end == std::string::npos || text_.compare(end, 2, "\r\n") == 0) return "\r\n";
  return std::string_view(text_).substr(end, 1) == "\n" ? "\n" : "\r";
}

// `position` is where a line begins, or the end of the text.
void IniText::InsertLine(size_t position, std::string_view line) {
  const std::string_view end = LineEnd();
  std::string inserted;
  const bool open = position > 0 && text_[position - 1] != '\n' && text_[position - 1] != '\r';
  if (open) inserted += end;
  inserted.append(line).append(end);
  text_.insert(position, inserted);
}

IniText::SectionSpan IniText::MakeSection(std::string_view name) {
  if (const auto span = FindSection(name)) return *span;
  const size_t header = text_.size();
  InsertLine(header, "[" + NameForm(name) + "]");
  return {header, text_.size(), text_.size()};
}

bool IniText::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  const std::string name = NameForm(key);
  if (name.starts_with('[') || name.starts_with(';')) return false;
  const std::string text = OneLine(Replace(value, std::string_view("\0", 1), ""));
  if (const auto span = FindKey(section, key)) {
    text_.replace(span->value, span->end - span->value, text);
    return true;
  }
  const SectionSpan span = MakeSection(section);
  // Blank lines that set off the next section stay between the two.
  size_t position = span.body;
  Lines lines(text_, span.body, span.end);
  while (const auto line = lines.Next()) {
    if (!line->content.empty()) position = line->next;
  }
  InsertLine(position, name + "=" + text);
  return true;
}

bool IniText::SetEntries(std::string_view section, const std::vector<std::string>& lines) {
  std::string body;
  for (const std::string& entry : lines) {
    const std::string line = NameForm(entry);
    if (line.starts_with('[')) return false;
    if (line.empty()) continue;
    if (!body.empty()) body += LineEnd();
    body += line;
  }
  const SectionSpan span = MakeSection(section);
  text_.erase(span.body, span.end - span.body);
  if (!body.empty()) InsertLine(span.body, body);
  return true;
}

void IniText::DeleteKey(std::string_view section, std::string_view key) {
  if (const auto span = FindKey(section, key)) text_.erase(span->begin, span->next - span->begin);
}

void IniText::DeleteSection(std::string_view section) {
  if (const auto span = FindSection(section)) {
    text_.erase(span->header, span->end - span->header);
  }
}

}  // namespace quarnel
