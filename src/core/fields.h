#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Records of text: one a line, its fields separated by a tab, so that any text comes back as it
// was.
namespace quarnel {

// Tab, CR, LF and backslash as "\t", "\r", "\n" and "\\"; every other byte as it is.
std::string EscapeField(std::string_view text);
// The way back; nothing when a backslash stands before anything else.
std::optional<std::string> UnescapeField(std::string_view field);

// The fields of a record, at least one, as a line with an LF at its end.
std::string RecordLine(const std::vector<std::string>& fields);
// The fields of a line without its end; nothing when one of them is damaged.
std::optional<std::vector<std::string>> FieldsOf(std::string_view line);

}  // namespace quarnel
