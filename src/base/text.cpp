#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
constexpr char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Hexadecimal and octal texts are whole numbers of 16 or 32 bits with a sign: &HFFFF is -1.
double PrefixedNumber(std::string_view digits, int base) {
  uint64_t value = 0;
  for (const char c : digits) {
    const char upper = Upper(c);
    const int digit = IsDigit(upper) ? upper - '0' : upper - 'A' + 10;
    if (digit < 0 || digit >= base || (!IsDigit(upper) && (upper < 'A' || upper > 'F'))) break;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
    if (value > std::numeric_limits<uint32_t>::max()) return 0;
  }
  if (value <= 0xFFFF) return static_cast<int16_t>(value);
  return static_cast<int32_t>(value);
}

// The text without the white space that number reading passes over.
std::string WithoutBlanks(std::string_view text) {
  // No number needs more characters than this; a hostile text must not be copied whole.
  constexpr size_t kLongest = 400;
  std::string result;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') continue;
    if (result.size() == kLongest) break;
    result += c;
  }
  return result;
}

// Length of the decimal number at the front of `text`, without a sign.
size_t DecimalLength(std::string_view text) {
  size_t length = 0;
  size_t digits = 0;
  while (length < text.size() && IsDigit(text[length])) ++length, ++digits;
  if (length < text.size() && text[length] == '.') {
    ++length;
    while (length < text.size() && IsDigit(text[length])) ++length, ++digits;
  }
  if (digits == 0) return 0;
  if (length < text.size() && (Upper(text[length]) == 'E' || Upper(text[length]) == 'D')) {
    size_t end = length + 1;
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    const size_t firstDigit = end;
    while (end < text.size() && IsDigit(text[end])) ++end;
    if (end > firstDigit) length = end;
  }
  return length;
}

struct NumberPrefix {
  double value = 0;
  size_t length = 0;  // characters of the text that belong to the number
};

NumberPrefix ReadNumber(std::string_view text) {
  size_t sign = 0;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) sign = 1;
  const bool negative = sign == 1 && text[0] == '-';
  const std::string_view body = text.substr(sign);
  if (body.size() >= 2 && body[0] == '&' && (Upper(body[1]) == 'H' || Upper(body[1]) == 'O')) {
    const int base = Upper(body[1]) == 'H' ? 16 : 8;
    size_t length = 2;
    while (length < body.size() &&
           (IsDigit(body[length]) || (Upper(body[length]) >= 'A' && Upper(body[length]) <= 'F'))) {
      ++length;
    }
    const double value = PrefixedNumber(body.substr(2), base);
    return {negative ? -value : value, sign + length};
  }
  const size_t length = DecimalLength(body);
  if (length == 0) return {};
  std::string digits(body.substr(0, length));
  std::replace_if(
      digits.begin(), digits.end(), [](char c) { return Upper(c) == 'D'; }, 'E');
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::result_out_of_range) value = std::numeric_limits<double>::infinity();
  return {negative ? -value : value, sign + length};
}

double WholeNumber(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  const NumberPrefix number = ReadNumber(trimmed);
  if (number.length == 0 || number.length != trimmed.size()) {
    throw RuntimeError(ErrorNumber::kTypeMismatch);
  }
  return number.value;
}

template <typename Number>
Number RoundInto(double value) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= static_cast<double>(std::numeric_limits<Number>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Number>::max()))) {
    throw RuntimeError(ErrorNumber::kOverflow);
  }
  return static_cast<Number>(rounded);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ToUpper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), Upper);
  return result;
}

std::string ToLower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), Lower);
  return result;
}

bool EqualText(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return Upper(a) == Upper(b); });
}

bool LessText::operator()(std::string_view left, std::string_view right) const {
  return std::lexicographical_compare(
      left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return static_cast<unsigned char>(Upper(a)) < static_cast<unsigned char>(Upper(b));
      });
}

bool StartsWithText(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualText(text.substr(0, prefix.size()), prefix);
}

bool EndsWithText(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         EqualText(text.substr(text.size() - suffix.size()), suffix);
}

size_t FindText(std::string_view text, std::string_view find, size_t start) {
  if (start > text.size()) return std::string_view::npos;
  const auto found =
      std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), find.begin(),
                  find.end(), [](char a, char b) { return Upper(a) == Upper(b); });
  if (found == text.end() && !find.empty()) return std::string_view::npos;
  return static_cast<size_t>(found - text.begin());
}

std::string Replace(std::string_view text, std::string_view find, std::string_view replacement) {
  std::string result;
  if (find.empty()) return std::string(text);
  size_t position = 0;
  for (size_t hit = text.find(find); hit != std::string_view::npos;
       hit = text.find(find, position)) {
    result.append(text.substr(position, hit - position)).append(replacement);
    position = hit + find.size();
  }
  return result.append(text.substr(position));
}

std::vector<std::string> Split(std::string_view text, std::string_view delimiter) {
  std::vector<std::string> parts;
  if (text.empty()) return parts;
  size_t position = 0;
  while (!delimiter.empty()) {
    const size_t hit = text.find(delimiter, position);
    if (hit == std::string_view::npos) break;
    parts.emplace_back(text.substr(position, hit - position));
    position = hit + delimiter.size();
  }
  parts.emplace_back(text.substr(position));
  return parts;
}

std::string Join(const std::vector<std::string>& parts, std::string_view delimiter) {
  std::string result;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) result.append(delimiter);
    result.append(parts[i]);
  }
  return result;
}

double Val(std::string_view text) { return ReadNumber(WithoutBlanks(text)).value; }

int32_t ValLong(std::string_view text) {
  const double value = std::trunc(Val(text));
  return static_cast<int32_t>(std::clamp(value,
                                         static_cast<double>(std::numeric_limits<int32_t>::min()),
                                         static_cast<double>(std::numeric_limits<int32_t>::max())));
}

int16_t ToInteger(double value) { return RoundInto<int16_t>(value); }
int32_t ToLong(double value) { return RoundInto<int32_t>(value); }
int16_t ToInteger(std::string_view text) { return RoundInto<int16_t>(WholeNumber(text)); }
int32_t ToLong(std::string_view text) { return RoundInto<int32_t>(WholeNumber(text)); }

bool ToBoolean(std::string_view text) {
  if (EqualText(text, "True")) return true;
  if (EqualText(text, "False")) return false;
  return WholeNumber(text) != 0;
}

std::string_view BooleanText(bool value) { return value ? "True" : "False"; }

std::string SingleText(float value) {
  std::array<char, 64> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  std::string text(buffer.data(), end);
  if (text.starts_with("0.")) text.erase(0, 1);
  if (text.starts_with("-0.")) text.erase(1, 1);
  return text;
}

}  // namespace quarnel
