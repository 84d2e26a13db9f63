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

struct NumberPrefix {
  double value = 0;
  size_t length = 0;  // characters of the text that belong to the number
};

// Hexadecimal and octal texts are whole numbers of 16 or 32 bits with a sign: &HFFFF is -1.
NumberPrefix PrefixedNumber(std::string_view digits, int base) {
  uint64_t value = 0;
  size_t length = 0;
  for (; length < digits.size(); ++length) {
    const char upper = Upper(digits[length]);
    const int digit = IsDigit(upper) ? upper - '0' : upper >= 'A' ? upper - 'A' + 10 : base;
    if (digit >= base) break;
    // A value that is too large stays so.
    value = std::min(value * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit),
                     uint64_t{1} << 40);
  }
  if (value > std::numeric_limits<uint32_t>::max()) {
    return {std::numeric_limits<double>::infinity(), length};
  }
  if (value <= 0xFFFF) return {static_cast<double>(static_cast<int16_t>(value)), length};
  return {static_cast<double>(static_cast<int32_t>(value)), length};
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

// The value of a decimal number that no double can hold: it is too large or too small.
double OutOfRange(std::string_view number) {
  const size_t exponentAt = std::min(number.find('E'), number.size());
  const std::string_view mantissa = number.substr(0, exponentAt);
  const auto point = static_cast<std::ptrdiff_t>(std::min(mantissa.find('.'), mantissa.size()));
  const size_t digitAt = mantissa.find_first_of("123456789");
  if (digitAt == std::string_view::npos) return 0;
  const auto firstDigit = static_cast<std::ptrdiff_t>(digitAt);
  std::string_view exponentText = number.substr(std::min(exponentAt + 1, number.size()));
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  long exponent = 0;
  const auto [end, error] =
      std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  // Far enough for any number, and no sum with it overflows.
  constexpr long kFar = 1'000'000'000;
  if (error == std::errc::result_out_of_range) exponent = exponentText[0] == '-' ? -kFar : kFar;
  const bool small = point - firstDigit + std::clamp(exponent, -kFar, kFar) < 0;
  return small ? 0 : std::numeric_limits<double>::infinity();
}

NumberPrefix ReadNumber(std::string_view text) {
  size_t sign = 0;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) sign = 1;
  const bool negative = sign == 1 && text[0] == '-';
  const std::string_view body = text.substr(sign);
  if (body.size() >= 2 && body[0] == '&' && (Upper(body[1]) == 'H' || Upper(body[1]) == 'O')) {
    const auto [value, length] = PrefixedNumber(body.substr(2), Upper(body[1]) == 'H' ? 16 : 8);
    if (length == 0) return {};
    return {negative ? -value : value, sign + 2 + length};
  }
  const size_t length = DecimalLength(body);
  if (length == 0) return {};
  std::string digits = ToUpper(body.substr(0, length));
  std::replace(digits.begin(), digits.end(), 'D', 'E');
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::result_out_of_range) value = OutOfRange(digits);
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

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string_view CutAtNul(std::string_view text) { return text.substr(0, text.find('\0')); }

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
  // Names of one folder often begin alike.
  const auto [leftRest, rightRest] =
      std::mismatch(left.begin(), left.end(), right.begin(), right.end());
  return std::lexicographical_compare(
      leftRest, left.end(), rightRest, right.end(), [](char a, char b) {
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
  // Counters are short runs of digits, and a scan counts with every line.
  constexpr size_t kSafeDigits = 9;
  if (!text.empty() && text.size() <= kSafeDigits &&
      std::all_of(text.begin(), text.end(), IsDigit)) {
    int32_t number = 0;
    for (const char c : text) number = number * 10 + (c - '0');
    return number;
  }
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

bool ToBooleanOr(std::string_view text, bool otherwise) {
  try {
    return ToBoolean(text);
  } catch (const RuntimeError&) {
    return otherwise;
  }
}

std::string_view BooleanText(bool value) { return value ? "True" : "False"; }

std::string SingleText(float value) {
  std::array<char, 64> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::general, 7);
  return ToUpper(std::string_view(buffer.data(), end));
}

}  // namespace quarnel
