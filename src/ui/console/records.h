#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quarnel {

// One field of a record; the name is its key in JSON. A list stands for as many further fields.
struct Field {
  std::string_view name;
  std::variant<bool, int64_t, std::string, std::vector<std::string>> value;
};

// A count as a field's value.
inline int64_t Number(size_t count) { return static_cast<int64_t>(count); }

// Prints records, one a line: fields separated by a tab, a flag as 1 or 0; or as one JSON object
// (RFC 8259) with true and false and a list as an array.
class RecordWriter {
 public:
  enum class Format { kTabs, kJson };
  RecordWriter(std::ostream& out, Format format) : out_(out), format_(format) {}

  void Write(const std::vector<Field>& fields);
  bool IsJson() const { return format_ == Format::kJson; }
  // For what is no record, such as a table to be read by a person.
  std::ostream& out() const { return out_; }

 private:
  std::ostream& out_;
  Format format_;
};

// The text as a JSON string with its quotes. A byte that is no UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);

}  // namespace quarnel
