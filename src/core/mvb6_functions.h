#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"

// The string functions of the whole program whose positions count from 1.
namespace quarnel {

enum class CompareMode { kBinary = 0, kText = 1 };

// The last position of `find`, searching only the first `start` characters; a `start` below 0 means
// the whole text. 0 when there is none. An empty `find` stands at the end of what is searched.
long InStrRev(std::string_view text, std::string_view find, long start = -1,
              CompareMode compare = CompareMode::kBinary);

// The text backwards.
std::string StrReverse(std::string_view text);

// As Split, with at most `limit` parts, of which the last holds all that is left; a `limit` below 0
// sets none. The delimiter is matched with the compare mode.
std::vector<std::string> Split(std::string_view text, std::string_view delimiter, long limit,
                               CompareMode compare = CompareMode::kBinary);

}  // namespace quarnel
