#include "core/lines.h"

#include <algorithm>

namespace quarnel {

std::optional<std::string_view> LineReader::Next() {
  if (AtEnd()) return std::nullopt;
  // Two searches for one character each are faster than one search for either. The place of the
  // line feed is kept, or a text of nothing but CRs would be searched to its end at every line.
  if (nextLineFeed_ <= position_) {
    nextLineFeed_ = std::min(text_.find('\n', position_), text_.size());
  }
  const std::string_view upToFeed = text_.substr(position_, nextLineFeed_ - position_);
  const size_t length = std::min(upToFeed.find('\r'), upToFeed.size());
  const std::string_view line = upToFeed.substr(0, length);
  position_ += length + 1;
  const bool behindReturn = length < upToFeed.size();
  if (behindReturn && position_ < text_.size() && text_[position_] == '\n') ++position_;
  position_ = std::min(position_, text_.size());
  return line;
}

void FieldReader::SkipBlanks() {
  position_ = std::min(text_.find_first_not_of(' ', position_), text_.size());
}

void FieldReader::SkipDelimiter() {
  if (AtEnd()) return;
  const char delimiter = text_[position_];
  if (delimiter != ',' && delimiter != '\r' && delimiter != '\n') return;
  ++position_;
  if (delimiter == '\r' && !AtEnd() && text_[position_] == '\n') ++position_;
}

std::optional<std::string> FieldReader::Next() {
  if (AtEnd()) return std::nullopt;
  SkipBlanks();
  const bool quoted = !AtEnd() && text_[position_] == '"';
  if (quoted) ++position_;
  const size_t end = std::min(
      quoted ? text_.find('"', position_) : text_.find_first_of(",\r\n", position_), text_.size());
  std::string field(text_.substr(std::min(position_, end), end - std::min(position_, end)));
  position_ = end;
  if (quoted) {
    position_ = std::min(position_ + 1, text_.size());
    SkipBlanks();
  }
  SkipDelimiter();
  return field;
}

}  // namespace quarnel
