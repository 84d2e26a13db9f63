#pragma once

#include <string_view>

namespace quarnel {

// Whether the whole text fits the pattern, letter case as written:
//   *          any characters, also none
//   ?          one character
//   #          one digit
//   [list]     one character of the list, which may hold ranges: [a-zA-Z_-]; [] fits no character
//              at all and [!] is the mark itself
//   [!list]    one character that is not in the list
// A "-" at either end of a list and a "]" outside one stand for themselves. A list without its "]"
// and a range that runs backwards raise kInvalidPattern.
// The time is at most the product of the two lengths, whatever they hold.
bool Like(std::string_view text, std::string_view pattern);

}  // namespace quarnel
