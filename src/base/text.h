#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The classic text semantics that the data formats rest on. Text is bytes: one byte is one
// character, and letter case is folded for ASCII letters only.
namespace quarnel {

// Removes blanks (only the character 32) from both ends.
std::string_view Trim(std::string_view text);

bool IsAscii(std::string_view text);

// What stands in front of the first NUL: names and folders of the system end there.
std::string_view CutAtNul(std::string_view text);

std::string ToUpper(std::string_view text);
std::string ToLower(std::string_view text);

// Equality with letter case folded.
bool EqualText(std::string_view left, std::string_view right);

// Orders by the upper-cased bytes: usable as the comparison of a map whose keys ignore case.
struct LessText {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const;
};

bool StartsWithText(std::string_view text, std::string_view prefix);
bool EndsWithText(std::string_view text, std::string_view suffix);

// The first position of `find` in `text` from `start`, letter case folded; npos when there is none.
size_t FindText(std::string_view text, std::string_view find, size_t start = 0);

// Every occurrence of `find` (exact case) replaced.
std::string Replace(std::string_view text, std::string_view find, std::string_view replacement);

// The parts between delimiters. An empty text gives no part; an empty delimiter gives one.
std::vector<std::string> Split(std::string_view text, std::string_view delimiter);

// The parts put together again with `delimiter` between them.
std::string Join(const std::vector<std::string>& parts, std::string_view delimiter);

// The number at the front of a text: blanks are passed over, "&H" and "&O" prefixes are known, and
// reading stops at the first character that cannot belong to a number. 0 when there is none, an
// infinity for a number that is too large.
double Val(std::string_view text);

// Val as a whole number, cut to the range of 32 bits (a count never needs more).
int32_t ValLong(std::string_view text);

// The conversions raise kTypeMismatch for a text that is no number as a whole and kOverflow for one
// out of range; fractions are rounded half to even.
int16_t ToInteger(std::string_view text);
int32_t ToLong(std::string_view text);
int16_t ToInteger(double value);
int32_t ToLong(double value);

// "True" and "False" in any case, or a number (0 is false); anything else is kTypeMismatch.
bool ToBoolean(std::string_view text);

// The same, with `otherwise` for a text that is neither: a torn setting must stop nothing.
bool ToBooleanOr(std::string_view text, bool otherwise);

// "True" or "False".
std::string_view BooleanText(bool value);

// A single-precision number to its seven digits: "7", "0.5", "37516.25", "1E+07".
std::string SingleText(float value);

}  // namespace quarnel
