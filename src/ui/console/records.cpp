#include "ui/console/records.h"

#include "base/hex.h"
#include "base/text.h"
#include "base/unicode.h"
#include "core/fields.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::string JsonValue(const Field& field) {
  return std::visit(Overloaded{[](bool flag) { return std::string(flag ? "true" : "false"); },
                               [](int64_t number) { return std::to_string(number); },
                               [](const std::string& text) { return JsonText(text); },
                               [](const std::vector<std::string>& texts) {
                                 std::string list = "[";
                                 for (const std::string& text : texts) {
                                   if (list.size() > 1) list += ',';
                                   list += JsonText(text);
                                 }
                                 return list + ']';
                               }},
                    field.value);
}

// The field with the tab before it, so that an empty list leaves none behind.
std::string TabbedValue(const Field& field) {
  return std::visit(Overloaded{[](bool flag) { return std::string(flag ? "\t1" : "\t0"); },
                               [](int64_t number) { return '\t' + std::to_string(number); },
                               [](const std::string& text) { return '\t' + EscapeField(text); },
                               [](const std::vector<std::string>& texts) {
                                 std::string all;
                                 for (const std::string& text : texts) {
                                   all += '\t' + EscapeField(text);
                                 }
                                 return all;
                               }},
                    field.value);
}

}  // namespace

void RecordWriter::Write(const std::vector<Field>& fields) {
  std::string line;
  for (const Field& field : fields) {
    if (IsJson()) {
      line += line.empty() ? '{' : ',';
      line += JsonText(field.name) + ':' + JsonValue(field);
    } else {
      line += TabbedValue(field);
    }
  }
  if (IsJson()) line += '}';
  out_ << std::string_view(line).substr(IsJson() || line.empty() ? 0 : 1) << '\n';
}

std::string JsonText(std::string_view text) {
  std::u16string result = u"\"";
  for (const char16_t unit : WellFormedUtf16(text)) {
    if (unit == u'"' || unit == u'\\') {
      result += u'\\';
      result += unit;
    } else if (unit == u'\n') {
      result += u"\\n";
    } else if (unit == u'\r') {
      result += u"\\r";
    } else if (unit == u'\t') {
      result += u"\\t";
    } else if (unit < 0x20) {
      result += ToUtf16("\\u" + ToLower(HexNumber(unit, 4)));
    } else {
      result += unit;
    }
  }
  result += u'"';
  return ToUtf8(result);
}

}  // namespace quarnel
