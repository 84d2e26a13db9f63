#include "base/date_time.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/text.h"

namespace quarnel {
namespace {

using std::chrono::days, std::chrono::hours, std::chrono::minutes, std::chrono::seconds;
using std::chrono::floor, std::chrono::local_days, std::chrono::year_month_day;

// The day that stands for no day in a moment that is only a time.
constexpr year_month_day kNoDay{std::chrono::year(1899), std::chrono::December,
                                std::chrono::day(30)};

constexpr std::array<std::string_view, 12> kMonths = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

struct Parts {
  int year, month, day, weekday, hour, minute, second;
  int HourOfTwelve() const { return hour % 12 == 0 ? 12 : hour % 12; }
  std::string_view HalfOfDay() const { return hour < 12 ? "AM" : "PM"; }
};

Parts PartsOf(DateTime moment) {
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const auto second = static_cast<int>(floor<seconds>(moment - day).count());
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(std::chrono::weekday(day).c_encoding()),
          second / 3600,
          second / 60 % 60,
          second % 60};
}

std::string Padded(int number, size_t width) {
  std::string text = std::to_string(number);
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  return text;
}

enum class Unit { kYear, kMonth, kMonthName, kDay, kDayName, kHour, kMinute, kSecond, kHalf };

struct Token {
  std::string_view text;
  Unit unit;
  size_t width;  // digits at least, or letters at most; 0 means all letters
};

// A longer token stands before those that begin it.
constexpr std::array kTokens = {
    Token{"yyyy", Unit::kYear, 4},      Token{"yy", Unit::kYear, 2},
    Token{"mmmm", Unit::kMonthName, 0}, Token{"mmm", Unit::kMonthName, 3},
    Token{"mm", Unit::kMonth, 2},       Token{"m", Unit::kMonth, 1},
    Token{"dddd", Unit::kDayName, 0},   Token{"ddd", Unit::kDayName, 3},
    Token{"dd", Unit::kDay, 2},         Token{"d", Unit::kDay, 1},
    Token{"hh", Unit::kHour, 2},        Token{"h", Unit::kHour, 1},
    Token{"nn", Unit::kMinute, 2},      Token{"n", Unit::kMinute, 1},
    Token{"ss", Unit::kSecond, 2},      Token{"s", Unit::kSecond, 1},
    Token{"AMPM", Unit::kHalf, 2},
};

std::string Name(std::string_view name, size_t letters) {
  return std::string(letters == 0 ? name : name.substr(0, letters));
}

// Reads forward through a text of a date.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool AtEnd() const { return text_.empty(); }
  void SkipBlanks() { text_.remove_prefix(std::min(text_.find_first_not_of(' '), text_.size())); }

  bool Take(std::string_view expected) {
    if (!StartsWithText(text_, expected)) return false;
    text_.remove_prefix(expected.size());
    return true;
  }

  struct Number {
    int value = 0;
    size_t digits = 0;
  };
  // A number of one to four digits.
  std::optional<Number> TakeNumber() {
    size_t digits = std::min(text_.find_first_not_of("0123456789"), text_.size());
    if (digits == 0 || digits > 4) return std::nullopt;
    Number number{0, digits};
    std::from_chars(text_.data(), text_.data() + digits, number.value);
    text_.remove_prefix(digits);
    return number;
  }

 private:
  std::string_view text_;
};

std::optional<local_days> ReadDate(Scanner& scanner) {
  std::array<Scanner::Number, 3> numbers;
  std::string_view separator;
  for (size_t i = 0; i < numbers.size(); ++i) {
    if (i == 1) separator = scanner.Take("/") ? "/" : scanner.Take("-") ? "-" : "";
    if (i == 1 ? separator.empty() : i == 2 && !scanner.Take(separator)) return std::nullopt;
    const auto number = scanner.TakeNumber();
    if (!number) return std::nullopt;
    numbers[i] = *number;
  }
  // With the year in front, the month and the day follow it in their usual order.
  if (numbers[0].digits == 4) std::rotate(numbers.begin(), numbers.begin() + 1, numbers.end());
  auto [month, day, year] = numbers;
  if (year.digits <= 2) year.value += year.value < 30 ? 2000 : 1900;
  const year_month_day date(std::chrono::year(year.value),
                            std::chrono::month(static_cast<unsigned>(month.value)),
                            std::chrono::day(static_cast<unsigned>(day.value)));
  if (!date.ok() || year.value < 100) return std::nullopt;
  return local_days(date);
}

std::optional<seconds> ReadTime(Scanner& scanner) {
  const auto hour = scanner.TakeNumber();
  if (!hour) return std::nullopt;
  std::array<int, 2> rest = {0, 0};  // minute and second
  size_t given = 0;
  while (given < rest.size() && scanner.Take(":")) {
    const auto number = scanner.TakeNumber();
    if (!number || number->value > 59) return std::nullopt;
    rest[given++] = number->value;
  }
  scanner.SkipBlanks();
  const bool morning = scanner.Take("AM");
  const bool afternoon = !morning && scanner.Take("PM");
  const bool ofTwelve = morning || afternoon;
  if ((given == 0 && !ofTwelve) || hour->value > (ofTwelve ? 12 : 23)) return std::nullopt;
  const int hourOfDay = ofTwelve ? hour->value % 12 + (afternoon ? 12 : 0) : hour->value;
  return hours(hourOfDay) + minutes(rest[0]) + seconds(rest[1]);
}

}  // namespace

std::string DateText(DateTime moment) { return FormatDate(moment, "m/d/yyyy"); }

std::string TimeText(DateTime moment) { return FormatDate(moment, "h:nn:ss AMPM"); }

std::string GeneralDateText(DateTime moment) {
  const auto day = floor<days>(moment);
  if (year_month_day(day) == kNoDay) return TimeText(moment);
  if (floor<seconds>(moment) == day) return DateText(moment);
  return DateText(moment) + " " + TimeText(moment);
}

std::string FormatDate(DateTime moment, std::string_view pattern) {
  const Parts parts = PartsOf(moment);
  const bool ofTwelve = FindText(pattern, "AMPM") != std::string_view::npos;
  std::string result;
  bool behindHour = false;
  while (!pattern.empty()) {
    const auto token = std::find_if(kTokens.begin(), kTokens.end(), [&](const Token& candidate) {
      return StartsWithText(pattern, candidate.text);
    });
    if (token == kTokens.end()) {
      result += pattern.front();
      pattern.remove_prefix(1);
      continue;
    }
    pattern.remove_prefix(token->text.size());
    const size_t width = token->width;
    switch (token->unit) {
      case Unit::kYear:
        result += Padded(width == 2 ? parts.year % 100 : parts.year, width);
        break;
      case Unit::kMonth:
        result += Padded(behindHour ? parts.minute : parts.month, width);
        break;
      case Unit::kMonthName:
        result += Name(kMonths[static_cast<size_t>(parts.month - 1)], width);
        break;
      case Unit::kDay:
        result += Padded(parts.day, width);
        break;
      case Unit::kDayName:
        result += Name(kWeekdays[static_cast<size_t>(parts.weekday)], width);
        break;
      case Unit::kHour:
        result += Padded(ofTwelve ? parts.HourOfTwelve() : parts.hour, width);
        break;
      case Unit::kMinute:
        result += Padded(parts.minute, width);
        break;
      case Unit::kSecond:
        result += Padded(parts.second, width);
        break;
      case Unit::kHalf:
        result += parts.HalfOfDay();
        break;
    }
    behindHour = token->unit == Unit::kHour;
  }
  return result;
}

std::optional<DateTime> ParseDate(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  Scanner dateScanner(trimmed);
  const auto date = ReadDate(dateScanner);
  Scanner timeScanner = date ? dateScanner : Scanner(trimmed);
  timeScanner.SkipBlanks();
  if (date && timeScanner.AtEnd()) return DateTime(*date);
  const auto time = ReadTime(timeScanner);
  if (!time || !timeScanner.AtEnd()) return std::nullopt;
  return DateTime(date.value_or(local_days(kNoDay))) + *time;
}

double SecondsOfDay(DateTime moment) {
  return std::chrono::duration<double>(moment - floor<days>(moment)).count();
}

}  // namespace quarnel
