#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// Reads text line by line from bytes that are at hand. Lines end at CR LF, CR or LF; every other
// byte survives. A line end that closes the last line opens no further one.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  // The next line without its end; nothing behind the last. It views the text that was given.
  std::optional<std::string_view> Next();

  bool AtEnd() const { return position_ >= text_.size(); }
  // Where the next line begins in the text.
  size_t Position() const { return position_; }

 private:
  std::string_view text_;
  size_t position_ = 0;
  size_t nextLineFeed_ = 0;  // the first one at or behind position_; stale while before it
};

// Reads comma-delimited fields one at a time. A field ends at a comma or at a line end and loses
// the blanks before it. A field in quotation marks runs to the closing mark, whatever stands
// between.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : text_(text) {}
  std::optional<std::string> Next();
  bool AtEnd() const { return position_ >= text_.size(); }

 private:
  void SkipBlanks();
  void SkipDelimiter();

  std::string_view text_;
  size_t position_ = 0;
};

}  // namespace quarnel
