#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

// The text of an ini file, read and edited in place: whatever an edit does not concern, comments,
// unknown lines and foreign bytes included, stays as it is, byte for byte.
//
// Section and key names are found in any letter case, and the first one that fits wins. Blanks
// around names and values do not count. A comment begins with ";". Names and values are single
// lines: line ends in them are taken as blanks.
class IniText {
 public:
  explicit IniText(std::string text = {}) : text_(std::move(text)) {}

  const std::string& Text() const { return text_; }

  // A value without the pair of quotation marks, " or ', that may stand around it.
  std::optional<std::string> Value(std::string_view section, std::string_view key) const;
  // The "key=value" lines of a section in their order, comments and empty lines left out.
  std::vector<std::string> Entries(std::string_view section) const;
  // The names of all sections in their order.
  std::vector<std::string> SectionNames() const;

  // Puts a value behind its key; key and section are made as needed. NUL characters are removed
  // from the value. False, with nothing changed, for a key that would read back as something else:
  // one that begins with "[" or ";".
  bool SetValue(std::string_view section, std::string_view key, std::string_view value);
  // Replaces all lines of a section, which is made as needed. False, with nothing changed, when one
  // of the lines begins with "[".
  bool SetEntries(std::string_view section, const std::vector<std::string>& lines);
  void DeleteKey(std::string_view section, std::string_view key);
  void DeleteSection(std::string_view section);

 private:
  struct Line;
  class Lines;
  // Places in the text: a section's own line begins at `header`, its lines fill `body` to `end`.
  struct SectionSpan {
    size_t header, body, end;
  };
  // A key's line from `begin` to `next`, and its value between the "=" and the line's end.
  struct KeySpan {
    size_t begin, value, end, next;
  };
  std::optional<SectionSpan> FindSection(std::string_view name) const;
  std::optional<KeySpan> FindKey(std::string_view section, std::string_view key) const;
  SectionSpan MakeSection(std::string_view name);
  void InsertLine(size_t position, std::string_view line);
  std::string_view LineEnd() const;

  std::string text_;
};

}  // namespace quarnel
