#pragma once

#include <string>
#include <string_view>

// How the system compares names of files, keys and values: each UTF-16 unit by the letter that is
// its simple upper case, so "ä" is "Ä" but "ß" is not "SS". No letter becomes an ASCII letter that
// was none: the dotless i and the long s stay what they are. Texts of the program's own formats are
// compared otherwise (base/text.h).
namespace quarnel {

// The form that equal names share. Bytes that are no UTF-8 stay as they are.
std::string FoldName(std::string_view name);

bool EqualNames(std::string_view left, std::string_view right);

// Sorts equal names together.
struct LessNames {
  bool operator()(std::string_view left, std::string_view right) const {
    return FoldName(left) < FoldName(right);
  }
};

}  // namespace quarnel
