#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/files.h"

namespace quarnel {

// Reads a file from front to end, but no further than it went when it turned out to be larger than
// a piece: one that grows all the time would have no end.
class SteadyReader {
 public:
  // The next bytes; 0 at the end. Raises as the file does.
  size_t Read(File& file, std::span<char> piece) {
    if (limit_ && read_ >= *limit_) {
      grew_ = file.Size() > *limit_;
      return 0;
    }
    if (limit_) {
      piece = piece.first(static_cast<size_t>(std::min<uint64_t>(piece.size(), *limit_ - read_)));
    }
    const size_t count = file.Read(piece);
    read_ += count;
    // Most files are read in one piece: those need no other look.
    if (!limit_ && count == piece.size()) limit_ = std::max(file.Size(), read_);
    return count;
  }
  // Whether there was more behind that place at the end.
  bool Grew() const { return grew_; }

 private:
  uint64_t read_ = 0;
  std::optional<uint64_t> limit_;
  bool grew_ = false;
};

}  // namespace quarnel
