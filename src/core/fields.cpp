#include "core/fields.h"

#include <algorithm>
#include <array>

namespace quarnel {
namespace {

struct Escape {
  char meant;
  char written;
};
constexpr std::array<Escape, 4> kEscapes = {{{'\t', 't'}, {'\r', 'r'}, {'\n', 'n'}, {'\\', '\\'}}};

}  // namespace

std::string EscapeField(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    const auto* escape = std::find_if(kEscapes.begin(), kEscapes.end(),
                                      [c](const Escape& entry) { return entry.meant == c; });
    if (escape != kEscapes.end()) result += '\\';
    result += escape != kEscapes.end() ? escape->written : c;
  }
  return result;
}

std::optional<std::string> UnescapeField(std::string_view field) {
  std::string text;
  text.reserve(field.size());
  for (size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '\\') {
      text += field[i];
      continue;
    }
    const char written = ++i < field.size() ? field[i] : '\0';
    const auto* escape =
        std::find_if(kEscapes.begin(), kEscapes.end(),
                     [written](const Escape& entry) { return entry.written == written; });
    if (escape == kEscapes.end()) return std::nullopt;
    text += escape->meant;
  }
  return text;
}

std::string RecordLine(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += EscapeField(field) + '\t';
  line.back() = '\n';
  return line;
}

std::optional<std::vector<std::string>> FieldsOf(std::string_view line) {
  std::vector<std::string> fields;
  for (;;) {
    const size_t tab = line.find('\t');
    auto field = UnescapeField(line.substr(0, tab));
    if (!field) return std::nullopt;
    fields.push_back(std::move(*field));
    if (tab == std::string_view::npos) return fields;
    line.remove_prefix(tab + 1);
  }
}

}  // namespace quarnel
